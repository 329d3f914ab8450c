#include "platform/largeblocks.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace quorvane {

void returnLargeBlocksAtOnce()
{
#ifdef __GLIBC__
    constexpr int large = 256 * 1024;
    constexpr int keptAtTheEnd = 1024 * 1024;
    mallopt(M_MMAP_THRESHOLD, large); // left to itself it grows with each block that is freed
    mallopt(M_TRIM_THRESHOLD, keptAtTheEnd);
#endif
}

} // namespace quorvane
