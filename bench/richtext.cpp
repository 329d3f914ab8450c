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

#include <map>
#include <memory>
#include <optional>

#include <malloc.h>

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

/// What a document holds, ready to be put into another one with a bare cursor: the same blocks,
/// formats, lists and tables, by the cheapest calls that the toolkit has for them.
class Filling
{
public:
    explicit Filling(const QTextDocument &document)
    {
        addAll(document.rootFrame()->begin(), document.rootFrame()->end(), m_items);
    }

    std::unique_ptr<QTextDocument> filled() const
    {
        auto document = std::make_unique<QTextDocument>();
        document->setUndoRedoEnabled(false);
        QTextCursor cursor(document.get());
        Lists lists(m_listFormats.size());
        cursor.beginEditBlock();
        put(m_items, cursor, lists);
        cursor.endEditBlock();
        return document;
    }

private:
    using Lists = std::vector<QTextList *>;

    struct Item
    {
        QTextBlockFormat block {};
        QTextCharFormat character {};
        std::vector<std::pair<QString, QTextCharFormat>> runs {};
        std::optional<std::size_t> list {};
        int columns = 0; ///< Of a table; 0: a paragraph.
        QTextTableFormat table {};
        std::vector<std::vector<Item>> cells {};
        std::vector<QTextCharFormat> cellFormats {};
    };

    void addAll(QTextFrame::iterator at, const QTextFrame::iterator &end, std::vector<Item> &items)
    {
        for (; at != end; ++at) {
            const auto *table = qobject_cast<QTextTable *>(at.currentFrame());
            items.push_back(table ? itemOf(*table) : itemOf(at.currentBlock()));
        }
    }

    Item itemOf(const QTextBlock &block)
    {
        Item item {.block = block.blockFormat(), .character = block.charFormat()};
        item.block.clearProperty(QTextFormat::ObjectIndex);
        if (const QTextList *list = block.textList()) {
            const auto known = m_listNumbers.try_emplace(list, m_listFormats.size()).first;
            if (known->second == m_listFormats.size()) {
                m_listFormats.push_back(list->format());
                m_listFormats.back().clearProperty(QTextFormat::ObjectIndex);
            }
            item.list = known->second;
        }
        for (auto run = block.begin(); !run.atEnd(); ++run) {
            item.runs.emplace_back(run.fragment().text(), run.fragment().charFormat());
        }
        return item;
    }

    Item itemOf(const QTextTable &table)
    {
        Item item {.columns = table.columns(), .table = table.format()};
        item.table.clearProperty(QTextFormat::ObjectIndex);
        for (int i = 0; i < table.rows() * table.columns(); ++i) {
            const QTextTableCell cell = table.cellAt(i / table.columns(), i % table.columns());
            item.cells.emplace_back();
            addAll(cell.begin(), cell.end(), item.cells.back());
            item.cellFormats.push_back(cell.format());
            item.cellFormats.back().clearProperty(QTextFormat::ObjectIndex);
        }
        return item;
    }

    void put(const std::vector<Item> &items, QTextCursor &cursor, Lists &lists) const
    {
        bool isBlockOpen = true;
        for (const Item &item : items) {
            if (item.columns > 0) {
                putTable(item, cursor, lists);
            } else {
                putBlock(item, cursor, lists, isBlockOpen);
            }
            isBlockOpen = item.columns > 0; // the paragraph behind a table is there
        }
    }

    void putTable(const Item &item, QTextCursor &cursor, Lists &lists) const
    {
        const int rows = int(item.cells.size()) / item.columns;
        const QTextTable *table = cursor.insertTable(rows, item.columns, item.table);
        for (std::size_t i = 0; i < item.cells.size(); ++i) {
            QTextTableCell cell = table->cellAt(int(i) / item.columns, int(i) % item.columns);
            cell.setFormat(item.cellFormats[i]);
            QTextCursor inner = cell.firstCursorPosition();
            put(item.cells[i], inner, lists);
        }
        cursor.setPosition(table->lastPosition() + 1);
    }

    void putBlock(const Item &item, QTextCursor &cursor, Lists &lists, bool isOpen) const
    {
        QTextBlockFormat format = item.block;
        QTextList **list = item.list ? &lists[*item.list] : nullptr;
        if (list && *list) {
            format.setObjectIndex((*list)->objectIndex());
        }
        if (!isOpen) {
            cursor.insertBlock(format, item.character);
        } else if (format.propertyCount() > 0) {
            cursor.setBlockFormat(format);
        }
        if (list && !*list) {
            *list = cursor.createList(m_listFormats[*item.list]);
        }
        for (const auto &[text, characterFormat] : item.runs) {
            cursor.insertText(text, characterFormat);
        }
    }

    std::vector<Item> m_items;
    std::map<const QTextList *, std::size_t> m_listNumbers;
    std::vector<QTextListFormat> m_listFormats;
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
    const auto document = documentOf(rtf);
    const Filling filling(*document);
    if (bodyFromDocument(*filling.filled()) != bodyFromDocument(*document)) {
        state.SkipWithError("the cursor makes another document");
        return;
    }
    measurePaired(
        state, [&] { return filling.filled()->characterCount() > 1; },
        [&] { return readRtf(rtf); });
}

void WriteBesideToHtml(benchmark::State &state)
{
    const auto document = documentOf(rtfOf(state.range(0)));
    measurePaired(
        state, [&] { return !document->toHtml().isEmpty(); },
        [&] { return !bodyFromDocument(*document).isEmpty(); });
}

/// The bare work is 10 MB, ours 50. Memory comes from the system each time, as where a program
/// opens a document: left to itself, the allocator keeps what 10 MB take for the next round and
/// gives back what 50 MB take.
template <typename Work> void measureGrowth(benchmark::State &state, Work small, Work large)
{
    constexpr int usual = 128 * 1024; // Where the allocator begins; said, it stays there.
    mallopt(M_MMAP_THRESHOLD, usual);
    mallopt(M_TRIM_THRESHOLD, usual);
    measurePaired(state, small, large);
}

void GrowthOfPlainText(benchmark::State &state)
{
    const auto work = [](const QByteArray &rtf) {
        return [&rtf] {
            return !plainTextFromBody(rtf).isEmpty();
        };
    };
    const QByteArray small = rtfOf(10);
    const QByteArray large = rtfOf(50);
    measureGrowth(state, work(small), work(large));
}

void GrowthOfReading(benchmark::State &state)
{
    const auto work = [](const QByteArray &rtf) {
        return [&rtf] {
            return readRtf(rtf);
        };
    };
    const QByteArray small = rtfOf(10);
    const QByteArray large = rtfOf(50);
    measureGrowth(state, work(small), work(large));
}

/// What the toolkit itself takes, to compare reading with.
void GrowthOfCursor(benchmark::State &state)
{
    const auto work = [](const Filling &filling) {
        return [&filling] {
            return filling.filled()->characterCount() > 1;
        };
    };
    const Filling small(*documentOf(rtfOf(10)));
    const Filling large(*documentOf(rtfOf(50)));
    measureGrowth(state, work(small), work(large));
}

void GrowthOfWriting(benchmark::State &state)
{
    const auto work = [](const QTextDocument &document) {
        return [&document] {
            return !bodyFromDocument(document).isEmpty();
        };
    };
    const auto small = documentOf(rtfOf(10));
    const auto large = documentOf(rtfOf(50));
    measureGrowth(state, work(*small), work(*large));
}

} // namespace

BENCHMARK(PlainText)->Arg(1)->Arg(10)->Arg(50)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(PlainTextBeside, catdoc, u"catdoc"_s, QStringList {u"-dutf-8"_s})
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(15);
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
BENCHMARK(GrowthOfCursor)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);
BENCHMARK(GrowthOfWriting)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(3);

int main(int count, char **arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(count, arguments);
    benchmark::Initialize(&count, arguments);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
