#pragma once

#include "platform/nstimer.h"

namespace quorvane {

/// Timers of the event loop. A timer never fires early, and may be destroyed by its own block.
class QtTimers final : public TimerFactory
{
public:
    [[nodiscard]] std::unique_ptr<NSTimer> scheduledTimer(double seconds,
                                                          std::function<void()> block) override;
};

} // namespace quorvane
