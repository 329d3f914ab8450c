#include "crypto/randominrange.h"

#include <cstdlib>
#include <ctime>

namespace quorvane {

qint64 randomInRange(qint64 low, qint64 high)
{
    // Whichever thread comes first seeds, and no other.
    [[maybe_unused]] static const bool isSeeded = [] {
        srandom(static_cast<unsigned int>(time(nullptr)));
        return true;
    }();
    if (high < low) {
        return low;
    }
    const quint64 drawn = static_cast<quint64>(random());
    const quint64 count = static_cast<quint64>(high) - static_cast<quint64>(low) + 1;
    const quint64 offset = count == 0 ? drawn : drawn % count; // 0: all there are
    return static_cast<qint64>(static_cast<quint64>(low) + offset);
}

} // namespace quorvane
