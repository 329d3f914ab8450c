#pragma once

#include <functional>

namespace quorvane {

/// The main operation queue: runs what is added on a later turn of the main loop, in order.
class NSOperationQueue
{
public:
    virtual ~NSOperationQueue() = default;
    virtual void addOperation(std::function<void()> operation) = 0;
};

} // namespace quorvane
