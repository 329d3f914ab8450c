#include "editor/paragraphformats.h"

#include "editor/headings.h"
#include "editor/selectedtext.h"

#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

namespace quorvane {

namespace {

void appendBlocks(QList<QTextBlock> &blocks, QTextBlock from, int end)
{
    for (; from.isValid() && from.position() <= end; from = from.next()) {
        blocks.append(from);
    }
}

QList<QTextBlock> blocksOfCells(const QTextCursor &cursor, const QTextTable &table)
{
    int firstRow = 0;
    int rows = 0;
    int firstColumn = 0;
    int columns = 0;
    cursor.selectedTableCells(&firstRow, &rows, &firstColumn, &columns);
    QList<QTextBlock> blocks;
    for (int row = firstRow; row < firstRow + rows; ++row) {
        for (int column = firstColumn; column < firstColumn + columns; ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() == row && cell.column() == column) {
                appendBlocks(blocks, cell.firstCursorPosition().block(), cell.lastPosition());
            }
        }
    }
    return blocks;
}

} // namespace

QList<QTextBlock> selectedBlocks(const QTextCursor &cursor)
{
    const QTextTable *table = cursor.currentTable();
    if (table && cursor.hasComplexSelection()) {
        return blocksOfCells(cursor, *table);
    }
    const QTextBlock first = cursor.document()->findBlock(cursor.selectionStart());
    QList<QTextBlock> blocks;
    appendBlocks(blocks, first, cursor.selectionEnd());
    if (blocks.size() > 1 && blocks.last().position() == cursor.selectionEnd()) {
        blocks.removeLast(); // nothing of it is selected
    }
    return blocks;
}

void changeBlock(const QTextBlock &block, const std::function<void(QTextBlockFormat &)> &change)
{
    QTextBlockFormat format = block.blockFormat();
    change(format);
    if (format != block.blockFormat()) {
        QTextCursor(block).setBlockFormat(format);
    }
}

void changeBlocks(const QTextCursor &cursor, const std::function<void(QTextBlockFormat &)> &change)
{
    const QList<QTextBlock> blocks = selectedBlocks(cursor);
    for (const QTextBlock &block : blocks) {
        changeBlock(block, change);
    }
}

void setIndents(QTextBlockFormat &format, double left, double first)
{
    const double moved = left + first - format.leftMargin() - format.textIndent();
    QList<QTextOption::Tab> tabs = format.tabPositions();
    for (QTextOption::Tab &tab : tabs) {
        tab.position -= moved;
    }
    if (!tabs.isEmpty() && moved != 0) {
        format.setTabPositions(tabs);
    }
    const auto set = [&format](int property, double value) {
        if (value == 0) {
            format.clearProperty(property);
        } else {
            format.setProperty(property, value);
        }
    };
    set(QTextFormat::BlockLeftMargin, left);
    set(QTextFormat::TextIndent, first);
}

void setPageBreakBefore(QTextBlockFormat &format, bool breaks)
{
    if (breaks) {
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    } else {
        format.clearProperty(QTextFormat::PageBreakPolicy);
    }
}

bool hasPageBreakBefore(const QTextBlockFormat &format)
{
    return format.pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore);
}

bool hasRule(const QTextBlockFormat &format)
{
    return format.hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
}

bool areInOnePlace(const QTextBlock &one, const QTextBlock &other)
{
    const QTextCursor first(one);
    const QTextCursor second(other);
    const QTextTable *table = first.currentTable();
    return first.currentFrame() == second.currentFrame()
        && (!table || table->cellAt(first) == table->cellAt(second));
}

void splitParagraph(QTextCursor &cursor)
{
    cursor.removeSelectedText();
    const bool endsHeading =
        cursor.blockFormat().headingLevel() > 0 && cursor.atBlockEnd() && !cursor.atBlockStart();
    cursor.insertBlock(cursor.blockFormat(), lookOfTyped(cursor));
    if (endsHeading) {
        setHeading(cursor.block(), 0);
        typeAsBlock(cursor);
    }
    changeBlock(cursor.block(), [](QTextBlockFormat &format) {
        setPageBreakBefore(format, false);
        format.clearProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
    });
}

} // namespace quorvane
