#include "platform/nskeyedarchiver.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

using namespace quorvane;

// Whatever can be read can be written, and what was written reads as the same. Bytes are compared
// and not values, since a number may be no number and so unlike itself.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *bytes, std::size_t size)
{
    const QByteArray input(reinterpret_cast<const char *>(bytes), static_cast<qsizetype>(size));
    const std::optional<NSObject> object = NSKeyedUnarchiver::unarchiveObjectWithData(input);
    if (!object) {
        return 0;
    }
    const QByteArray archive = NSKeyedArchiver::archivedDataWithRootObject(*object);
    const std::optional<NSObject> again = NSKeyedUnarchiver::unarchiveObjectWithData(archive);
    if (!again || NSKeyedArchiver::archivedDataWithRootObject(*again) != archive) {
        std::abort();
    }
    return 0;
}
