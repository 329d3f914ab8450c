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
    /// \a depth: 1 for a table that stands in no other. Both references outlive this.
    RtfRows(const QTextTable &table, int depth, RtfWriterTables &tables);

    /// "\trowd" with all its cells.
    QByteArray definition(int row) const;

private:
    struct Column
    {
        QByteArray widthWords;
        qint64 rightEdge; ///< Twips.
    };

    void measureColumns(const QTextTableFormat &format);
    QByteArray cellWords(int row, int column) const;
    QByteArray borderWords(const QTextTableCellFormat &cell) const;
    QByteArray paddingWords(const QTextTableCellFormat &cell) const;

    const QTextTable &m_table;
    RtfWriterTables &m_tables;
    int m_depth;
    qint64 m_left; ///< Twips.
    std::vector<Column> m_columns;
    QByteArray m_start; ///< The words of all rows.
    int m_headerRows;
};

} // namespace quorvane
