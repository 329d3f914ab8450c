#include "editor/glyphicon.h"

#include "editor/glyphcanvas.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPalette>

#include <memory>

namespace quorvane {

namespace {

void draw(GlyphCanvas &canvas, Glyph glyph, const QColor &colour)
{
    if (glyph <= Glyph::Highlight) {
        drawLetterGlyph(canvas, glyph, colour);
    } else if (glyph <= Glyph::Checklist) {
        drawParagraphGlyph(canvas, glyph);
    } else {
        drawObjectGlyph(canvas, glyph);
    }
}

class GlyphEngine final : public QIconEngine
{
public:
    GlyphEngine(Glyph glyph, const std::optional<QColor> &colour)
        : m_glyph(glyph)
        , m_colour(colour)
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        const QColor ink = QGuiApplication::palette().color(group, role);
        painter->save();
        GlyphCanvas canvas(*painter, rect, ink);
        draw(canvas, m_glyph, mode == QIcon::Disabled ? ink : m_colour.value_or(ink));
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

    QIconEngine *clone() const override
    {
        return std::make_unique<GlyphEngine>(m_glyph, m_colour).release();
    }

private:
    Glyph m_glyph;
    std::optional<QColor> m_colour;
};

} // namespace

QIcon glyphIcon(Glyph glyph, const std::optional<QColor> &colour)
{
    return QIcon(std::make_unique<GlyphEngine>(glyph, colour).release());
}

} // namespace quorvane
