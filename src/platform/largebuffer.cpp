#include "platform/largebuffer.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

namespace quorvane {

namespace {
constexpr qsizetype worthLargePages = 8 * 1024 * 1024;
}

QByteArray largeBuffer(qsizetype size)
{
    QByteArray buffer(size, Qt::Uninitialized);
    if (size >= worthLargePages) {
        // Advice alone: where it is not taken, the buffer is as good as any.
        const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
        const auto start = reinterpret_cast<std::uintptr_t>(buffer.data());
        const std::uintptr_t first = (start + page - 1) / page * page;
        const std::uintptr_t end = (start + static_cast<std::uintptr_t>(size)) / page * page;
        madvise(reinterpret_cast<void *>(first), end - first, MADV_HUGEPAGE);
    }
    return buffer;
}

} // namespace quorvane
