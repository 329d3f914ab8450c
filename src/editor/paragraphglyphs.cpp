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
        canvas.level(8, item, 8);
    }
    canvas.stroke({{4, 3.2}, {4, 15.2}});
    canvas.stroke({{2, 5.2}, {4, 3.2}, {6, 5.2}});
    canvas.stroke({{2, 13.2}, {4, 15.2}, {6, 13.2}});
}

void drawNumberedList(GlyphCanvas &canvas)
{
    drawItems(canvas);
    constexpr double width = 1.1;
    canvas.stroke({{2.2, 2.6}, {3.3, 1.9}, {3.3, 6}}, width);
    canvas.stroke({{2, 7.6}, {2.9, 7}, {3.9, 7.3}, {4, 8.2}, {2, 10.9}, {4.3, 10.9}}, width);
    canvas.stroke({{2, 12.2}, {4, 12.2}, {2.9, 13.7}, {4, 14.2}, {4, 15.4}, {3, 16}, {2, 15.5}},
                  width);
}

void drawChecklist(GlyphCanvas &canvas)
{
    canvas.stroke({{2, 4.6}, {3.6, 6.2}, {6.4, 2.6}});
    canvas.frame(2, 10, 5, 5);
    canvas.level(9, 4, 7);
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
            canvas.disc(3.5, item + 0.6, 1.5);
        }
    }
}

} // namespace quorvane
