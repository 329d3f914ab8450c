#pragma once

#include "platform/nstimer.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

namespace quorvane {

/// Timers whose time is set by hand.
class FakeTimers final : public TimerFactory
{
public:
    std::unique_ptr<NSTimer> scheduledTimer(double seconds, std::function<void()> block) override
    {
        m_lastSeconds = seconds;
        auto shot = std::make_shared<Shot>(Shot {m_now + seconds, std::move(block)});
        m_shots.push_back(shot);
        return std::make_unique<Timer>(std::move(shot));
    }

    /// Fires what is due on the way, in the order of time, what the blocks schedule included.
    void advance(double seconds)
    {
        const double end = m_now + seconds;
        while (const std::shared_ptr<Shot> next = nextUntil(end)) {
            m_now = std::max(m_now, next->due);
            const auto block = std::exchange(next->block, nullptr);
            block();
        }
        m_now = end;
    }

    int scheduledCount() const
    {
        return static_cast<int>(std::count_if(m_shots.begin(), m_shots.end(),
                                              [](const auto &shot) { return isScheduled(shot); }));
    }

    double lastSeconds() const { return m_lastSeconds; } ///< What was last asked for.

private:
    struct Shot
    {
        double due = 0;
        std::function<void()> block; // empty once fired or invalidated
    };

    class Timer final : public NSTimer
    {
    public:
        explicit Timer(std::shared_ptr<Shot> shot)
            : m_shot(std::move(shot))
        { }

        ~Timer() override { m_shot->block = nullptr; }

        void invalidate() override { m_shot->block = nullptr; }

    private:
        std::shared_ptr<Shot> m_shot; // with the factory, which may die first
    };

    static bool isScheduled(const std::shared_ptr<Shot> &shot)
    {
        return static_cast<bool>(shot->block);
    }

    std::shared_ptr<Shot> nextUntil(double end) const
    {
        std::shared_ptr<Shot> next;
        for (const auto &shot : m_shots) {
            if (isScheduled(shot) && shot->due <= end && (!next || shot->due < next->due)) {
                next = shot;
            }
        }
        return next;
    }

    std::vector<std::shared_ptr<Shot>> m_shots;
    double m_now = 0;
    double m_lastSeconds = 0;
};

} // namespace quorvane
