#pragma once

#include <QList>
#include <QRectF>
#include <QTextOption>

class QPainter;
class QPalette;
class QTextBlock;
class QTextBlockFormat;

namespace quorvane {

/// A tab stop of a paragraph, counted from the margin.
struct TabStop
{
    double position = 0;
    QTextOption::TabType type = QTextOption::LeftTab;
    char leader = '0'; ///< As in TabLeaders.

    bool operator==(const TabStop &other) const = default;
};

/// Where the first line of a paragraph begins, counted from the margin.
double textStartOf(const QTextBlock &block);

QList<TabStop> tabStopsOf(const QTextBlock &block);
void setTabStops(QTextBlockFormat &format, QList<TabStop> stops, double textStart);

/// Draws what fills the room before tab stops, from \a first on down to the end of \a view.
void drawTabLeaders(QPainter &painter, const QTextBlock &first, const QRectF &view,
                    const QPalette &palette);

} // namespace quorvane
