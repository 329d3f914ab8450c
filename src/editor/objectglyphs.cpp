#include "editor/glyphcanvas.h"
#include "editor/glyphicon.h"

namespace quorvane {

namespace {

void drawPadlock(GlyphCanvas &canvas, bool isOpen)
{
    QPainterPath shackle;
    shackle.moveTo(5.6, isOpen ? 5.6 : 9);
    shackle.lineTo(5.6, 5.6);
    shackle.arcTo(QRectF(5.6, 2.2, 6.8, 6.8), 180, -180);
    shackle.lineTo(12.4, 9);
    canvas.stroke(shackle, 1.8);
    QPainterPath body;
    body.addRoundedRect(QRectF(2.8, 7.9, 12.4, 8.4), 1.7, 1.7);
    QPainterPath keyhole;
    keyhole.setFillRule(Qt::WindingFill);
    keyhole.addEllipse(QPointF(9, 11.4), 1.25, 1.25);
    keyhole.addRect(QRectF(8.5, 11.5, 1, 2.7));
    canvas.fill(body.subtracted(keyhole));
}

// Two links of a chain, each open where the other one goes through.
void drawLink(GlyphCanvas &canvas)
{
    QPainterPath link(QPointF(7.6, 10.4));
    link.cubicTo(6.3, 9.1, 6.3, 7.6, 7.5, 6.4);
    link.lineTo(10.2, 3.7);
    link.cubicTo(11.4, 2.5, 13.2, 2.5, 14.3, 3.7);
    link.cubicTo(15.5, 4.8, 15.5, 6.6, 14.3, 7.8);
    link.lineTo(12.6, 9.5);
    canvas.stroke(link);
    QTransform turned;
    turned.translate(GlyphCanvas::side, GlyphCanvas::side);
    turned.rotate(180);
    canvas.stroke(turned.map(link));
}

void drawPicture(GlyphCanvas &canvas)
{
    canvas.frame(2, 3, 14, 12);
    canvas.disc(6, 7, 1.3);
    QPainterPath hills(QPointF(2.8, 14));
    hills.lineTo(6.6, 10);
    hills.lineTo(8.6, 11.8);
    hills.lineTo(11.8, 7.8);
    hills.lineTo(15.2, 12);
    hills.lineTo(15.2, 14);
    hills.closeSubpath();
    canvas.fill(hills);
}

void drawTable(GlyphCanvas &canvas)
{
    canvas.frame(2, 3, 14, 12);
    canvas.level(2, 7, 14);
    canvas.level(2, 11, 14);
    canvas.upright(6.6, 3, 12);
    canvas.upright(11.2, 3, 12);
}

void drawFind(GlyphCanvas &canvas)
{
    QPainterPath glass;
    glass.addEllipse(QPointF(7.6, 7.6), 4.6, 4.6);
    canvas.stroke(glass);
    canvas.stroke({{11.2, 11.2}, {15, 15}}, 2);
}

} // namespace

void drawObjectGlyph(GlyphCanvas &canvas, Glyph glyph)
{
    if (glyph == Glyph::Link) {
        drawLink(canvas);
    } else if (glyph == Glyph::Picture) {
        drawPicture(canvas);
    } else if (glyph == Glyph::Table) {
        drawTable(canvas);
    } else if (glyph == Glyph::Find) {
        drawFind(canvas);
    } else if (glyph == Glyph::Choose) {
        canvas.stroke({{6, 7.6}, {9, 10.6}, {12, 7.6}});
    } else if (glyph == Glyph::More) {
        canvas.stroke({{4.6, 5}, {8.6, 9}, {4.6, 13}});
        canvas.stroke({{9.6, 5}, {13.6, 9}, {9.6, 13}});
    } else {
        drawPadlock(canvas, glyph == Glyph::OpenPadlock);
    }
}

} // namespace quorvane
