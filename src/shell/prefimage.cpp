#include "shell/prefimage.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>

#include <memory>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// All on a square of 32 units.
constexpr double square = 32;
constexpr double stroke = 2;

// A page with a folded corner, and lines on it: what is shown at the start.
void addGeneral(QPainterPath &path)
{
    path.moveTo(19, 3);
    path.lineTo(7, 3);
    path.lineTo(7, 29);
    path.lineTo(25, 29);
    path.lineTo(25, 9);
    path.lineTo(19, 3);
    path.lineTo(19, 9);
    path.lineTo(25, 9);
    for (const double y : {14.5, 19.0, 23.5}) {
        path.moveTo(11, y);
        path.lineTo(21, y);
    }
}

// A letter at a text cursor.
void addTextEditing(QPainterPath &path)
{
    path.moveTo(3, 26);
    path.lineTo(10.5, 6);
    path.lineTo(18, 26);
    path.moveTo(5.6, 19);
    path.lineTo(15.4, 19);
    path.moveTo(25, 5);
    path.lineTo(25, 27);
    path.moveTo(22, 3.5);
    path.quadTo(25, 3.5, 25, 6);
    path.quadTo(25, 3.5, 28, 3.5);
    path.moveTo(22, 28.5);
    path.quadTo(25, 28.5, 25, 26);
    path.quadTo(25, 28.5, 28, 28.5);
}

// Three sliders.
void addAdvanced(QPainterPath &path)
{
    const std::pair<double, double> sliders[] = {{8, 20}, {16, 11}, {24, 23}};
    for (const auto &[y, x] : sliders) {
        path.moveTo(4, y);
        path.lineTo(x - 3, y);
        path.addEllipse(QPointF(x, y), 3, 3);
        path.moveTo(x + 3, y);
        path.lineTo(28, y);
    }
}

// An arrow that goes round, with another one to be fetched in it.
void addSoftwareUpdate(QPainterPath &path)
{
    path.arcMoveTo(QRectF(4, 4, 24, 24), 60);
    path.arcTo(QRectF(4, 4, 24, 24), 60, 300);
    const QPointF end(28, 16);
    path.moveTo(end - QPointF(4.5, 3));
    path.lineTo(end);
    path.lineTo(end + QPointF(3.2, -4.4));
    path.moveTo(16, 9.5);
    path.lineTo(16, 22);
    path.moveTo(11, 17);
    path.lineTo(16, 22);
    path.lineTo(21, 17);
}

class PrefImageEngine final : public QIconEngine
{
public:
    explicit PrefImageEngine(QPainterPath path)
        : m_path(std::move(path))
    { }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override
    {
        const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
        const QColor colour = QGuiApplication::palette().color(group, QPalette::ButtonText);
        const double extent = qMin(rect.width(), rect.height());
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(QRectF(rect).center() - QPointF(extent, extent) / 2);
        painter->scale(extent / square, extent / square);
        painter->strokePath(m_path,
                            QPen(colour, stroke, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
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
        return std::make_unique<PrefImageEngine>(m_path).release();
    }

private:
    QPainterPath m_path;
};

} // namespace

QIcon prefImageNamed(const QString &name)
{
    QPainterPath path;
    if (name == "generalPref"_L1) {
        addGeneral(path);
    } else if (name == "textEditing"_L1) {
        addTextEditing(path);
    } else if (name == "advanced"_L1) {
        addAdvanced(path);
    } else if (name == "softwareUpdate"_L1) {
        addSoftwareUpdate(path);
    }
    return QIcon(std::make_unique<PrefImageEngine>(path).release());
}

} // namespace quorvane
