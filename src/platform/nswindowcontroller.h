#pragma once

namespace quorvane {

/// Owns a document's window and what belongs to it.
class NSWindowController
{
public:
    virtual ~NSWindowController() = default;
    /// Whether a new window stands a little beside the last one.
    virtual void setShouldCascadeWindows(bool cascades) = 0;
};

} // namespace quorvane
