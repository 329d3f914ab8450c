// Finding and replacing in a text that is shown. Goals: 6,000 matches in 1 MB are replaced in under
// half a second, and not slower than 1.5 times what a bare cursor takes that knows their places;
// looking through 10 MB never keeps the window busy for longer than a slice.
#include "editor/texteditor.h"
#include "editor/textfinder.h"
#include "paired.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QTextDocument>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int matches = 6000;
const auto filling = u"of a good garden and the letters in it, "_s.repeated(4);

/// Paragraphs of about 330 characters, \a count matches, each third of them in bold.
std::unique_ptr<QTextDocument> textWith(int count)
{
    auto document = std::make_unique<QTextDocument>();
    QTextCursor cursor(document.get());
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    cursor.beginEditBlock();
    for (int i = 0; i < count; ++i) {
        cursor.insertText(filling, QTextCharFormat());
        cursor.insertText(u"needle"_s, i % 3 == 0 ? bold : QTextCharFormat());
        if (i % 2 == 1) {
            cursor.insertBlock();
        }
    }
    cursor.endEditBlock();
    return document;
}

struct Shown
{
    explicit Shown(int count)
    {
        std::ignore = editor.showDocument(textWith(count));
        editor.resize(820, 640);
        editor.show();
        editor.document()->documentLayout()->documentSize();
        QCoreApplication::processEvents();
    }

    TextEditor editor;
    VisibleMarks marks {editor};
    TextFinder finder {editor, marks};
};

void ReplaceAll(benchmark::State &state, bool isExpression)
{
    Shown ours(matches);
    Shown bare(matches);
    ours.finder.setMarking(true);
    bool isNeedle = true; // in both, by turns
    const auto bareLoop = [&] {
        std::vector<TextSpan> places;
        const auto step = filling.size() + (isNeedle ? 6 : 5);
        for (int i = 0; i < matches; ++i) {
            places.push_back({int(i * step + i / 2 + filling.size()), isNeedle ? 6 : 5});
        }
        QTextCursor cursor(bare.editor.document());
        cursor.beginEditBlock();
        for (auto place = places.rbegin(); place != places.rend(); ++place) {
            cursor.setPosition(place->from);
            cursor.setPosition(place->end(), QTextCursor::KeepAnchor);
            cursor.insertText(isNeedle ? u"camel"_s : u"needle"_s);
        }
        cursor.endEditBlock();
        isNeedle = !isNeedle;
        return true;
    };
    bool isOurNeedle = true;
    const auto ourWay = [&] {
        SearchOptions options;
        options.isExpression = isExpression;
        const QString words = isOurNeedle ? u"needle"_s : u"camel"_s;
        ours.finder.setPattern({isExpression ? u"(\\w)"_s + words.mid(1) : words, options});
        bool isTold = false;
        const auto told = QObject::connect(&ours.finder, &TextFinder::told, [&] { isTold = true; });
        ours.finder.replaceAll(isOurNeedle ? u"camel"_s : u"needle"_s);
        while (!isTold) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        QObject::disconnect(told);
        isOurNeedle = !isOurNeedle;
        return true;
    };
    measurePaired(state, bareLoop, ourWay);
}

/// The longest that an event keeps the window busy while all of 10 MB is looked through.
void LongestSlice(benchmark::State &state, const SearchPattern &pattern)
{
    Shown shown(10 * matches);
    for (auto _ : state) {
        double longest = 0;
        const auto begin = std::chrono::steady_clock::now();
        auto last = begin;
        const auto look = [&] {
            const auto now = std::chrono::steady_clock::now();
            longest =
                std::max(longest, std::chrono::duration<double, std::milli>(now - last).count());
            last = now;
        };
        shown.finder.setPattern(pattern);
        shown.finder.find(TextFinder::Direction::Backward);
        look();
        while (shown.finder.standing().state != TextSearch::State::Complete) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 0);
            look();
        }
        state.counters["longest_ms"] = longest;
        state.counters["matches"] = shown.finder.standing().count;
    }
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    const auto replace = [](const char *name, bool isExpression) {
        benchmark::RegisterBenchmark(
            name, [isExpression](benchmark::State &state) { ReplaceAll(state, isExpression); })
            ->Unit(benchmark::kMillisecond)
            ->UseManualTime()
            ->Iterations(11);
    };
    const auto look = [](const char *name, const SearchPattern &pattern) {
        benchmark::RegisterBenchmark(
            name, [pattern](benchmark::State &state) { LongestSlice(state, pattern); })
            ->Unit(benchmark::kMillisecond)
            ->Iterations(3);
    };
    SearchOptions expression;
    expression.isExpression = true;
    replace("ReplaceAll/words", false);
    replace("ReplaceAll/expression", true);
    look("LookThrough/words", {u"needle"_s, {}});
    look("LookThrough/letter", {u"e"_s, {}});
    look("LookThrough/expression", {u"\\b\\w+le\\b"_s, expression});
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
