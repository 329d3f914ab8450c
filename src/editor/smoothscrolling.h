#pragma once

#include <QVariantAnimation>

class QAbstractScrollArea;
class QWheelEvent;

namespace quorvane {

/// Lets the wheel of a mouse glide where it would jump by lines, so that the eye keeps its place in
/// the text. Touchpads say where to go themselves, and a desktop without animations has none here.
class SmoothScrolling final
{
public:
    explicit SmoothScrolling(QAbstractScrollArea &area);

    /// \return false where the area is to scroll as it always does.
    bool take(const QWheelEvent &event);

private:
    QAbstractScrollArea &m_area;
    QVariantAnimation m_glide;
    double m_target = 0;
    int m_last = 0; // where the glide has put the bar
};

} // namespace quorvane
