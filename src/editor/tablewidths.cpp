#include "editor/tablewidths.h"

#include <QTextTable>

#include <cmath>

namespace quorvane {

namespace {

constexpr double steps = 50; // to a per cent
constexpr double whole = 100;
constexpr double nearlyWhole = 99.5;

double sumOf(const QList<QTextLength> &widths, QTextLength::Type type)
{
    double sum = 0;
    for (const QTextLength &width : widths) {
        sum += width.type() == type ? width.rawValue() : 0;
    }
    return sum;
}

/// Rounding never makes them wider together.
QList<QTextLength> scaled(QList<QTextLength> widths, QTextLength::Type type, double factor)
{
    for (QTextLength &width : widths) {
        if (width.type() != type) {
            continue;
        }
        const double value = width.rawValue() * factor;
        width = type == QTextLength::PercentageLength
            ? QTextLength(type, std::floor(value * steps + 1e-6) / steps)
            : QTextLength(type, std::round(value));
    }
    return widths;
}

} // namespace

QTextLength shareOf(double percent)
{
    return QTextLength(QTextLength::PercentageLength, std::round(percent * steps) / steps);
}

QList<QTextLength> equalWidths(int columns)
{
    QList<QTextLength> widths;
    double before = 0;
    for (int i = 1; i <= columns; ++i) {
        const double edge = std::round(whole * i / columns * steps) / steps;
        widths.append(shareOf(edge - before));
        before = edge;
    }
    return widths;
}

QList<QTextLength> widthsOf(const QTextTable &table)
{
    QList<QTextLength> widths = table.format().columnWidthConstraints();
    widths.resize(table.columns());
    return widths;
}

void setWidths(QTextTable &table, const QList<QTextLength> &widths)
{
    QTextTableFormat format = table.format();
    format.setColumnWidthConstraints(widths);
    table.setFormat(format);
}

QList<QTextLength> withInserted(QList<QTextLength> widths, int at, int count, int like)
{
    const QTextLength added = widths.value(like);
    const double before = sumOf(widths, added.type());
    widths.insert(at, count, added);
    const double after = sumOf(widths, added.type());
    return after > before && added.type() != QTextLength::VariableLength
        ? scaled(widths, added.type(), before / after)
        : widths;
}

QList<QTextLength> withoutRemoved(QList<QTextLength> widths, int first, int count)
{
    constexpr auto share = QTextLength::PercentageLength;
    const double before = sumOf(widths, share);
    widths.remove(first, count);
    const double after = sumOf(widths, share);
    return before >= nearlyWhole && after > 0 ? scaled(widths, share, whole / after) : widths;
}

} // namespace quorvane
