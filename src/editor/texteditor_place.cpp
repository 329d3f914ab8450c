#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <ranges>

namespace quorvane {

namespace {

constexpr double halfLine = 8; // pixels

bool isLaidOut(const QTextBlock &block)
{
    return block.layout()->lineCount() > 0;
}

/// The first of \a count numbers for which \a isReached does not hold.
int firstAfter(int count, const std::function<bool(int number)> &isReached)
{
    return *std::ranges::partition_point(std::views::iota(0, count), isReached);
}

/// What the lines of a block are placed from.
double topOf(const QTextBlock &block)
{
    return block.document()->documentLayout()->blockBoundingRect(block).top()
        - block.layout()->boundingRect().top();
}

/// The line of a block that reaches below \a y, or its last one.
QTextLine lineAt(const QTextBlock &block, double y)
{
    const QTextLayout &lines = *block.layout();
    const double top = topOf(block);
    return lines.lineAt(firstAfter(lines.lineCount() - 1, [&](int number) {
        const QTextLine line = lines.lineAt(number);
        return top + line.y() + line.height() <= y;
    }));
}

/// Of the row of the outermost table around a block; none where it stands in no table.
QList<QTextTableCell> cellsBeside(const QTextBlock &block)
{
    const QTextTable *table = nullptr;
    for (QTextFrame *frame = QTextCursor(block).currentFrame(); frame;
         frame = frame->parentFrame()) {
        const auto *around = qobject_cast<const QTextTable *>(frame);
        table = around ? around : table;
    }
    QList<QTextTableCell> cells;
    for (int column = 0; table && column < table->columns(); ++column) {
        cells << table->cellAt(table->cellAt(block.position()).row(), column);
    }
    return cells;
}

std::optional<TextSpan> rowAround(const QTextBlock &block)
{
    const QList<QTextTableCell> cells = cellsBeside(block);
    if (cells.isEmpty()) {
        return std::nullopt;
    }
    int from = block.position();
    int end = from;
    for (const QTextTableCell &cell : cells) {
        from = std::min(from, cell.firstPosition());
        end = std::max(end, cell.lastPosition());
    }
    return TextSpan {from, end - from};
}

double bottomOf(const QTextBlock &block)
{
    return block.document()->documentLayout()->blockBoundingRect(block).bottom();
}

/// In the order of the text this only grows; where blocks stand side by side their bottoms do not.
double bottomOfRow(const QTextBlock &block)
{
    double bottom = bottomOf(block);
    const QList<QTextTableCell> cells = cellsBeside(block);
    for (const QTextTableCell &cell : cells) {
        bottom = std::max(bottom, bottomOf(cell.lastCursorPosition().block()));
    }
    return bottom;
}

/// The first block that reaches below \a y, or that stands beside one that does, or that is not
/// laid out yet; the last one where there is none.
QTextBlock firstBelow(const QTextDocument &text, double y)
{
    return text.findBlockByNumber(firstAfter(text.blockCount() - 1, [&](int number) {
        const QTextBlock block = text.findBlockByNumber(number);
        return isLaidOut(block) && bottomOfRow(block) <= y;
    }));
}

} // namespace

QPoint TextEditor::origin() const
{
    const QScrollBar &bar = *horizontalScrollBar();
    const int x = isRightToLeft() ? bar.maximum() - bar.value() : bar.value();
    return {-x, -verticalScrollBar()->value()};
}

// A hit test is no way to find out: between two paragraphs, and above the first one, it goes
// through all that follow, and ends behind what is laid out.
TextSpan TextEditor::spanIn(const QRect &view) const
{
    const QTextDocument &text = *document();
    const QAbstractTextDocumentLayout &layout = *text.documentLayout();
    const double top = view.top() + verticalScrollBar()->value();
    const double bottom = view.bottom() + verticalScrollBar()->value();
    const QTextBlock first = firstBelow(text, top);
    if (!isLaidOut(first)) {
        return {first.position(), 0};
    }
    QTextBlock last = first;
    for (QTextBlock next = first.next();
         next.isValid() && isLaidOut(next) && layout.blockBoundingRect(next).top() <= bottom;
         next = next.next()) {
        last = next;
    }
    const std::optional<TextSpan> firstRow = rowAround(first);
    const std::optional<TextSpan> lastRow = rowAround(last);
    const QTextLine lastLine = lineAt(last, bottom);
    const int from = firstRow ? firstRow->from : first.position() + lineAt(first, top).textStart();
    const int end =
        lastRow ? lastRow->end() : last.position() + lastLine.textStart() + lastLine.textLength();
    return {from, end - from};
}

/// The point, or in a text that is still being laid out the nearest one on a line: a hit test
/// beside the lines would be answered with the end of the text.
QPointF TextEditor::onLine(const QPointF &point) const
{
    if (isLaidOut(document()->lastBlock())) {
        return point;
    }
    const QTextBlock block =
        document()->findBlock(spanIn(QRect(point.toPoint(), QSize(1, 1))).from);
    if (!isLaidOut(block) || QTextCursor(block).currentTable()) {
        return point;
    }
    const double y = point.y() - origin().y();
    const QTextLine line = lineAt(block, y);
    const double top = std::ceil(topOf(block) + line.y());
    const double bottom = std::max(top, std::floor(topOf(block) + line.y() + line.height()) - 1);
    return {point.x(), std::clamp(y, top, bottom) + origin().y()};
}

QTextCursor TextEditor::cursorForPosition(const QPoint &place) const
{
    return QTextEdit::cursorForPosition(onLine(place).toPoint());
}

void TextEditor::undo()
{
    keepInView([this] { QTextEdit::undo(); });
}

void TextEditor::redo()
{
    keepInView([this] { QTextEdit::redo(); });
}

// The toolkit goes to the end of what has changed.
void TextEditor::keepInView(const std::function<void()> &change)
{
    std::optional<TextSpan> changed;
    const auto note = [&changed](int position, int, int added) {
        const int from = changed ? std::min(changed->from, position) : position;
        const int end = std::max(changed ? changed->end() : 0, position + added);
        changed = TextSpan {from, end - from};
    };
    const auto noting = connect(m_content.get(), &QTextDocument::contentsChange, this, note);
    const int scroll = verticalScrollBar()->value();
    change();
    disconnect(noting);
    verticalScrollBar()->setValue(scroll);
    const TextSpan inView = spanIn(viewport()->rect());
    if (changed && (changed->from > inView.end() || changed->end() < inView.from)) {
        ensureCursorVisible();
    }
}

TextEditor::Place TextEditor::place() const
{
    const QTextCursor cursor = textCursor();
    const int scroll = verticalScrollBar()->value();
    const double y = scroll + halfLine * zoom(); // a line that is mostly out of view is not it
    QTextBlock block = firstBelow(*document(), y);
    while (isLaidOut(block) && bottomOf(block) <= y && block.next().isValid()) {
        block = block.next(); // the one before ends above, beside a taller one
    }
    const int top = block.position() + (isLaidOut(block) ? lineAt(block, y).textStart() : 0);
    return {cursor.anchor(), cursor.position(), top, scroll, viewport()->width()};
}

void TextEditor::restore(const Place &place)
{
    const int last = m_content->characterCount() - 1;
    QTextCursor cursor(m_content.get());
    cursor.setPosition(std::min(place.anchor, last));
    cursor.setPosition(std::min(place.caret, last), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    restoreScroll(place);
    m_unsettled = place;
}

// The toolkit shows the line of the caret, and no more.
void TextEditor::showMarginWithFirstLine()
{
    const QTextCursor caret = textCursor();
    const QTextLine line = caret.block().layout()->lineForTextPosition(caret.positionInBlock());
    const bool isInFirst = caret.blockNumber() == 0 && line.isValid() && line.lineNumber() == 0;
    if (isInFirst && cursorRect().top() >= 0) {
        verticalScrollBar()->setValue(0);
    }
}

void TextEditor::restoreScroll(const Place &place)
{
    if (place.top == 0) {
        verticalScrollBar()->setValue(0);
        return;
    }
    if (place.width == viewport()->width()) {
        const double bottom = place.scroll + viewport()->height();
        m_content->documentLayout()->hitTest(QPointF(0, bottom),
                                             Qt::FuzzyHit); // lays out up to there
        verticalScrollBar()->setValue(place.scroll);
        return;
    }
    QTextCursor top(m_content.get());
    top.setPosition(std::min(place.top, m_content->characterCount() - 1));
    m_content->documentLayout()->blockBoundingRect(top.block()); // lays out up to there
    verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(top).top());
}

} // namespace quorvane
