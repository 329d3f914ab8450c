#include "editor/glyphpicture.h"

#include <QPainter>

namespace quorvane {

GlyphPicture::GlyphPicture(Glyph glyph, int extent, QWidget *parent)
    : QWidget(parent)
    , m_icon(glyphIcon(glyph))
{
    setFixedSize(extent, extent);
}

void GlyphPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_icon.paint(&painter, rect());
}

} // namespace quorvane
