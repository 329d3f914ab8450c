#pragma once

#include <QPainter>
#include <QPainterPath>

namespace quorvane {

enum class Glyph;

/// A square of 18 units for a glyph. Glyphs are one family: lines of one width with round ends,
/// and level lines that begin and end with the pixels of the screen.
class GlyphCanvas final
{
public:
    static constexpr double side = 18;
    static constexpr double lineWidth = 1.5;

    GlyphCanvas(QPainter &painter, const QRectF &square, const QColor &ink);

    void stroke(const QPainterPath &path, double width = lineWidth);
    void stroke(const QPolygonF &line, double width = lineWidth);
    void fill(const QPainterPath &path);
    void disc(double x, double y, double radius);
    /// A level or upright line, from its upper left corner.
    void level(double x, double y, double length);
    void upright(double x, double y, double length);
    /// The frame of a rectangle, of such lines.
    void frame(double x, double y, double width, double height);
    void bar(double x, double y, double width, double height, const QColor &colour);

private:
    double onPixel(double place) const;
    double thickness() const;

    QPainter &m_painter;
    QColor m_ink;
    double m_pixels; // of the screen in a unit
};

void drawLetterGlyph(GlyphCanvas &canvas, Glyph glyph, const QColor &colour);
void drawParagraphGlyph(GlyphCanvas &canvas, Glyph glyph);
void drawObjectGlyph(GlyphCanvas &canvas, Glyph glyph);
void drawFindGlyph(GlyphCanvas &canvas, Glyph glyph);

} // namespace quorvane
