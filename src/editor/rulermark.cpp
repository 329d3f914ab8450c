#include "editor/rulermark.h"

#include "editor/lengthfield.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>

#include <cmath>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double twipsPerPixel = 15;
constexpr int farthest = 30 * 1440;
constexpr int inchStep = 90; // a sixteenth of an inch
constexpr int centimetreStep = 57; // a millimetre

} // namespace

RulerMark::RulerMark(Indent indent, QWidget *ruler)
    : QAbstractSlider(ruler)
    , m_indent(indent)
{
    constexpr const char16_t *names[] = {u"First line indent", u"Left indent", u"Right indent"};
    setAccessibleName(QString::fromUtf16(names[int(indent)]));
    prepare();
}

RulerMark::RulerMark(QTextOption::TabType type, QWidget *ruler)
    : QAbstractSlider(ruler)
    , m_tabType(type)
{
    setAccessibleName(tabTypeName(type) + u" tab stop"_s);
    prepare();
}

void RulerMark::prepare()
{
    setOrientation(Qt::Horizontal);
    setFocusPolicy(Qt::TabFocus);
    setRange(-farthest, farthest);
    setSingleStep(LengthField::measuresInInches() ? inchStep : centimetreStep);
    setPageStep(10 * singleStep());
    setCursor(Qt::SizeHorCursor);
    resize(size, size);
}

void RulerMark::showPlace(double pixels)
{
    const QSignalBlocker quiet(this);
    setValue(int(std::lround(pixels * twipsPerPixel)));
    const QString text = LengthField::textOf(pixels);
    setAccessibleDescription(text);
    setToolTip(u"%1: %2"_s.arg(accessibleName(), text));
}

void RulerMark::setFading(bool fades)
{
    m_fades = fades;
    update();
}

void RulerMark::paintEvent(QPaintEvent *)
{
    constexpr double faded = 0.25;
    QPainter painter(this);
    painter.setOpacity(m_fades ? faded : 1);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto group = isEnabled() ? QPalette::Active : QPalette::Disabled;
    const auto role = hasFocus() || m_isDragged ? QPalette::Highlight : QPalette::Text;
    painter.setPen(palette().color(group, role));
    if (m_indent) {
        drawIndent(painter);
    } else {
        drawTabSign(painter, m_tabType, size);
    }
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
    }
}

void RulerMark::drawIndent(QPainter &painter) const
{
    QPainterPath shape;
    if (m_indent == Indent::First) { // points down, from above
        shape.addPolygon(QPolygonF {{2.5, 2}, {10.5, 2}, {10.5, 5.5}, {6.5, 9.5}, {2.5, 5.5}});
    } else {
        shape.addPolygon(QPolygonF {{2.5, 11}, {10.5, 11}, {10.5, 7.5}, {6.5, 3.5}, {2.5, 7.5}});
    }
    shape.closeSubpath();
    painter.fillPath(shape, painter.pen().color());
}

void RulerMark::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        emit removeAsked();
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit editAsked();
        return;
    case Qt::Key_Escape:
        emit leaveAsked();
        return;
    default:
        QAbstractSlider::keyPressEvent(event);
    }
}

void RulerMark::mousePressEvent(QMouseEvent *event)
{
    m_isHeld = event->button() == Qt::LeftButton;
    m_held = event->pos();
}

void RulerMark::mouseMoveEvent(QMouseEvent *event)
{
    const bool isFar =
        (event->pos() - m_held).manhattanLength() >= QApplication::startDragDistance();
    if (m_isHeld && (m_isDragged || isFar)) {
        m_isDragged = true;
        emit dragged(mapToParent(event->pos()));
    }
}

void RulerMark::mouseReleaseEvent(QMouseEvent *event)
{
    m_isHeld = false;
    if (m_isDragged) {
        m_isDragged = false;
        emit dropped(mapToParent(event->pos()));
    }
}

void RulerMark::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton) {
        emit editAsked();
    }
}

void RulerMark::contextMenuEvent(QContextMenuEvent *event)
{
    emit menuAsked(event->globalPos());
}

void RulerMark::focusInEvent(QFocusEvent *)
{
    update();
}

void RulerMark::focusOutEvent(QFocusEvent *)
{
    update();
}

void drawTabSign(QPainter &painter, QTextOption::TabType type, double size)
{
    const double unit = size / 13;
    const auto at = [unit](double x, double y) {
        return QPointF(x * unit, y * unit);
    };
    painter.setPen(
        QPen(painter.pen().color(), 1.6 * unit, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    switch (type) {
    case QTextOption::LeftTab:
        painter.drawPolyline(QPolygonF {at(6.5, 3), at(6.5, 10), at(11, 10)});
        return;
    case QTextOption::RightTab:
        painter.drawPolyline(QPolygonF {at(6.5, 3), at(6.5, 10), at(2, 10)});
        return;
    case QTextOption::CenterTab:
    case QTextOption::DelimiterTab:
        painter.drawLine(at(6.5, 3), at(6.5, 10));
        painter.drawLine(at(2.5, 10), at(10.5, 10));
        break;
    }
    if (type == QTextOption::DelimiterTab) {
        painter.setBrush(painter.pen().color());
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(at(9.4, 6.2), 1.2 * unit, 1.2 * unit);
    }
}

QString tabTypeName(QTextOption::TabType type)
{
    switch (type) {
    case QTextOption::LeftTab:
        break;
    case QTextOption::RightTab:
        return u"Right"_s;
    case QTextOption::CenterTab:
        return u"Centre"_s;
    case QTextOption::DelimiterTab:
        return u"Decimal"_s;
    }
    return u"Left"_s;
}

} // namespace quorvane
