#include "editor/glyphcanvas.h"
#include "editor/glyphicon.h"

#include <QTransform>

namespace quorvane {

namespace {

// Paths on a square of 16 units.

QPainterPath line(const QPolygonF &points)
{
    QPainterPath path;
    path.addPolygon(points);
    return path;
}

QPainterPath capitalA(double left, double right)
{
    QPainterPath path = line({{left, 12.6}, {(left + right) / 2, 3.4}, {right, 12.6}});
    const double inset = (right - left) / 5.2;
    path.addPath(line({{left + inset, 9.4}, {right - inset, 9.4}}));
    return path;
}

QPainterPath smallA(double left)
{
    QPainterPath path;
    path.addEllipse(QRectF(left, 7.1, 4.6, 5.4));
    path.addPath(line({{left + 4.6, 6.6}, {left + 4.6, 13.2}}));
    return path;
}

QPainterPath wholeWords()
{
    QPainterPath path = line({{1.2, 10.6}, {1.2, 13.8}, {14.8, 13.8}, {14.8, 10.6}});
    path.addEllipse(QRectF(2.9, 6, 4, 5));
    path.addPath(line({{6.9, 5.6}, {6.9, 11.6}}));
    path.addEllipse(QRectF(9.3, 6, 4, 5));
    path.addPath(line({{9.3, 2.2}, {9.3, 11.6}}));
    return path;
}

QPainterPath regularExpression()
{
    QPainterPath path = line({{10, 2.6}, {10, 10.2}});
    path.addPath(line({{6.7, 4.5}, {13.3, 8.3}}));
    path.addPath(line({{13.3, 4.5}, {6.7, 8.3}}));
    path.addPath(line({{3, 12}, {4.6, 12}}));
    return path;
}

QPainterPath pathOf(Glyph glyph)
{
    switch (glyph) {
    case Glyph::Previous:
        return line({{3.4, 10.4}, {8, 5.8}, {12.6, 10.4}});
    case Glyph::Next:
        return line({{3.4, 5.8}, {8, 10.4}, {12.6, 5.8}});
    case Glyph::Cross: {
        QPainterPath path = line({{4, 4}, {12, 12}});
        path.addPath(line({{12, 4}, {4, 12}}));
        return path;
    }
    case Glyph::MatchCase: {
        QPainterPath path = capitalA(0.9, 8.5);
        path.addPath(smallA(10));
        return path;
    }
    case Glyph::WholeWords:
        return wholeWords();
    case Glyph::RegularExpression:
        return regularExpression();
    default:
        return {};
    }
}

} // namespace

void drawFindGlyph(GlyphCanvas &canvas, Glyph glyph)
{
    constexpr double scale = GlyphCanvas::side / 16;
    canvas.stroke(QTransform::fromScale(scale, scale).map(pathOf(glyph)));
}

} // namespace quorvane
