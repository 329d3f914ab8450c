#include "editor/glyphicon.h"

#include "editor/findglyphs.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <memory>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

// Letters of our own, on a square of 16 units: a font would have to be loaded for each of the
// styles before the first window shows.
void drawLetter(QPainter &painter, const QRectF &rect, Glyph glyph)
{
    const double unit = rect.height() / 16;
    painter.translate(rect.center().x() - 8 * unit, rect.top());
    painter.scale(unit, unit);
    QPainterPath letter;
    double width = 1.5;
    if (glyph == Glyph::Bold) {
        width = 2.3;
        letter.moveTo(5, 3.2);
        letter.lineTo(8.3, 3.2);
        letter.arcTo(QRectF(6, 3.2, 4.6, 4.6), 90, -180);
        letter.lineTo(5, 7.8);
        letter.moveTo(8.3, 7.8);
        letter.arcTo(QRectF(6, 7.8, 5.4, 5), 90, -180);
        letter.lineTo(5, 12.8);
        letter.closeSubpath();
        letter.moveTo(5, 3.2);
        letter.lineTo(5, 12.8);
    } else if (glyph == Glyph::Italic) {
        letter.moveTo(7.6, 3.2);
        letter.lineTo(11.6, 3.2);
        letter.moveTo(4.4, 12.8);
        letter.lineTo(8.4, 12.8);
        letter.moveTo(9.6, 3.2);
        letter.lineTo(6.4, 12.8);
    } else {
        letter.moveTo(4.6, 2.6);
        letter.lineTo(4.6, 7.6);
        letter.arcTo(QRectF(4.6, 4.2, 6.8, 6.8), 180, 180);
        letter.lineTo(11.4, 2.6);
        letter.moveTo(3.6, 13.6);
        letter.lineTo(12.4, 13.6);
    }
    painter.strokePath(letter, QPen(painter.pen().color(), width, Qt::SolidLine, Qt::FlatCap));
}

void drawPadlock(QPainter &painter, const QRectF &rect, bool isOpen)
{
    const double unit = rect.height() / 16;
    painter.translate(rect.center().x() - 8 * unit, rect.top());
    painter.scale(unit, unit);
    QPainterPath shackle;
    shackle.moveTo(5, isOpen ? 5 : 8);
    shackle.lineTo(5, 5);
    shackle.arcTo(QRectF(5, 2, 6, 6), 180, -180);
    shackle.lineTo(11, 8);
    painter.strokePath(shackle, QPen(painter.pen().color(), 1.6, Qt::SolidLine, Qt::FlatCap));
    QPainterPath body;
    body.addRoundedRect(QRectF(2.5, 7, 11, 7.5), 1.5, 1.5);
    QPainterPath keyhole;
    keyhole.setFillRule(Qt::WindingFill);
    keyhole.addEllipse(QPointF(8, 10.1), 1.1, 1.1);
    keyhole.addRect(QRectF(7.55, 10.2, 0.9, 2.4));
    painter.fillPath(body.subtracted(keyhole), painter.pen().color());
}

class GlyphEngine final : public QIconEngine
{
public:
    explicit GlyphEngine(Glyph glyph)
        : m_glyph(glyph)
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::ButtonText;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(QGuiApplication::palette().color(group, role));
        if (m_glyph == Glyph::Padlock || m_glyph == Glyph::OpenPadlock) {
            drawPadlock(*painter, rect, m_glyph == Glyph::OpenPadlock);
        } else if (!drawFindGlyph(*painter, rect, m_glyph)) {
            drawLetter(*painter, rect, m_glyph);
        }
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

    QIconEngine *clone() const override { return std::make_unique<GlyphEngine>(m_glyph).release(); }

private:
    Glyph m_glyph;
};

} // namespace

QIcon glyphIcon(Glyph glyph)
{
    return QIcon(std::make_unique<GlyphEngine>(glyph).release());
}

} // namespace quorvane
