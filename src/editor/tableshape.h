#pragma once

class QTextCursor;
class QTextTable;
class QTextTableCellFormat;
class QTextTableFormat;

namespace quorvane {

/// Some cells of a table, side by side.
struct TableArea
{
    int row = 0;
    int column = 0;
    int rows = 1;
    int columns = 1;

    bool operator==(const TableArea &) const = default;
};

/// A reader of the text takes no more of them.
constexpr int mostTableColumns = 100;
constexpr int mostTableRows = 1000;
constexpr int deepestTable = 8; ///< Of tables in tables.

/// How many tables stand around the cursor.
int tableDepthAt(const QTextCursor &cursor);

/// Puts a table behind the selection, as wide as the text, with thin borders and the look of the
/// text around; the cursor goes to the first cell. There is a paragraph before it and one behind.
QTextTable *insertTable(QTextCursor &cursor, int rows, int columns, bool hasHeader);

/// Gives a cell the borders and the padding of its table, or of a new one, where it has none of its
/// own.
void addUsualLook(QTextTableCellFormat &format, const QTextTableFormat &table);

// The toolkit's own operations put cells in wrong places where merged ones are near, and give new
// cells no look. These keep both: what a merged cell covers grows and shrinks with the table, new
// cells look like those of row or column \a like, merged as these are.
void insertTableRows(QTextTable &table, int at, int count, int like);
void insertTableColumns(QTextTable &table, int at, int count, int like);
/// Not all of them: see removeTable. A merged cell that begins there and reaches out is kept.
void removeTableRows(QTextTable &table, int first, int count);
void removeTableColumns(QTextTable &table, int first, int count);
/// The cursor stays where the table was.
void removeTable(QTextCursor &cursor, QTextTable &table);

/// The area with all of the merged cells that reach into it.
TableArea withWholeCells(const QTextTable &table, TableArea area);
/// An area of whole cells.
void mergeTableCells(QTextTable &table, const TableArea &area);
void splitTableCell(QTextTable &table, int row, int column);

} // namespace quorvane
