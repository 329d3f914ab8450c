#include "editor/textfinder.h"

#include "editor/insertion.h"
#include "editor/texteditor.h"

#include <QLocale>
#include <QTextDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace quorvane {

namespace {

constexpr auto firstSlice = 12ms; // on a key
constexpr auto slice = 8ms;
constexpr qint64 longestText = 1 << 29; // positions are ints
const QColor matchColour(0xff, 0xe0, 0x80); // with black letters: reads on light and dark paper

struct Replacement
{
    TextSpan span;
    QString text;
};

bool holdsObject(const QString &subject, const TextSpan &span)
{
    return QStringView(subject)
        .mid(span.from, span.length)
        .contains(QChar(QChar::ObjectReplacementCharacter));
}

QString outcomeOf(qsizetype replaced, int left)
{
    const QLocale locale;
    QString words = replaced == 1 ? u"Replaced 1 match."_s
                                  : u"Replaced %1 matches."_s.arg(locale.toString(replaced));
    if (left > 0) {
        words += left == 1 ? u" 1 match holds a picture or a file and was left as it is."_s
                           : u" %1 matches hold pictures or files and were left as they are."_s.arg(
                               locale.toString(left));
    }
    return words;
}

} // namespace

TextFinder::TextFinder(TextEditor &editor, VisibleMarks &marks)
    : m_editor(editor)
    , m_marks(marks)
{
    m_slices.setSingleShot(true);
    connect(&m_slices, &QTimer::timeout, this, &TextFinder::goOn);
    connect(&editor, &QTextEdit::textChanged, this, &TextFinder::invalidate);
    connect(&editor, &QTextEdit::selectionChanged, this, &TextFinder::standingChanged);
    connect(&editor, &TextEditor::contentReplaced, this, [this] {
        m_range.reset();
        invalidate();
    });
    connect(&editor, &TextEditor::contentHiddenChanged, this, &TextFinder::clear);
    marks.setSource(VisibleMarks::Layer::Matches,
                    [this](const QTextBlock &, const QTextBlock &, VisibleMarks::Marks &found) {
                        mark(found);
                    });
}

void TextFinder::setPattern(const SearchPattern &pattern)
{
    m_pattern = pattern;
    m_hasWrapped = false;
    invalidate();
    if (m_isMarking) {
        restart();
    }
}

void TextFinder::setMarking(bool marks)
{
    m_isMarking = marks;
    m_marks.refresh();
}

void TextFinder::setRange(const std::optional<QTextCursor> &range)
{
    m_range = range;
    invalidate();
    if (m_isMarking) {
        restart();
    }
}

void TextFinder::clear()
{
    m_pattern = {};
    m_range.reset();
    invalidate();
}

void TextFinder::invalidate()
{
    m_search.stop();
    m_slices.stop();
    m_errand.reset();
    m_replaceAll.reset();
    emit standingChanged();
}

void TextFinder::restart()
{
    std::optional<TextSpan> within;
    if (m_range) {
        within = TextSpan {m_range->selectionStart(),
                           m_range->selectionEnd() - m_range->selectionStart()};
    }
    m_search.begin(*m_editor.document(), m_pattern, m_editor.textCursor().selectionStart(), within);
    m_search.advance(firstSlice);
    m_slices.start(0); // errands only once whoever asked has finished
    m_marks.refresh();
}

void TextFinder::goOn()
{
    if (m_search.state() == TextSearch::State::Idle) {
        return;
    }
    const bool wasRunning = m_search.state() == TextSearch::State::Running;
    if (m_search.advance(slice)) {
        m_slices.start(0);
    } else if (wasRunning) {
        m_marks.refresh();
    }
    runErrands();
    emit standingChanged();
}

void TextFinder::find(Direction direction)
{
    const QTextCursor caret = m_editor.textCursor();
    const bool isForward = direction == Direction::Forward;
    seek({direction, isForward ? caret.selectionEnd() : caret.selectionStart()});
}

void TextFinder::findHere()
{
    seek({Direction::Forward, m_editor.textCursor().selectionStart()});
}

void TextFinder::seek(const Errand &errand)
{
    m_hasWrapped = false;
    if (m_search.state() == TextSearch::State::Idle) {
        restart();
    }
    m_errand = errand;
    runErrands();
    emit standingChanged();
}

void TextFinder::runErrands()
{
    if (m_search.state() == TextSearch::State::TooMuch) {
        m_errand.reset();
        m_replaceAll.reset();
    }
    if (m_errand) {
        if (const auto way = m_search.way(m_errand->direction, m_errand->position)) {
            m_errand.reset();
            m_hasWrapped = way->wraps;
            select(way->match.value_or(TextSpan {m_editor.textCursor().selectionStart(), 0}));
        }
    }
    if (m_replaceAll && m_search.state() == TextSearch::State::Complete) {
        replaceFound(*std::exchange(m_replaceAll, std::nullopt));
    }
}

void TextFinder::select(const TextSpan &match)
{
    QTextCursor cursor = m_editor.textCursor();
    cursor.setPosition(match.from);
    cursor.setPosition(match.end(), QTextCursor::KeepAnchor);
    m_editor.setTextCursor(cursor);
    m_editor.ensureCursorVisible();
}

std::optional<TextSpan> TextFinder::selectedMatch() const
{
    const QTextCursor caret = m_editor.textCursor();
    const TextSpan selected {caret.selectionStart(), caret.selectionEnd() - caret.selectionStart()};
    const QTextBlock block = m_editor.document()->findBlock(selected.from);
    const int from = selected.from - block.position();
    if (selected.length == 0 || from + selected.length >= block.length()) {
        return std::nullopt;
    }
    const auto result = m_pattern.findAt(m_pattern.subject(block), from);
    const bool isMatch = result.effort == SearchPattern::Effort::Found
        && result.span == TextSpan {from, selected.length};
    return isMatch ? std::optional(selected) : std::nullopt;
}

void TextFinder::replace(const QString &with)
{
    const std::optional<TextSpan> match = selectedMatch();
    if (!match) {
        find(Direction::Forward);
        return;
    }
    const QTextBlock block = m_editor.document()->findBlock(match->from);
    const QString subject = m_pattern.subject(block);
    const TextSpan inBlock {match->from - block.position(), match->length};
    if (holdsObject(subject, inBlock)) {
        find(Direction::Forward);
        emit told(u"The match holds a picture or a file and was left as it is."_s);
        return;
    }
    const QString text = m_pattern.replacement(subject, inBlock, with);
    if (m_editor.edit(u"Replace"_s,
                      [&](QTextCursor &cursor) { replaceCharacters(cursor, *match, text); })) {
        find(Direction::Forward);
    }
}

void TextFinder::replaceAll(const QString &with)
{
    if (m_search.state() == TextSearch::State::Idle) {
        restart();
    }
    m_replaceAll = with;
    runErrands();
}

void TextFinder::replaceFound(const QString &with)
{
    std::vector<Replacement> replacements;
    replacements.reserve(m_search.matches().size());
    int left = 0;
    qint64 length = m_editor.document()->characterCount();
    QTextBlock block;
    QString subject;
    for (const TextSpan &match : m_search.matches()) {
        if (!block.isValid() || !block.contains(match.from)) {
            block = m_editor.document()->findBlock(match.from);
            subject = m_pattern.subject(block);
        }
        const TextSpan inBlock {match.from - block.position(), match.length};
        if (holdsObject(subject, inBlock)) {
            ++left;
            continue;
        }
        replacements.push_back({match, m_pattern.replacement(subject, inBlock, with)});
        length += replacements.back().text.size() - match.length;
        if (length > longestText) {
            emit told(u"The text would become too long. Nothing was replaced."_s);
            return;
        }
    }
    if (!replacements.empty()) {
        m_editor.setExtraSelections({}); // each would move at each replacement
        const auto change = [&](QTextCursor &caret) {
            QTextCursor cursor(caret.document());
            std::for_each(
                replacements.rbegin(), replacements.rend(),
                [&cursor](const Replacement &r) { replaceCharacters(cursor, r.span, r.text); });
            caret.clearSelection();
        };
        if (!m_editor.edit(u"Replace All"_s, change)) {
            return;
        }
        m_marks.refresh();
    }
    emit told(replacements.empty() && left == 0 ? u"No matches."_s
                                                : outcomeOf(qsizetype(replacements.size()), left));
}

TextFinder::Standing TextFinder::standing() const
{
    Standing standing {m_search.state()};
    if (standing.state != TextSearch::State::Complete) {
        return standing;
    }
    const std::vector<TextSpan> &all = m_search.matches();
    standing.count = int(all.size());
    const QTextCursor caret = m_editor.textCursor();
    const TextSpan selected {caret.selectionStart(), caret.selectionEnd() - caret.selectionStart()};
    const auto at =
        std::lower_bound(all.begin(), all.end(), selected.from,
                         [](const TextSpan &match, int from) { return match.from < from; });
    if (at != all.end() && *at == selected) {
        standing.current = int(at - all.begin()) + 1;
        standing.wrapped = m_hasWrapped;
    }
    return standing;
}

void TextFinder::mark(VisibleMarks::Marks &marks)
{
    if (!m_isMarking || m_pattern.isEmpty()) {
        return;
    }
    if (m_search.state() == TextSearch::State::Idle) { // the text has changed meanwhile
        restart();
    }
    QTextCharFormat look;
    look.setBackground(matchColour);
    look.setForeground(Qt::black);
    for (const TextSpan &match : m_search.matchesIn(m_marks.inView())) {
        QTextCursor cursor(m_editor.document());
        cursor.setPosition(match.from);
        cursor.setPosition(match.end(), QTextCursor::KeepAnchor);
        marks.append({cursor, look});
    }
}

} // namespace quorvane
