#pragma once

#include <QtGlobal>

namespace quorvane {

/// A number from \a low to \a high, both included, for material that is no key: the C library's
/// generator, seeded once from the clock. A range that is turned round gives \a low.
[[nodiscard]] qint64 randomInRange(qint64 low, qint64 high);

} // namespace quorvane
