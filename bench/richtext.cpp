// Reading and writing RTF, beside the toolkit's own HTML and beside other programs where they are
// installed. Goals: plain text at 100 MB/s, 15 times as fast as unrtf, pandoc and LibreOffice and 4
// times as fast as catdoc; a document at most a third of the time of setHtml, at most twice that of
// a bare cursor, and in no more memory than setHtml; writing in at most half the time of toHtml; 50
// MB in at most 5.5 times the time of 10 MB.
#include "paired.h"
#include "peak.h"
#include "richtext/body.h"
#include "richtext/richtextexport.h"
#include "styledtext.h"

#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>
#include <QTextTable>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype megabyte = 1000 * 1000;

QByteArray rtfOf(int64_t megabytes)
{
    return StyledText().rtf(megabytes * megabyte);
}

std::unique_ptr<QTextDocument> documentOf(const QByteArray &rtf)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    readBody(rtf, *document);
    return document;
}

bool readRtf(const QByteArray &rtf)
{
    return documentOf(rtf)->characterCount() > 1;
}

bool readHtml(const QString &html)
{
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    document.setHtml(html);
    return document.characterCount() > 1;
}

/// What a document holds, ready to be put into another one with a bare cursor.
class Filling
{
public:
    explicit Filling(const QTextDocument &document)
    {
        addAll(document.rootFrame()->begin(), document.rootFrame()->end(), m_items);
    }

    bool fill() const
    {
        QTextDocument document;
        document.setUndoRedoEnabled(false);
        QTextCursor cursor(&document);
        cursor.beginEditBlock();
        put(m_items, cursor);
        cursor.endEditBlock();
        return document.characterCount() > 1;
    }

private:
    struct Item
    {
        QTextBlockFormat block {};
        QTextCharFormat character {};
        std::vector<std::pair<QString, QTextCharFormat>> runs {};
        int columns = 0; ///< Of a table; 0: a paragraph.
        std::vector<std::vector<Item>> cells {};
    };

    static void addAll(QTextFrame::iterator at, const QTextFrame::iterator &end,
                       std::vector<Item> &items)
    {
        for (; at != end; ++at) {
            Item item;
            if (const auto *table = qobject_cast<QTextTable *>(at.currentFrame())) {
                item.columns = table->columns();
                for (int i = 0; i < table->rows() * table->columns(); ++i) {
                    const QTextTableCell cell =
                        table->cellAt(i / table->columns(), i % table->columns());
                    item.cells.emplace_back();
                    addAll(cell.begin(), cell.end(), item.cells.back());
                }
            } else {
                const QTextBlock block = at.currentBlock();
                item.block = block.blockFormat();
                item.block.clearProperty(QTextFormat::ObjectIndex);
                item.character = block.charFormat();
                for (auto run = block.begin(); !run.atEnd(); ++run) {
                    item.runs.emplace_back(run.fragment().text(), run.fragment().charFormat());
                }
            }
            items.push_back(std::move(item));
        }
    }

    static void put(const std::vector<Item> &items, QTextCursor &cursor)
    {
        bool isFirst = true;
        for (const Item &item : items) {
            if (item.columns > 0) {
                const int rows = int(item.cells.size()) / item.columns;
                const QTextTable *table = cursor.insertTable(rows, item.columns);
                for (std::size_t i = 0; i < item.cells.size(); ++i) {
                    QTextCursor inner = table->cellAt(int(i) / item.columns, int(i) % item.columns)
                                            .firstCursorPosition();
                    put(item.cells[i], inner);
                }
                isFirst = true; // the paragraph behind it is there
                continue;
            }
            if (isFirst) {
                cursor.setBlockFormat(item.block);
                isFirst = false;
            } else {
                cursor.insertBlock(item.block, item.character);
            }
            for (const auto &[text, format] : item.runs) {
                cursor.insertText(text, format);
            }
        }
    }

    std::vector<Item> m_items;
};

void PlainText(benchmark::State &state)
{
    const QByteArray rtf = rtfOf(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(plainTextFromBody(rtf));
    }
    state.SetBytesProcessed(state.iterations() * rtf.size());
}

/// Another program does the same, once: it takes long enough.
void PlainTextBeside(benchmark::State &state, const QString &program, const QStringList &arguments)
{
    const QByteArray rtf = rtfOf(10);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"text.rtf"_s));
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        state.SkipWithError("is not installed");
        return;
    }
    if (!file.open(QIODevice::WriteOnly) || file.write(rtf) != rtf.size() || !file.flush()) {
        state.SkipWithError("no room for the text");
        return;
    }
    QStringList all = arguments;
    all.replaceInStrings(u"FOLDER"_s, folder.path());
    all << file.fileName();
    measurePaired(
        state,
        [&] {
            QProcess process;
            process.setWorkingDirectory(folder.path());
            process.setStandardOutputFile(QProcess::nullDevice());
            process.setStandardErrorFile(QProcess::nullDevice());
            process.start(program, all);
            return process.waitForFinished(-1);
        },
        [&] { return !plainTextFromBody(rtf).isEmpty(); });
    state.counters["times_faster"] = 1 / state.counters["ratio"];
}

void ReadBesideSetHtml(benchmark::State &state)
{
    const QByteArray rtf = rtfOf(state.range(0));
    const QString html = documentOf(rtf)->toHtml();
    measurePaired(
        state, [&] { return readHtml(html); }, [&] { return readRtf(rtf); });
    const QByteArray markup = html.toUtf8();
    const qsizetype size = state.range(0) * megabyte;
    state.counters["peak_MB"] = double(state.range(0))
        * peakPerBody(size, rtf, rtfOf(0), [](const QByteArray &input) { readRtf(input); });
    state.counters["html_peak_MB"] = double(state.range(0))
        * peakPerBody(size, markup, "<p>a</p>",
                      [](const QByteArray &input) { readHtml(QString::fromUtf8(input)); });
}

void ReadBesideCursor(benchmark::State &state)
{
    const QByteArray rtf = rtfOf(state.range(0));
    const Filling filling(*documentOf(rtf));
    measurePaired(
        state, [&] { return filling.fill(); }, [&] { return readRtf(rtf); });
}

void WriteBesideToHtml(benchmark::State &state)
{
    const auto document = documentOf(rtfOf(state.range(0)));
    measurePaired(
        state, [&] { return !document->toHtml().isEmpty(); },
        [&] { return !bodyFromDocument(*document).isEmpty(); });
}

/// The bare work is 10 MB, ours 50.
template <typename Work> void measureGrowth(benchmark::State &state, Work work)
{
    const QByteArray small = rtfOf(10);
    const QByteArray large = rtfOf(50);
    measurePaired(
        state, [&] { return work(small); }, [&] { return work(large); });
}

void GrowthOfPlainText(benchmark::State &state)
{
    measureGrowth(state, [](const QByteArray &rtf) { return !plainTextFromBody(rtf).isEmpty(); });
}

void GrowthOfReading(benchmark::State &state)
{
    measureGrowth(state, readRtf);
}

void GrowthOfWriting(benchmark::State &state)
{
    const auto small = documentOf(rtfOf(10));
    const auto large = documentOf(rtfOf(50));
    measurePaired(
        state, [&] { return !bodyFromDocument(*small).isEmpty(); },
        [&] { return !bodyFromDocument(*large).isEmpty(); });
}

} // namespace

BENCHMARK(PlainText)->Arg(1)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainTextBeside, catdoc, u"catdoc"_s, QStringList {u"-dutf-8"_s})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK_CAPTURE(PlainTextBeside, unrtf, u"unrtf"_s, QStringList {u"--text"_s})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK_CAPTURE(PlainTextBeside, pandoc, u"pandoc"_s,
                  QStringList({u"-f"_s, u"rtf"_s, u"-t"_s, u"plain"_s}))
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK_CAPTURE(PlainTextBeside, libreoffice, u"soffice"_s,
                  QStringList({u"-env:UserInstallation=file://FOLDER/profile"_s, u"--headless"_s,
                               u"--convert-to"_s, u"txt:Text"_s}))
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK(ReadBesideSetHtml)
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(3);
BENCHMARK(ReadBesideCursor)
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK(WriteBesideToHtml)
    ->Arg(1)
    ->Arg(10)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(5);
BENCHMARK(GrowthOfPlainText)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(5);
BENCHMARK(GrowthOfReading)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(GrowthOfWriting)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);

int main(int count, char **arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
