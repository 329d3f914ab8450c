#include "editor/tablemarks.h"

#include "editor/tablegeometry.h"
#include "editor/texteditor.h"

#include <QPainter>
#include <QTextBlock>
#include <QTextTable>

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr int gridAlpha = 70;
constexpr int selectionAlpha = 60;

bool hasNoBorder(const QTextTableCell &cell)
{
    const QTextTableCellFormat format = cell.format().toTableCellFormat();
    return format.leftBorder() + format.rightBorder() + format.topBorder() + format.bottomBorder()
        == 0;
}

QRectF rectOf(const QTextTable &table, const QTextTableCell &cell,
              const std::vector<double> &columns)
{
    const std::vector<double> rows = rowEdges(table, cell.row(), cell.row() + cell.rowSpan() - 1);
    return QRectF(QPointF(columns[std::size_t(cell.column())], rows.front()),
                  QPointF(columns[std::size_t(cell.column() + cell.columnSpan())], rows.back()));
}

} // namespace

TableMarks::TableMarks(TextEditor &editor)
    : m_editor(editor)
{
    editor.addOverlay([this](QPainter &painter) { draw(painter); });
    connect(&editor, &QTextEdit::selectionChanged, this, &TableMarks::followSelection);
}

// The toolkit paints anew where text is selected, and empty cells have none.
void TableMarks::followSelection()
{
    const bool hasCells = m_editor.textCursor().hasComplexSelection();
    if (std::exchange(m_hasCells, hasCells) || hasCells) {
        m_editor.viewport()->update();
    }
}

void TableMarks::draw(QPainter &painter) const
{
    if (m_editor.document()->rootFrame()->childFrames().isEmpty()) {
        return;
    }
    const QRect clip = painter.clipBoundingRect().toAlignedRect();
    const TextSpan inView = m_editor.spanIn(clip);
    const QTextBlock first = m_editor.document()->findBlock(inView.from);
    const QTextBlock last = m_editor.document()->findBlock(inView.end());
    drawGrid(painter, first, last);
    drawSelection(painter, first, last);
}

void TableMarks::drawGrid(QPainter &painter, const QTextBlock &first, const QTextBlock &last) const
{
    const QTextTable *drawn = nullptr;
    int rowsDone = 0;
    for (QTextBlock block = first; block.isValid() && block.position() <= last.position();
         block = block.next()) {
        const QTextTable *const table = QTextCursor(block).currentTable();
        const int row = table ? table->cellAt(block.position()).row() : 0;
        if (table && (table != drawn || row >= rowsDone)) {
            drawRow(painter, *table, row, table != drawn);
            rowsDone = row + 1;
        }
        drawn = table;
    }
}

/// Around the cells that begin in a row, and around those from above it where it is the first one.
void TableMarks::drawRow(QPainter &painter, const QTextTable &table, int row, bool isFirst) const
{
    QColor colour = m_editor.palette().color(QPalette::Text);
    colour.setAlpha(gridAlpha);
    painter.setPen(QPen(colour, 1, Qt::DotLine));
    painter.setBrush(Qt::NoBrush);
    std::vector<double> columns;
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        const bool isHere = cell.column() == column && (isFirst || cell.row() == row);
        if (isHere && hasNoBorder(cell)) {
            columns = columns.empty() ? columnEdges(table) : columns;
            painter.drawRect(rectOf(table, cell, columns).translated(m_editor.origin()));
        }
    }
}

void TableMarks::drawSelection(QPainter &painter, const QTextBlock &first,
                               const QTextBlock &last) const
{
    const QTextCursor cursor = m_editor.textCursor();
    const QTextTable *const table = cursor.currentTable();
    if (!table || !cursor.hasComplexSelection()) {
        return;
    }
    int row = 0;
    int rows = 0;
    int column = 0;
    int columns = 0;
    cursor.selectedTableCells(&row, &rows, &column, &columns);
    const QTextTableCell top = table->cellAt(first.position());
    const QTextTableCell bottom = table->cellAt(last.position());
    const int from = std::max(row, top.isValid() ? top.row() : 0);
    const int to = std::min(row + rows, bottom.isValid() ? bottom.row() + 1 : table->rows());
    const std::vector<double> edges = columnEdges(*table);
    QColor colour = m_editor.palette().color(QPalette::Highlight);
    colour.setAlpha(selectionAlpha);
    for (int r = from; r < to; ++r) {
        for (int c = column; c < column + columns; ++c) {
            const QTextTableCell cell = table->cellAt(r, c);
            if ((cell.row() == r || r == from) && cell.column() == c) {
                painter.fillRect(rectOf(*table, cell, edges).translated(m_editor.origin()), colour);
            }
        }
    }
}

} // namespace quorvane
