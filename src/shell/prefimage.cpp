#include "shell/prefimage.h"

#include "editor/glyphcanvas.h"
#include "editor/glyphicon.h"

#include <QTransform>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// All on a square of 32 units.
constexpr double square = 32;
constexpr double stroke = 2;

// A page with a folded corner, and lines on it: what is shown at the start.
void addGeneral(QPainterPath &path)
{
    path.addPolygon({{19, 3}, {7, 3}, {7, 29}, {25, 29}, {25, 9}, {19, 3}, {19, 9}, {25, 9}});
    for (const double y : {14.5, 19.0, 23.5}) {
        path.addPolygon({{11, y}, {21, y}});
    }
}

// A letter at a text cursor.
void addTextEditing(QPainterPath &path)
{
    path.addPolygon({{3, 26}, {10.5, 6}, {18, 26}});
    path.addPolygon({{5.6, 19}, {15.4, 19}});
    path.addPolygon({{25, 5}, {25, 27}});
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
        path.addPolygon({{4, y}, {x - 3, y}});
        path.addEllipse(QPointF(x, y), 3, 3);
        path.addPolygon({{x + 3, y}, {28, y}});
    }
}

// An arrow that goes round, with another one to be fetched in it.
void addSoftwareUpdate(QPainterPath &path)
{
    path.arcMoveTo(QRectF(4, 4, 24, 24), 60);
    path.arcTo(QRectF(4, 4, 24, 24), 60, 300);
    path.addPolygon({{23.5, 13}, {28, 16}, {31.2, 11.6}});
    path.addPolygon({{16, 9.5}, {16, 22}});
    path.addPolygon({{11, 17}, {16, 22}, {21, 17}});
}

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
    constexpr double scale = GlyphCanvas::side / square;
    return drawnIcon([path](GlyphCanvas &canvas, const QColor &, bool) {
        canvas.stroke(QTransform::fromScale(scale, scale).map(path), stroke * scale);
    });
}

} // namespace quorvane
