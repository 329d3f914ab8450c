#include "platform/coredumps.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace quorvane {

// The limit is not asked where dumps go through a pipe; there, the filter leaves nothing of the
// memory in them.
void turnCoreDumpsOff()
{
    const rlimit none {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    const int filter = open("/proc/self/coredump_filter", O_WRONLY | O_CLOEXEC);
    if (filter >= 0) {
        [[maybe_unused]] const ssize_t written = write(filter, "0", 1);
        close(filter);
    }
}

} // namespace quorvane
