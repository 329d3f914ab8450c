#pragma once

class QPainter;
class QRectF;

namespace quorvane {

enum class Glyph;

/// Draws one of the find bar's glyphs in the painter's colour. \return false for another glyph.
bool drawFindGlyph(QPainter &painter, const QRectF &rect, Glyph glyph);

} // namespace quorvane
