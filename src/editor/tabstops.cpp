#include "editor/tabstops.h"

#include "editor/tablegeometry.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPalette>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

/// The character that fills the room, repeated.
QString fillingOf(char leader)
{
    constexpr const char16_t *fillings[] = {u"", u".", u"\u00b7", u"-", u"_", u"_", u"="};
    const int number = leader - '0';
    return number > 0 && number < int(std::size(fillings)) ? QString::fromUtf16(fillings[number])
                                                           : QString();
}

void drawLeadersOf(QPainter &painter, const QTextBlock &block, const QColor &colour)
{
    const QAbstractTextDocumentLayout &layout = *block.document()->documentLayout();
    const QPointF origin = layout.blockBoundingRect(block).topLeft();
    const QList<TabStop> stops = tabStopsOf(block);
    const double start = textStartOf(block);
    const QString text = block.text();
    const QTextLine first = block.layout()->lineAt(0);
    const double factor = start > 0 && first.x() > 0 ? first.x() / start : 1;
    for (qsizetype at = text.indexOf(u'\t'); at >= 0; at = text.indexOf(u'\t', at + 1)) {
        const QTextLine line = block.layout()->lineForTextPosition(int(at));
        const double from = line.cursorToX(int(at));
        const double to = line.cursorToX(int(at) + 1);
        const auto stop = std::find_if(stops.begin(), stops.end(), [&](const TabStop &candidate) {
            return (candidate.position - start) * factor > from - line.x() + 0.5;
        });
        const QString filling = stop == stops.end() ? QString() : fillingOf(stop->leader);
        if (filling.isEmpty()) {
            continue;
        }
        QTextCursor cursor(block);
        cursor.setPosition(block.position() + int(at) + 1);
        const QFont font = cursor.charFormat().font();
        QPaintDevice *device = layout.paintDevice();
        const QFontMetricsF metrics = device ? QFontMetricsF(font, device) : QFontMetricsF(font);
        const double width = metrics.horizontalAdvance(filling);
        const auto count = qsizetype((to - from) / std::max(1.0, width)) - 1;
        if (count < 1) {
            continue;
        }
        QTextLayout dots(filling.repeated(count), font, device);
        dots.beginLayout();
        QTextLine drawn = dots.createLine();
        dots.endLayout();
        painter.setPen(colour);
        const double left = to - (double(count) + 0.5) * width; // dots of all lines are in columns
        dots.draw(&painter, origin + QPointF(left, line.y() + line.ascent() - drawn.ascent()));
    }
}

} // namespace

double textStartOf(const QTextBlock &block)
{
    const QTextBlockFormat format = block.blockFormat();
    const QTextList *list = block.textList();
    const int steps = format.indent() + (list ? list->format().indent() : 0);
    return format.leftMargin() + format.textIndent() + steps * block.document()->indentWidth();
}

QList<TabStop> tabStopsOf(const QTextBlock &block)
{
    const QList<QTextOption::Tab> tabs = block.blockFormat().tabPositions();
    QByteArray leaders = block.blockFormat().property(TabLeaders).toByteArray();
    if (leaders.size() != tabs.size()) {
        leaders = QByteArray(tabs.size(), '0');
    }
    const double start = textStartOf(block);
    QList<TabStop> stops;
    for (qsizetype i = 0; i < tabs.size(); ++i) {
        stops.append({tabs.at(i).position + start, tabs.at(i).type, leaders.at(i)});
    }
    return stops;
}

void setTabStops(QTextBlockFormat &format, QList<TabStop> stops, double textStart)
{
    std::stable_sort(stops.begin(), stops.end(), [](const TabStop &one, const TabStop &other) {
        return one.position < other.position;
    });
    QList<QTextOption::Tab> tabs;
    QByteArray leaders;
    for (const TabStop &stop : stops) {
        const bool isDecimal = stop.type == QTextOption::DelimiterTab;
        tabs.append(QTextOption::Tab(stop.position - textStart, stop.type,
                                     isDecimal ? QChar(u'.') : QChar()));
        leaders.append(stop.leader);
    }
    if (tabs.isEmpty()) {
        format.clearProperty(QTextFormat::TabPositions);
    } else {
        format.setTabPositions(tabs);
    }
    if (leaders.count('0') < leaders.size()) {
        format.setProperty(TabLeaders, leaders);
    } else {
        format.clearProperty(TabLeaders);
    }
}

void drawTabLeaders(QPainter &painter, const QTextBlock &first, const QRectF &view,
                    const QPalette &palette)
{
    QTextBlock next;
    for (QTextBlock block = first; block.isValid(); block = next) {
        const QRectF place = block.document()->documentLayout()->blockBoundingRect(block);
        const bool isBelow = place.top() > view.bottom();
        next = isBelow ? blockBeside(block) : block.next();
        if (!isBelow && block.blockFormat().hasProperty(TabLeaders)
            && block.layout()->lineCount() > 0) {
            drawLeadersOf(painter, block, palette.color(QPalette::Text));
        }
    }
}

} // namespace quorvane
