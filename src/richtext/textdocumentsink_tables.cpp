#include "richtext/rtfformats.h"
#include "richtext/rtftables.h"
#include "richtext/textdocumentsink.h"
#include "richtext/textproperties.h"

#include <QTextDocument>
#include <QTextTable>

#include <algorithm>

namespace quorvane {

namespace {

constexpr double twipsPerPixel = 15;
constexpr double fiftiethsPerPercent = 50;

/// How wide each column is to be: as its first cell says, the edges apart.
QList<QTextLength> columnLengths(const TextTable &table, const TextTableGrid &grid)
{
    QList<QTextLength> lengths(grid.columnCount);
    for (std::size_t i = 0; i < grid.widths.size(); ++i) {
        lengths[qsizetype(i)] =
            QTextLength(QTextLength::FixedLength, grid.widths[i] / twipsPerPixel);
    }
    std::vector<bool> isTold(std::size_t(grid.columnCount));
    for (std::size_t r = 0; r < grid.rows.size(); ++r) {
        const RtfRow &definition = table.definitions[table.rows[r].definition];
        for (const TextTableGrid::Place &place : grid.rows[r]) {
            if (place.columns != 1 || isTold[std::size_t(place.column)]
                || place.index >= definition.cells.size()) {
                continue;
            }
            isTold[std::size_t(place.column)] = true;
            const RtfCell &cell = definition.cells[place.index];
            if (cell.widthUnit == RtfCell::WidthUnit::Automatic) {
                lengths[place.column] = QTextLength();
            } else if (cell.widthUnit == RtfCell::WidthUnit::Percent) {
                lengths[place.column] =
                    QTextLength(QTextLength::PercentageLength, cell.width / fiftiethsPerPercent);
            }
        }
    }
    return lengths;
}

int headerRows(const TextTable &table)
{
    const auto plain =
        std::find_if(table.rows.begin(), table.rows.end(), [&table](const TextRow &row) {
            return !table.definitions[row.definition].isHeader;
        });
    return int(plain - table.rows.begin());
}

/// The format of a cell holds its span, too.
void setCellFormat(QTextTableCell &cell, QTextTableCellFormat &format)
{
    if (cell.rowSpan() > 1) {
        format.setTableCellRowSpan(cell.rowSpan());
    }
    if (cell.columnSpan() > 1) {
        format.setTableCellColumnSpan(cell.columnSpan());
    }
    cell.setFormat(format);
}

} // namespace

void TextDocumentSink::write(TextTable &table)
{
    const TextTableGrid grid = gridOf(table, m_tables->isPlatforms);
    QTextTableFormat format = tableFormatOf(table.definitions.front());
    format.setColumnWidthConstraints(columnLengths(table, grid));
    if (const int headers = headerRows(table); headers > 0) {
        format.setHeaderRowCount(headers);
    }
    if (m_isFirst) {
        QTextBlockFormat before;
        before.setProperty(BeforeTable, true);
        m_cursor.setBlockFormat(before);
    }
    QTextTable *const made = m_cursor.insertTable(int(grid.rows.size()), grid.columnCount, format);
    mergeCells(*made, grid);
    fillCells(*made, table, grid);
    m_cursor.setPosition(made->lastPosition() + 1);
    m_hasOpenBlock = true;
    m_isFirst = false;
}

void TextDocumentSink::mergeCells(QTextTable &table, const TextTableGrid &grid)
{
    const qint64 cost = qint64(grid.rows.size()) * grid.columnCount + 1;
    for (std::size_t r = 0; r < grid.rows.size(); ++r) {
        for (const TextTableGrid::Place &place : grid.rows[r]) {
            if (place.rows == 0 || (place.rows == 1 && place.columns == 1)) {
                continue;
            }
            m_mergingLeft -= cost;
            if (m_mergingLeft < 0) {
                return;
            }
            table.mergeCells(int(r), place.column, place.rows, place.columns);
        }
    }
}

void TextDocumentSink::fillCells(QTextTable &made, const TextTable &table,
                                 const TextTableGrid &grid)
{
    for (std::size_t r = 0; r < grid.rows.size(); ++r) {
        const RtfRow &definition = table.definitions[table.rows[r].definition];
        for (const TextTableGrid::Place &place : grid.rows[r]) {
            if (place.rows == 0) {
                continue;
            }
            QTextTableCell cell = made.cellAt(int(r), place.column);
            QTextTableCellFormat format = cellFormatOf(definition, place.index, r == 0, *m_tables);
            const TextItem &first = place.cell->front();
            if (!first.table && first.paragraph.text.isEmpty()) {
                // An empty paragraph's look is its cell's.
                QTextCharFormat look = m_formats[first.paragraph.endFormat];
                look.clearBackground();
                format.merge(look);
            }
            if (format.propertyCount() > 0) {
                setCellFormat(cell, format);
            }
            m_cursor = cell.firstCursorPosition();
            write(*place.cell);
        }
    }
}

void TextDocumentSink::write(TextCell &cell)
{
    m_hasOpenBlock = true;
    m_isFirst = true;
    for (TextItem &item : cell) {
        if (item.table) {
            write(*item.table);
        } else {
            write(item.paragraph, true);
        }
    }
}

} // namespace quorvane
