#pragma once

#include "platform/sessionevents.h"

namespace quorvane {

/// A session that announces what the test tells it to.
class FakeSessionEvents final : public SessionEvents
{
public:
    void readyToSleep() override { ++timesReady; }

    int timesReady = 0;
};

} // namespace quorvane
