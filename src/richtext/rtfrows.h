#pragma once

#include <QByteArray>

#include <vector>

class QTextTable;
class QTextTableCell;
class QTextTableCellFormat;
class QTextTableFormat;

namespace quorvane {

class RtfWriterTables;

/// Describes the rows of one table.
class RtfRows final
{
public:
    /// How a cell over several columns is written.
    enum class Spans {
        Merged, ///< A cell for each column, merged: says all edges.
        Wide, ///< One wide cell, which more readers show as it is.
    };

    static constexpr qint64 pageWidth = 8640; ///< Twips, as the platform has it.

    /// \param depth 1 for a table that stands in no other.
    /// \param room twips, to divide among columns without a width. The references outlive this.
    RtfRows(const QTextTable &table, int depth, qint64 room, RtfWriterTables &tables, Spans spans);

    /// "\trowd" with all its cells.
    QByteArray definition(int row) const;
    /// Whether the cell at this place has been told of by the one to its left.
    bool isSwallowed(int row, int column) const;
    /// Twips.
    qint64 widthOf(const QTextTableCell &cell) const;

private:
    struct Column
    {
        QByteArray widthWords;
        qint64 rightEdge; ///< Twips.
    };

    void measureColumns(const QTextTableFormat &format, qint64 room);
    QByteArray cellWords(int row, int column) const;
    QByteArray borderWords(const QTextTableCellFormat &cell) const;
    QByteArray paddingWords(const QTextTableCellFormat &cell) const;

    const QTextTable &m_table;
    RtfWriterTables &m_tables;
    Spans m_spans;
    qint64 m_left; ///< Twips.
    std::vector<Column> m_columns;
    QByteArray m_start; ///< The words of all rows.
    int m_headerRows;
};

} // namespace quorvane
