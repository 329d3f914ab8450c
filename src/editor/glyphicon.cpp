#include "editor/glyphicon.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <memory>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

void drawLetter(QPainter &painter, const QRectF &rect, Glyph glyph)
{
    QFont font = QGuiApplication::font();
    font.setPixelSize(qRound(rect.height() * 0.82));
    font.setBold(glyph == Glyph::Bold);
    font.setItalic(glyph == Glyph::Italic);
    font.setUnderline(glyph == Glyph::Underline);
    const QString letter = glyph == Glyph::Bold ? u"B"_s : glyph == Glyph::Italic ? u"I"_s : u"U"_s;
    painter.setFont(font);
    painter.drawText(rect, Qt::AlignCenter, letter);
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
        } else {
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
