#pragma once

#include "platform/nsoperationqueue.h"

#include <deque>
#include <utility>

namespace quorvane {

/// The main queue, stepped by hand.
class ManualQueue final : public NSOperationQueue
{
public:
    void addOperation(std::function<void()> operation) override
    {
        m_operations.push_back(std::move(operation));
    }

    std::size_t size() const { return m_operations.size(); }

    /// \return false where nothing was queued.
    bool runOne()
    {
        if (m_operations.empty()) {
            return false;
        }
        const auto operation = std::move(m_operations.front());
        m_operations.pop_front();
        operation();
        return true;
    }

    /// Runs until nothing is queued; what the operations add is run, too.
    void runAll()
    {
        while (runOne()) { }
    }

private:
    std::deque<std::function<void()>> m_operations;
};

} // namespace quorvane
