#pragma once

#include "platform/nsvalues.h"

#include <QList>
#include <QRect>

namespace quorvane {

/// A screen's rectangle as Qt counts it (origin at the top left, y downwards) of a frame in the
/// platform's coordinates. \a primary is the main screen. Whatever the numbers are, the result is
/// one that a window system takes: what is no number counts as 0.
QRect screenRectOf(const NSRect &frame, const QRect &primary);
NSRect frameOf(const QRect &rect, const QRect &primary);

/// The frame moved and cut down as little as it takes to have its title bar on the screens and its
/// size within the screen that it is on. \a screens are their usable parts, the main one first.
QRect keptOnScreens(const QRect &frame, const QList<QRect> &screens);

/// A rectangle of this size in the middle of the other.
QRect centredIn(const QSize &size, const QRect &area);

} // namespace quorvane
