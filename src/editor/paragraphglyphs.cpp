#include "editor/glyphcanvas.h"
#include "editor/glyphicon.h"

namespace quorvane {

namespace {

constexpr double lines[] = {3, 7, 11, 15}; // of a paragraph
constexpr double items[] = {4, 9, 14}; // of a list

void drawAligned(GlyphCanvas &canvas, double shortLine, double shortLength)
{
    canvas.level(2, lines[0], 14);
    canvas.level(shortLine, lines[1], shortLength);
    canvas.level(2, lines[2], 14);
    canvas.level(shortLine, lines[3], shortLength);
}

void drawItems(GlyphCanvas &canvas)
{
    for (const double item : items) {
        canvas.level(7, item, 9);
    }
}

void drawLineSpacing(GlyphCanvas &canvas)
{
    for (const double item : items) {
        canvas.level(9, item, 7);
    }
    constexpr double width = 1.3;
    canvas.stroke({{4.5, 3}, {4.5, 15.5}}, width);
    canvas.stroke({{2.3, 5.2}, {4.5, 3}, {6.7, 5.2}}, width);
    canvas.stroke({{2.3, 13.3}, {4.5, 15.5}, {6.7, 13.3}}, width);
}

void drawNumberedList(GlyphCanvas &canvas)
{
    canvas.level(9, 5, 7);
    canvas.level(9, 12, 7);
    constexpr double width = 1.2;
    canvas.stroke({{2.6, 3.6}, {4.5, 2.5}, {4.5, 7.5}}, width);
    QPainterPath two(QPointF(2.5, 11.2));
    two.cubicTo(3, 9.2, 6.1, 9.4, 6, 11.3);
    two.cubicTo(5.9, 12.6, 3.4, 13.6, 2.5, 15.5);
    two.lineTo(6.3, 15.5);
    canvas.stroke(two, width);
}

void drawChecklist(GlyphCanvas &canvas)
{
    canvas.stroke({{2, 5.2}, {3.7, 6.9}, {6.8, 3}});
    canvas.frame(2, 10, 5, 5);
    canvas.level(9, 5, 7);
    canvas.level(9, 12, 7);
}

} // namespace

void drawParagraphGlyph(GlyphCanvas &canvas, Glyph glyph)
{
    if (glyph == Glyph::AlignLeft) {
        drawAligned(canvas, 2, 9);
    } else if (glyph == Glyph::AlignCentre) {
        drawAligned(canvas, 5, 8);
    } else if (glyph == Glyph::AlignRight) {
        drawAligned(canvas, 7, 9);
    } else if (glyph == Glyph::Justify) {
        drawAligned(canvas, 2, 14);
    } else if (glyph == Glyph::LineSpacing) {
        drawLineSpacing(canvas);
    } else if (glyph == Glyph::NumberedList) {
        drawNumberedList(canvas);
    } else if (glyph == Glyph::Checklist) {
        drawChecklist(canvas);
    } else {
        drawItems(canvas);
        for (const double item : items) {
            canvas.disc(3.5, item + 0.5, 1.7);
        }
    }
}

} // namespace quorvane
