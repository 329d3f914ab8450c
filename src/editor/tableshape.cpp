#include "editor/tableshape.h"

#include "editor/tablewidths.h"
#include "richtext/textproperties.h"

#include <QColor>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QTextTable>

#include <algorithm>
#include <vector>

namespace quorvane {

namespace {

constexpr double borderWidth = 1;
constexpr QRgb borderColour = qRgb(0x96, 0x96, 0x96); // seen on light and on dark paper
constexpr double sidePadding = 6;
constexpr double upperPadding = 3;
constexpr int fontProperties[] = {
    QTextFormat::FontFamilies,
    QTextFormat::FontPointSize,
    QTextFormat::FontWeight,
    QTextFormat::FontItalic,
    FontName,
    FontKey,
};

struct Span
{
    TableArea area;
    QTextTableCellFormat format;
};

/// What a cell looks like, whatever it covers.
QTextTableCellFormat lookOf(const QTextTableCell &cell)
{
    QTextTableCellFormat format = cell.format().toTableCellFormat();
    format.clearProperty(QTextFormat::TableCellRowSpan);
    format.clearProperty(QTextFormat::TableCellColumnSpan);
    return format;
}

/// The format of a cell says what it covers, too.
void setLook(QTextTableCell cell, QTextTableCellFormat format)
{
    if (cell.rowSpan() > 1) {
        format.setTableCellRowSpan(cell.rowSpan());
    }
    if (cell.columnSpan() > 1) {
        format.setTableCellColumnSpan(cell.columnSpan());
    }
    cell.setFormat(format);
}

std::vector<Span> takeApart(QTextTable &table)
{
    std::vector<Span> spans;
    for (int row = 0; row < table.rows(); ++row) {
        for (int column = 0; column < table.columns(); ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            const bool isMerged = cell.rowSpan() > 1 || cell.columnSpan() > 1;
            if (isMerged && cell.row() == row && cell.column() == column) {
                spans.push_back({{row, column, cell.rowSpan(), cell.columnSpan()}, lookOf(cell)});
            }
        }
    }
    for (const Span &span : spans) {
        table.splitCell(span.area.row, span.area.column, 1, 1);
    }
    return spans;
}

void putTogether(QTextTable &table, const std::vector<Span> &spans)
{
    for (const Span &span : spans) {
        const TableArea &area = span.area;
        if (area.rows > 1 || area.columns > 1) {
            table.mergeCells(area.row, area.column, area.rows, area.columns);
        }
        setLook(table.cellAt(area.row, area.column), span.format);
    }
}

/// What new cells take over from one that is there.
struct Look
{
    QTextTableCellFormat cell;
    QTextBlockFormat block;
};

Look lookForNew(const QTextTableCell &cell)
{
    Look look {lookOf(cell), {}};
    const QTextBlock block = cell.firstCursorPosition().block();
    if (block.blockFormat().hasProperty(QTextFormat::BlockAlignment)) {
        look.block.setAlignment(block.blockFormat().alignment());
    }
    if (!block.begin().atEnd()) {
        const QTextCharFormat text = block.begin().fragment().charFormat();
        for (const int property : fontProperties) {
            look.cell.setProperty(property, text.property(property)); // clears what is not there
        }
    }
    return look;
}

void give(QTextTableCell cell, const Look &look)
{
    setLook(cell, look.cell);
    QTextCursor cursor = cell.firstCursorPosition();
    cursor.setBlockFormat(look.block);
}

void moveContent(QTextTable &table, int fromRow, int fromColumn, int toRow, int toColumn)
{
    const QTextTableCell from = table.cellAt(fromRow, fromColumn);
    QTextCursor cursor = from.firstCursorPosition();
    const QTextBlockFormat look = cursor.blockFormat();
    cursor.setPosition(from.lastPosition(), QTextCursor::KeepAnchor);
    QTextCursor target = table.cellAt(toRow, toColumn).firstCursorPosition();
    target.setBlockFormat(look);
    target.insertFragment(cursor.selection());
}

/// One of the two directions of a table, so that rows and columns are one matter.
struct Lines
{
    int TableArea::*at;
    int TableArea::*count;
};

constexpr Lines rowLines {&TableArea::row, &TableArea::rows};
constexpr Lines columnLines {&TableArea::column, &TableArea::columns};

/// Cells merged along the line that new ones are like are merged there, too.
void growSpans(std::vector<Span> &spans, const Lines &lines, int at, int count, int like)
{
    std::vector<Span> added;
    for (Span &span : spans) {
        int &first = span.area.*lines.at;
        int &covered = span.area.*lines.count;
        const bool isLiked = first <= like && like < first + covered;
        if (first < at && at < first + covered) {
            covered += count;
            continue;
        }
        Span copy = span;
        first += first >= at ? count : 0;
        for (int i = 0; isLiked && i < count; ++i) {
            copy.area.*lines.at = at + i;
            copy.area.*lines.count = 1;
            added.push_back(copy);
        }
    }
    const auto isOne = [](const Span &span) {
        return span.area.rows == 1 && span.area.columns == 1;
    };
    std::erase_if(added, isOne);
    spans.insert(spans.end(), added.begin(), added.end());
}

void shrinkSpans(std::vector<Span> &spans, const Lines &lines, int from, int count)
{
    for (Span &span : spans) {
        int &first = span.area.*lines.at;
        int &covered = span.area.*lines.count;
        const int gone =
            std::max(std::min(first + covered, from + count) - std::max(first, from), 0);
        covered -= gone;
        first -= std::clamp(first - from, 0, count);
    }
    std::erase_if(spans, [&lines](const Span &span) { return span.area.*lines.count == 0; });
}

/// The content of merged cells that reach out of what is removed goes to the first cell that stays.
void saveContents(QTextTable &table, const std::vector<Span> &spans, const Lines &lines, int from,
                  int count)
{
    for (const Span &span : spans) {
        const int first = span.area.*lines.at;
        const bool begins = first >= from && first < from + count;
        if (begins && first + span.area.*lines.count > from + count) {
            TableArea to = span.area;
            to.*lines.at = from + count;
            moveContent(table, span.area.row, span.area.column, to.row, to.column);
        }
    }
}

void setHeaderRows(QTextTable &table, int count)
{
    QTextTableFormat format = table.format();
    if (count != format.headerRowCount()) {
        format.setHeaderRowCount(count);
        table.setFormat(format);
    }
}

QTextTableCellFormat newCellFormat(const QTextCharFormat &text)
{
    QTextTableCellFormat format;
    for (const int property : fontProperties) {
        format.setProperty(property, text.property(property));
    }
    addUsualLook(format, QTextTableFormat());
    return format;
}

/// The first position of the cell around the cursor, or else of the text.
int startAround(const QTextCursor &cursor)
{
    const QTextTable *const table = cursor.currentTable();
    return table ? table->cellAt(cursor).firstPosition() : cursor.currentFrame()->firstPosition();
}

/// Leaves the caret where the table is to come, and the empty paragraph that it stood in, if it did
/// in one, to be the one behind the table.
QTextBlockFormat makeWay(QTextCursor &cursor)
{
    cursor.setPosition(cursor.selectionEnd());
    QTextBlockFormat behind = cursor.blockFormat();
    behind.clearProperty(BeforeTable);
    const QTextBlock block = cursor.block();
    if (block.length() > 1) {
        return behind;
    }
    const int start = startAround(cursor);
    if (start == block.position()) {
        QTextBlockFormat before;
        before.setProperty(BeforeTable, true);
        cursor.setBlockFormat(before);
    } else if (startAround(QTextCursor(block.previous())) == start) { // else a table ends there
        cursor.deletePreviousChar();
    }
    return behind;
}

} // namespace

void addUsualLook(QTextTableCellFormat &format, const QTextTableFormat &table)
{
    struct Side
    {
        QTextFormat::Property width;
        QTextFormat::Property style;
        QTextFormat::Property brush;
        QTextFormat::Property padding;
        double usualPadding;
    };

    constexpr Side sides[] = {
        {QTextFormat::TableCellTopBorder, QTextFormat::TableCellTopBorderStyle,
         QTextFormat::TableCellTopBorderBrush, QTextFormat::TableCellTopPadding, upperPadding},
        {QTextFormat::TableCellBottomBorder, QTextFormat::TableCellBottomBorderStyle,
         QTextFormat::TableCellBottomBorderBrush, QTextFormat::TableCellBottomPadding,
         upperPadding},
        {QTextFormat::TableCellLeftBorder, QTextFormat::TableCellLeftBorderStyle,
         QTextFormat::TableCellLeftBorderBrush, QTextFormat::TableCellLeftPadding, sidePadding},
        {QTextFormat::TableCellRightBorder, QTextFormat::TableCellRightBorderStyle,
         QTextFormat::TableCellRightBorderBrush, QTextFormat::TableCellRightPadding, sidePadding},
    };
    const QColor told = table.borderBrush().color();
    const QColor colour = told.isValid() && told != Qt::darkGray && told != Qt::black // by default
        ? told
        : QColor(borderColour);
    for (const Side &side : sides) {
        const bool isTold = format.hasProperty(side.width)
            || (format.hasProperty(side.brush) && table.border() <= 0); // there is to be none
        if (!isTold) {
            format.setProperty(side.width, table.border() > 0 ? table.border() : borderWidth);
            format.setProperty(side.style, QTextFrameFormat::BorderStyle_Solid);
            format.setProperty(side.brush, QBrush(colour));
        }
        if (!format.hasProperty(side.padding)) {
            format.setProperty(side.padding,
                               table.cellPadding() > 0 ? table.cellPadding() : side.usualPadding);
        }
    }
}

int tableDepthAt(const QTextCursor &cursor)
{
    int depth = 0;
    for (const QTextFrame *frame = cursor.currentFrame(); frame; frame = frame->parentFrame()) {
        depth += qobject_cast<const QTextTable *>(frame) ? 1 : 0;
    }
    return depth;
}

QTextTable *insertTable(QTextCursor &cursor, int rows, int columns, bool hasHeader)
{
    const QTextTableCellFormat cellFormat = newCellFormat(cursor.charFormat());
    const QTextBlockFormat behind = makeWay(cursor);
    QTextTableFormat format;
    format.setBorder(0);
    format.setBorderCollapse(true);
    format.setCellSpacing(0);
    format.setCellPadding(0);
    format.setColumnWidthConstraints(equalWidths(columns));
    if (hasHeader) {
        format.setHeaderRowCount(1);
    }
    QTextTable *const table = cursor.insertTable(rows, columns, format);
    for (int row = 0; row < rows; ++row) {
        QTextTableCellFormat look = cellFormat;
        if (row == 0 && hasHeader) {
            look.setFontWeight(QFont::Bold);
        }
        for (int column = 0; column < columns; ++column) {
            table->cellAt(row, column).setFormat(look);
        }
    }
    cursor.setPosition(table->lastPosition() + 1);
    cursor.setBlockFormat(behind);
    cursor = table->cellAt(0, 0).firstCursorPosition();
    return table;
}

void insertTableRows(QTextTable &table, int at, int count, int like)
{
    std::vector<Look> looks;
    for (int column = 0; column < table.columns(); ++column) {
        looks.push_back(lookForNew(table.cellAt(like, column)));
    }
    const int headers = table.format().headerRowCount();
    std::vector<Span> spans = takeApart(table);
    table.insertRows(at, count);
    for (int row = at; row < at + count; ++row) {
        for (int column = 0; column < table.columns(); ++column) {
            give(table.cellAt(row, column), looks[std::size_t(column)]);
        }
    }
    growSpans(spans, rowLines, at, count, like);
    putTogether(table, spans);
    setHeaderRows(table, at < headers ? headers + count : headers);
}

void insertTableColumns(QTextTable &table, int at, int count, int like)
{
    std::vector<Look> looks;
    for (int row = 0; row < table.rows(); ++row) {
        looks.push_back(lookForNew(table.cellAt(row, like)));
    }
    const QList<QTextLength> widths = widthsOf(table);
    std::vector<Span> spans = takeApart(table);
    table.insertColumns(at, count);
    for (int row = 0; row < table.rows(); ++row) {
        for (int column = at; column < at + count; ++column) {
            give(table.cellAt(row, column), looks[std::size_t(row)]);
        }
    }
    growSpans(spans, columnLines, at, count, like);
    putTogether(table, spans);
    setWidths(table, withInserted(widths, at, count, like));
}

void removeTableRows(QTextTable &table, int first, int count)
{
    const int headers = table.format().headerRowCount();
    std::vector<Span> spans = takeApart(table);
    saveContents(table, spans, rowLines, first, count);
    table.removeRows(first, count);
    shrinkSpans(spans, rowLines, first, count);
    putTogether(table, spans);
    setHeaderRows(table, headers - std::clamp(headers - first, 0, count));
}

void removeTableColumns(QTextTable &table, int first, int count)
{
    const QList<QTextLength> widths = widthsOf(table);
    std::vector<Span> spans = takeApart(table);
    saveContents(table, spans, columnLines, first, count);
    table.removeColumns(first, count);
    shrinkSpans(spans, columnLines, first, count);
    putTogether(table, spans);
    setWidths(table, withoutRemoved(widths, first, count));
}

// What the toolkit removes with a table is what parts the paragraph before it from the one behind.
void removeTable(QTextCursor &cursor, QTextTable &table)
{
    QTextCursor behind(table.document());
    behind.setPosition(table.lastPosition() + 1);
    const QTextBlockFormat look = behind.blockFormat();
    const QTextCharFormat charLook = behind.blockCharFormat();
    cursor.setPosition(table.firstPosition() - 1);
    const bool isAlone =
        cursor.block().length() == 1 && cursor.blockFormat().boolProperty(BeforeTable);
    table.removeRows(0, table.rows());
    if (isAlone) { // it was there for the table's sake
        cursor.setBlockFormat(look);
    } else {
        cursor.insertBlock(look, charLook);
    }
}

TableArea withWholeCells(const QTextTable &table, TableArea area)
{
    for (bool grows = true; grows;) {
        const TableArea before = area;
        for (int row = before.row; row < before.row + before.rows; ++row) {
            for (int column = before.column; column < before.column + before.columns; ++column) {
                const QTextTableCell cell = table.cellAt(row, column);
                const int bottom = std::max(area.row + area.rows, cell.row() + cell.rowSpan());
                const int right =
                    std::max(area.column + area.columns, cell.column() + cell.columnSpan());
                area.row = std::min(area.row, cell.row());
                area.column = std::min(area.column, cell.column());
                area.rows = bottom - area.row;
                area.columns = right - area.column;
            }
        }
        grows = area != before;
    }
    return area;
}

void mergeTableCells(QTextTable &table, const TableArea &area)
{
    const QTextTableCellFormat look = lookOf(table.cellAt(area.row, area.column));
    table.mergeCells(area.row, area.column, area.rows, area.columns);
    setLook(table.cellAt(area.row, area.column), look);
}

void splitTableCell(QTextTable &table, int row, int column)
{
    const QTextTableCell cell = table.cellAt(row, column);
    const TableArea area {cell.row(), cell.column(), cell.rowSpan(), cell.columnSpan()};
    const Look look = lookForNew(cell);
    const QTextTableCellFormat own = lookOf(cell);
    table.splitCell(area.row, area.column, 1, 1);
    setLook(table.cellAt(area.row, area.column), own);
    for (int r = area.row; r < area.row + area.rows; ++r) {
        for (int c = area.column; c < area.column + area.columns; ++c) {
            if (r != area.row || c != area.column) {
                give(table.cellAt(r, c), look);
            }
        }
    }
}

} // namespace quorvane
