#pragma once

#include <QColor>
#include <QList>
#include <QTextCharFormat>

#include <optional>

class QTextTable;

namespace quorvane {

struct TableArea;

/// The look of cells. What is absent differs among them, or is not to be changed.
struct CellLook
{
    std::optional<double> border; ///< Width of each side in pixels; 0 for none.
    std::optional<QColor> borderColour;
    std::optional<QColor> shade; ///< No valid colour for none.
    std::optional<QTextCharFormat::VerticalAlignment> vertical;
};

CellLook lookOfCells(const QTextTable &table, const TableArea &area);
void applyLook(QTextTable &table, const TableArea &area, const CellLook &look);
void clearCellBorders(QTextFormat &format);

/// The look of the table itself.
struct TableLook
{
    Qt::Alignment alignment;
    bool hasHeader = false;
    QList<double> widths; ///< Of the columns, in per cent of the text's.
};

TableLook lookOfTable(const QTextTable &table);
void applyLook(QTextTable &table, const TableLook &look);

} // namespace quorvane
