#include "editor/glyphcanvas.h"
#include "editor/glyphicon.h"

namespace quorvane {

namespace {

// Letters of our own: a font would have to be loaded for each of the styles before the first window
// shows.
void drawBold(GlyphCanvas &canvas)
{
    QPainterPath letter(QPointF(5.6, 3.6));
    letter.lineTo(9.2, 3.6);
    letter.arcTo(QRectF(6.7, 3.6, 5.2, 5.2), 90, -180);
    letter.lineTo(5.6, 8.8);
    letter.moveTo(9.4, 8.8);
    letter.arcTo(QRectF(6.8, 8.8, 6, 5.6), 90, -180);
    letter.lineTo(5.6, 14.4);
    letter.moveTo(5.6, 3.6);
    letter.lineTo(5.6, 14.4);
    canvas.stroke(letter, 2);
}

void drawItalic(GlyphCanvas &canvas)
{
    canvas.stroke({{8.6, 3.5}, {13, 3.5}});
    canvas.stroke({{5, 14.5}, {9.4, 14.5}});
    canvas.stroke({{10.8, 3.5}, {7.2, 14.5}});
}

void drawUnderline(GlyphCanvas &canvas)
{
    QPainterPath letter(QPointF(5.3, 2.8));
    letter.lineTo(5.3, 8.4);
    letter.arcTo(QRectF(5.3, 4.6, 7.4, 7.6), 180, 180);
    letter.lineTo(12.7, 2.8);
    canvas.stroke(letter);
    canvas.level(4, 15, 10);
}

void drawStrikethrough(GlyphCanvas &canvas)
{
    QPainterPath letter(QPointF(12.3, 5.6));
    letter.cubicTo(11.9, 4, 10.6, 3.2, 9, 3.2);
    letter.cubicTo(6.9, 3.2, 5.6, 4.4, 5.6, 6);
    letter.cubicTo(5.6, 9.4, 12.5, 8.2, 12.5, 11.8);
    letter.cubicTo(12.5, 13.6, 11, 14.8, 9, 14.8);
    letter.cubicTo(7.1, 14.8, 5.7, 13.9, 5.3, 12.2);
    canvas.stroke(letter);
    canvas.level(3, 8.6, 12);
}

void drawTextColour(GlyphCanvas &canvas, const QColor &colour)
{
    canvas.stroke({{4.9, 11.6}, {9, 2.4}, {13.1, 11.6}});
    canvas.stroke({{6.5, 8.4}, {11.5, 8.4}});
    canvas.bar(3, 14, 12, 3, colour);
}

void drawHighlight(GlyphCanvas &canvas, const QColor &colour)
{
    QPainterPath pen(QPointF(6.6, 8));
    pen.lineTo(11.8, 2.4);
    pen.lineTo(15, 5.4);
    pen.lineTo(9.9, 11);
    pen.closeSubpath();
    canvas.stroke(pen, 1.4);
    QPainterPath tip(QPointF(6.2, 8.4));
    tip.lineTo(9.5, 11.4);
    tip.lineTo(8.2, 12.2);
    tip.lineTo(4, 12.2);
    tip.closeSubpath();
    canvas.fill(tip);
    canvas.bar(3, 14, 12, 3, colour);
}

} // namespace

void drawLetterGlyph(GlyphCanvas &canvas, Glyph glyph, const QColor &colour)
{
    if (glyph == Glyph::Bold) {
        drawBold(canvas);
    } else if (glyph == Glyph::Italic) {
        drawItalic(canvas);
    } else if (glyph == Glyph::Underline) {
        drawUnderline(canvas);
    } else if (glyph == Glyph::Strikethrough) {
        drawStrikethrough(canvas);
    } else if (glyph == Glyph::TextColour) {
        drawTextColour(canvas, colour);
    } else if (glyph == Glyph::Highlight) {
        drawHighlight(canvas, colour);
    }
}

} // namespace quorvane
