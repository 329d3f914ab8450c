#include "editor/glyphicon.h"

#include "editor/glyphcanvas.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPalette>

#include <memory>
#include <utility>

namespace quorvane {

namespace {

void draw(GlyphCanvas &canvas, Glyph glyph, const QColor &colour)
{
    if (glyph <= Glyph::Highlight) {
        drawLetterGlyph(canvas, glyph, colour);
    } else if (glyph <= Glyph::Checklist) {
        drawParagraphGlyph(canvas, glyph);
    } else if (glyph >= Glyph::Previous) {
        drawFindGlyph(canvas, glyph);
    } else {
        drawObjectGlyph(canvas, glyph);
    }
}

class GlyphEngine final : public QIconEngine
{
public:
    explicit GlyphEngine(GlyphDrawing draw)
        : m_draw(std::move(draw))
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const bool isEnabled = mode != QIcon::Disabled;
        const auto group = isEnabled ? QPalette::Active : QPalette::Disabled;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const QColor ink = QGuiApplication::palette().color(group, role);
        painter->save();
        GlyphCanvas canvas(*painter, rect, ink);
        m_draw(canvas, ink, isEnabled);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect(QPoint(), size), mode, state);
        return pixmap;
    }

    QIconEngine *clone() const override { return std::make_unique<GlyphEngine>(m_draw).release(); }

private:
    GlyphDrawing m_draw;
};

} // namespace

QIcon drawnIcon(GlyphDrawing draw)
{
    return QIcon(std::make_unique<GlyphEngine>(std::move(draw)).release());
}

QIcon glyphIcon(Glyph glyph, const std::optional<QColor> &colour)
{
    return drawnIcon([glyph, colour](GlyphCanvas &canvas, const QColor &ink, bool isEnabled) {
        draw(canvas, glyph, isEnabled ? colour.value_or(ink) : ink);
    });
}

} // namespace quorvane
