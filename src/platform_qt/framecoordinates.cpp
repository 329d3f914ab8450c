#include "platform_qt/framecoordinates.h"

#include <QRegion>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double farthest = 1e6; // window systems count in 16 or 32 bits
constexpr int titleBarHeight = 32; // what must be seen of a frame, at least

int wholeOf(double value)
{
    return std::isnan(value)
        ? 0
        : static_cast<int>(std::lround(std::clamp(value, -farthest, farthest)));
}

qint64 sharedArea(const QRect &one, const QRect &other)
{
    const QRect shared = one.intersected(other);
    return shared.isEmpty() ? 0 : qint64(shared.width()) * shared.height();
}

// The screen that holds most of the frame, else the main one.
QRect screenOf(const QRect &frame, const QList<QRect> &screens)
{
    return *std::max_element(screens.begin(), screens.end(), [&](const QRect &a, const QRect &b) {
        return sharedArea(a, frame) < sharedArea(b, frame);
    });
}

} // namespace

QRect screenRectOf(const NSRect &frame, const QRect &primary)
{
    const int width = std::max(0, wholeOf(frame.width));
    const int height = std::max(0, wholeOf(frame.height));
    const int bottom = primary.y() + primary.height() - wholeOf(frame.y);
    return QRect(primary.x() + wholeOf(frame.x), bottom - height, width, height);
}

NSRect frameOf(const QRect &rect, const QRect &primary)
{
    return {double(rect.x() - primary.x()),
            double(primary.y() + primary.height() - (rect.y() + rect.height())),
            double(rect.width()), double(rect.height())};
}

QRect keptOnScreens(const QRect &frame, const QList<QRect> &screens)
{
    if (screens.isEmpty()) {
        return frame;
    }
    const QRect screen = screenOf(frame, screens);
    QRect kept = frame;
    kept.setHeight(std::min(frame.height(), screen.height()));
    QRegion usable;
    for (const QRect &area : screens) {
        usable += area;
    }
    const QRect titleBar(kept.x(), kept.y(), kept.width(), std::min(titleBarHeight, kept.height()));
    if (QRegion(titleBar).subtracted(usable).isEmpty()) {
        return kept;
    }
    kept.setWidth(std::min(kept.width(), screen.width()));
    kept.moveLeft(std::clamp(kept.x(), screen.x(), screen.x() + screen.width() - kept.width()));
    kept.moveTop(std::clamp(kept.y(), screen.y(), screen.y() + screen.height() - kept.height()));
    return kept;
}

QRect centredIn(const QSize &size, const QRect &area)
{
    return QRect(area.x() + (area.width() - size.width()) / 2,
                 area.y() + (area.height() - size.height()) / 2, size.width(), size.height());
}

} // namespace quorvane
