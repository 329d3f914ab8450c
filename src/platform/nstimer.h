#pragma once

#include <functional>
#include <memory>

namespace quorvane {

/// A scheduled timer; destroying it takes it off the run loop.
class NSTimer
{
public:
    virtual ~NSTimer() = default;
    virtual void invalidate() = 0;
};

/// Schedules timers on the main run loop.
class TimerFactory
{
public:
    virtual ~TimerFactory() = default;
    /// Fires once, after \a seconds.
    [[nodiscard]] virtual std::unique_ptr<NSTimer> scheduledTimer(double seconds,
                                                                  std::function<void()> block) = 0;
};

} // namespace quorvane
