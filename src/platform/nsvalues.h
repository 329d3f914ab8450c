#pragma once

namespace quorvane {

/// A size in points.
struct NSSize
{
    double width = 0;
    double height = 0;
    bool operator==(const NSSize &) const = default;
};

/// A rectangle in points: origin at the bottom left of the main screen, y upwards.
struct NSRect
{
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const NSRect &) const = default;
};

/// A moment: seconds since 2001-01-01 00:00:00 UTC. Kept as the double that it came as, so that
/// a date from a file goes back bit for bit.
struct NSDate
{
    double timeIntervalSinceReferenceDate = 0;
    bool operator==(const NSDate &) const = default;

    static NSDate date(); ///< The present moment.
};

} // namespace quorvane
