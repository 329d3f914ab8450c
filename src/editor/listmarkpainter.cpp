#include "editor/listmarkpainter.h"

#include "editor/listlevels.h"
#include "editor/tablegeometry.h"
#include "richtext/listmarks.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextList>

namespace quorvane {

namespace {

/// The look of an item's mark, which is that of its first character.
struct Mark
{
    QFont font;
    QPaintDevice *device = nullptr;
    QTextCharFormat format;
    double right = 0; // where it ends, or begins where text runs to the left
    bool isRightToLeft = false;
    double top = 0; // of the first line
    double baseline = 0;

    QFontMetricsF metrics() const
    {
        return device ? QFontMetricsF(font, device) : QFontMetricsF(font);
    }
};

Mark markOf(const QTextBlock &item)
{
    const QAbstractTextDocumentLayout &layout = *item.document()->documentLayout();
    const QRectF block = layout.blockBoundingRect(item);
    const QTextLine line = item.layout()->lineAt(0);
    const QRectF text = line.naturalTextRect();
    Mark mark;
    mark.format = QTextCursor(item).charFormat();
    mark.device = layout.paintDevice();
    mark.font = mark.format.font();
    mark.isRightToLeft = item.textDirection() == Qt::RightToLeft;
    const double space = mark.metrics().horizontalAdvance(u' ');
    mark.right = block.left() + (mark.isRightToLeft ? text.right() + space : text.left() - space);
    mark.top = block.top() + line.y();
    mark.baseline = mark.top + line.ascent();
    return mark;
}

QRectF boxOf(const Mark &mark)
{
    const QFontMetricsF metrics = mark.metrics();
    const double side = metrics.ascent() * 0.78;
    const double left = mark.isRightToLeft ? mark.right : mark.right - side - 0.1 * side;
    const double middle = mark.baseline - metrics.capHeight() / 2;
    return {left, middle - side / 2, side, side};
}

void drawBox(QPainter &painter, const Mark &mark, bool isDone)
{
    const QRectF box = boxOf(mark);
    const double width = box.width() / 12;
    QPen pen = painter.pen();
    pen.setWidthF(width);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    const double radius = box.width() / 6;
    painter.drawRoundedRect(box.adjusted(width / 2, width / 2, -width / 2, -width / 2), radius,
                            radius);
    if (isDone) {
        const auto at = [&box](double x, double y) {
            return box.topLeft() + QPointF(x * box.width(), y * box.height());
        };
        pen.setWidthF(1.7 * width);
        painter.setPen(pen);
        painter.drawPolyline(QPolygonF {at(0.24, 0.52), at(0.43, 0.72), at(0.77, 0.28)});
    }
    painter.restore();
}

/// Fonts draw bullets where they like. This brings them to the middle of small letters, half an em
/// (which is what these are high) from the text.
QPointF bulletShift(const Mark &mark, const QString &text, double width)
{
    const QFontMetricsF metrics = mark.metrics();
    QPainterPath outline; // the tight rectangle of the metrics reaches down to the baseline
    outline.addText(0, 0, mark.device ? QFont(mark.font, mark.device) : mark.font, text);
    const QRectF ink = outline.boundingRect();
    const double space = metrics.horizontalAdvance(u' ');
    const double behind = mark.isRightToLeft ? ink.left() : width - ink.right();
    const double gap = metrics.xHeight() - space - behind;
    return {mark.isRightToLeft ? gap : -gap, -metrics.xHeight() / 2 - ink.center().y()};
}

void drawText(QPainter &painter, const Mark &mark, const QString &text, bool isBullet)
{
    QTextLayout layout(text, mark.font, mark.device); // sized for the device, as the text is
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(mark.isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    if (!line.isValid()) {
        return;
    }
    line.setLeadingIncluded(true);
    layout.endLayout();
    const double width = line.naturalTextWidth();
    const double left = mark.isRightToLeft ? mark.right : mark.right - width;
    const QPointF place(left, mark.baseline - line.ascent());
    layout.draw(&painter, isBullet ? place + bulletShift(mark, text, width) : place);
}

} // namespace

QRectF listMarkPlace(const QTextBlock &item)
{
    if (!item.textList() || item.layout()->lineCount() == 0) {
        return {};
    }
    const QRectF box = boxOf(markOf(item));
    const double room = box.width() / 3;
    return box.adjusted(-room, -room, room, room);
}

void drawListMarks(QPainter &painter, const QTextBlock &first, const QRectF &view,
                   const QPalette &palette)
{
    QTextBlock next;
    for (QTextBlock block = first; block.isValid(); block = next) {
        const QTextList *list = block.textList();
        const bool isOurs = list && list->format().hasProperty(ListKind);
        const QAbstractTextDocumentLayout &layout = *block.document()->documentLayout();
        const bool isBelow = layout.blockBoundingRect(block).top() > view.bottom();
        next = isBelow ? blockBeside(block) : block.next();
        if (isBelow || !isOurs || block.layout()->lineCount() == 0) {
            continue;
        }
        const Mark mark = markOf(block);
        if (mark.top > view.bottom() || mark.baseline < view.top()) {
            continue;
        }
        const QBrush ink = mark.format.foreground();
        painter.setPen(ink.style() == Qt::NoBrush ? palette.color(QPalette::Text) : ink.color());
        if (isChecklistItem(block)) {
            drawBox(painter, mark, isDone(block));
        } else {
            drawText(painter, mark, listMarkOf(block), !isNumbered(listKind(list->format())));
        }
    }
}

} // namespace quorvane
