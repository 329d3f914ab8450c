#include "editor/smoothscrolling.h"

#include <QAbstractScrollArea>
#include <QApplication>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QStyle>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {
constexpr int longest = 150; // milliseconds: the text must not lag behind the hand
} // namespace

SmoothScrolling::SmoothScrolling(QAbstractScrollArea &area)
    : m_area(area)
{
    m_glide.setEasingCurve(QEasingCurve::OutCubic);
    QObject::connect(&m_glide, &QVariantAnimation::valueChanged, &area,
                     [this](const QVariant &value) {
                         QScrollBar &bar = *m_area.verticalScrollBar();
                         if (bar.value() != m_last) {
                             m_glide.stop(); // something else has scrolled, and knows better
                             return;
                         }
                         bar.setValue(value.toInt());
                         m_last = bar.value();
                     });
}

bool SmoothScrolling::take(const QWheelEvent &event)
{
    const QScrollBar &bar = *m_area.verticalScrollBar();
    const bool goesOn = m_glide.state() == QAbstractAnimation::Running && bar.value() == m_last;
    m_glide.stop();
    const int duration = m_area.style()->styleHint(QStyle::SH_Widget_Animation_Duration);
    const bool isPlainWheel = event.phase() == Qt::NoScrollPhase && event.pixelDelta().isNull()
        && event.modifiers() == Qt::NoModifier && event.angleDelta().x() == 0;
    if (!isPlainWheel || duration <= 0) {
        return false;
    }
    const double notches = -double(event.angleDelta().y()) / int(QWheelEvent::DefaultDeltasPerStep);
    const double way = notches * QApplication::wheelScrollLines() * bar.singleStep();
    m_last = bar.value();
    m_target = std::clamp<double>((goesOn ? m_target : m_last) + way, bar.minimum(), bar.maximum());
    {
        const QSignalBlocker quiet(m_glide); // each tells a place as far on as the former glide was
        m_glide.setStartValue(m_last);
        m_glide.setEndValue(int(std::lround(m_target)));
        m_glide.setDuration(std::min(duration, longest));
    }
    m_glide.start();
    return true;
}

} // namespace quorvane
