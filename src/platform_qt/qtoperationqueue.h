#pragma once

#include "platform/nsoperationqueue.h"

#include <QObject>

namespace quorvane {

/// The main operation queue over the event loop of the thread that made it. What is queued when
/// the queue dies never runs.
class QtOperationQueue final : public NSOperationQueue
{
public:
    void addOperation(std::function<void()> operation) override;

private:
    QObject m_context;
};

} // namespace quorvane
