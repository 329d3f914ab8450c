#include "editor/tablelook.h"

#include "editor/tablegeometry.h"
#include "editor/tableshape.h"
#include "editor/tablewidths.h"

#include <QTextTable>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double whole = 100;
constexpr double visible = 0.1; // of a column's width: what is less is rounding

constexpr int borderProperties[] = {
    QTextFormat::TableCellTopBorder,       QTextFormat::TableCellBottomBorder,
    QTextFormat::TableCellLeftBorder,      QTextFormat::TableCellRightBorder,
    QTextFormat::TableCellTopBorderStyle,  QTextFormat::TableCellBottomBorderStyle,
    QTextFormat::TableCellLeftBorderStyle, QTextFormat::TableCellRightBorderStyle,
    QTextFormat::TableCellTopBorderBrush,  QTextFormat::TableCellBottomBorderBrush,
    QTextFormat::TableCellLeftBorderBrush, QTextFormat::TableCellRightBorderBrush,
};

CellLook lookOf(const QTextTableCellFormat &format)
{
    CellLook look;
    const double top = format.topBorder();
    const bool isEven =
        top == format.bottomBorder() && top == format.leftBorder() && top == format.rightBorder();
    look.border = isEven ? std::optional(top) : std::nullopt;
    look.borderColour = format.topBorderBrush().color();
    const QBrush background = format.background();
    look.shade = background.style() == Qt::NoBrush ? QColor() : background.color();
    const auto vertical = format.verticalAlignment();
    const bool isLow =
        vertical == QTextCharFormat::AlignMiddle || vertical == QTextCharFormat::AlignBottom;
    look.vertical = isLow ? vertical : QTextCharFormat::AlignTop;
    return look;
}

template <typename Value>
void keepCommon(std::optional<Value> &common, const std::optional<Value> &other)
{
    common = common == other ? common : std::nullopt;
}

template <typename Visit>
void visitCells(const QTextTable &table, const TableArea &area, Visit visit)
{
    for (int row = area.row; row < area.row + area.rows; ++row) {
        for (int column = area.column; column < area.column + area.columns; ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() == row && cell.column() == column) {
                visit(cell);
            }
        }
    }
}

void applyBorder(QTextTableCellFormat &format, const CellLook &look)
{
    const double width = look.border.value_or(format.topBorder());
    if (look.border) {
        const QColor colour = look.borderColour.value_or(format.topBorderBrush().color());
        clearCellBorders(format);
        if (width > 0) {
            format.setBorder(width);
            format.setBorderStyle(QTextFrameFormat::BorderStyle_Solid);
            format.setBorderBrush(colour);
        }
    } else if (look.borderColour && width > 0) {
        format.setBorderBrush(*look.borderColour);
    }
}

} // namespace

void clearCellBorders(QTextFormat &format)
{
    for (const int property : borderProperties) {
        format.clearProperty(property);
    }
}

CellLook lookOfCells(const QTextTable &table, const TableArea &area)
{
    std::optional<CellLook> common;
    visitCells(table, area, [&common](const QTextTableCell &cell) {
        const CellLook look = lookOf(cell.format().toTableCellFormat());
        if (!common) {
            common = look;
            return;
        }
        keepCommon(common->border, look.border);
        keepCommon(common->borderColour, look.borderColour);
        keepCommon(common->shade, look.shade);
        keepCommon(common->vertical, look.vertical);
    });
    return common.value_or(CellLook());
}

void applyLook(QTextTable &table, const TableArea &area, const CellLook &look)
{
    visitCells(table, area, [&look](QTextTableCell cell) {
        QTextTableCellFormat format = cell.format().toTableCellFormat(); // with what it covers
        applyBorder(format, look);
        if (look.shade && look.shade->isValid()) {
            format.setBackground(*look.shade);
        } else if (look.shade) {
            format.clearBackground();
        }
        if (look.vertical == QTextCharFormat::AlignTop) {
            format.clearProperty(QTextFormat::TextVerticalAlignment);
        } else if (look.vertical) {
            format.setVerticalAlignment(*look.vertical);
        }
        cell.setFormat(format);
    });
}

TableLook lookOfTable(const QTextTable &table)
{
    const std::vector<double> edges = columnEdges(table);
    const double room = std::max(roomOf(table), 1.0);
    TableLook look {table.format().alignment() & Qt::AlignHorizontal_Mask,
                    table.format().headerRowCount() > 0,
                    {}};
    const QList<QTextLength> told = widthsOf(table);
    for (int i = 0; i < told.size(); ++i) {
        const double width = edges[std::size_t(i) + 1] - edges[std::size_t(i)];
        look.widths.append(told[i].type() == QTextLength::PercentageLength
                               ? told[i].rawValue()
                               : std::min(width / room * whole, whole));
    }
    return look;
}

void applyLook(QTextTable &table, const TableLook &look)
{
    const TableLook before = lookOfTable(table);
    QTextTableFormat format = table.format();
    if (look.alignment == Qt::AlignHCenter || look.alignment == Qt::AlignRight) {
        format.setAlignment(look.alignment);
    } else {
        format.clearProperty(QTextFormat::BlockAlignment);
    }
    if (look.hasHeader != before.hasHeader) {
        format.setHeaderRowCount(look.hasHeader ? 1 : 0);
    }
    if (!look.hasHeader) {
        format.clearProperty(QTextFormat::TableHeaderRowCount);
    }
    const auto isSame = [](double a, double b) {
        return std::abs(a - b) < visible;
    };
    if (!std::equal(look.widths.begin(), look.widths.end(), before.widths.begin(),
                    before.widths.end(), isSame)) {
        QList<QTextLength> widths;
        for (const double width : look.widths) {
            widths.append(shareOf(width));
        }
        format.setColumnWidthConstraints(widths);
    }
    table.setFormat(format);
}

} // namespace quorvane
