#include "editor/glyphcanvas.h"

#include <algorithm>
#include <cmath>

namespace quorvane {

GlyphCanvas::GlyphCanvas(QPainter &painter, const QRectF &square, const QColor &ink)
    : m_painter(painter)
    , m_ink(ink)
    , m_pixels(square.height() / side * painter.device()->devicePixelRatioF())
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.center().x() - square.height() / 2, square.top());
    painter.scale(square.height() / side, square.height() / side);
}

void GlyphCanvas::stroke(const QPainterPath &path, double width)
{
    m_painter.strokePath(path, QPen(m_ink, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

void GlyphCanvas::stroke(const QPolygonF &line, double width)
{
    QPainterPath path;
    path.addPolygon(line);
    stroke(path, width);
}

void GlyphCanvas::fill(const QPainterPath &path)
{
    m_painter.fillPath(path, m_ink);
}

void GlyphCanvas::disc(double x, double y, double radius)
{
    QPainterPath path;
    path.addEllipse(QPointF(x, y), radius, radius);
    fill(path);
}

void GlyphCanvas::level(double x, double y, double length)
{
    bar(x, y, length, thickness(), m_ink);
}

void GlyphCanvas::upright(double x, double y, double length)
{
    bar(x, y, thickness(), length, m_ink);
}

void GlyphCanvas::frame(double x, double y, double width, double height)
{
    level(x, y, width);
    level(x, onPixel(y + height) - thickness(), width);
    upright(x, y, height);
    upright(onPixel(x + width) - thickness(), y, height);
}

void GlyphCanvas::bar(double x, double y, double width, double height, const QColor &colour)
{
    const QPointF from(onPixel(x), onPixel(y));
    const QPointF to(onPixel(x + width), onPixel(from.y() + height));
    m_painter.fillRect(QRectF(from, to), colour);
}

double GlyphCanvas::onPixel(double place) const
{
    return std::round(place * m_pixels) / m_pixels;
}

double GlyphCanvas::thickness() const
{
    constexpr double wanted = 1.4;
    return std::max(1.0, std::round(wanted * m_pixels)) / m_pixels;
}

} // namespace quorvane
