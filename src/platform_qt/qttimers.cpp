#include "platform_qt/qttimers.h"

#include <QTimer>

#include <cmath>
#include <limits>
#include <utility>

namespace quorvane {

namespace {

int millisecondsOf(double seconds)
{
    const double milliseconds = std::ceil(seconds * 1000.0);
    if (!(milliseconds > 0)) { // not a number, too
        return 0;
    }
    constexpr int most = std::numeric_limits<int>::max(); // 24 days
    return milliseconds < most ? static_cast<int>(milliseconds) : most;
}

class QtTimer final : public NSTimer
{
public:
    QtTimer(double seconds, std::function<void()> block)
    {
        m_timer.setSingleShot(true);
        m_timer.setTimerType(Qt::PreciseTimer); // a coarse one may be early by a twentieth
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, std::move(block));
        m_timer.start(millisecondsOf(seconds));
    }

    void invalidate() override { m_timer.stop(); }

private:
    QTimer m_timer;
};

} // namespace

std::unique_ptr<NSTimer> QtTimers::scheduledTimer(double seconds, std::function<void()> block)
{
    return std::make_unique<QtTimer>(seconds, std::move(block));
}

} // namespace quorvane
