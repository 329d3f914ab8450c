#include "platform/peakmemory.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

namespace {

std::atomic<qint64> current = 0;
std::atomic<qint64> peak = 0;

void count(std::size_t size)
{
    const qint64 now = current += static_cast<qint64>(size);
    peak = std::max(peak.load(), now);
}

void uncount(std::size_t size)
{
    current -= static_cast<qint64>(size);
}

} // namespace

#ifdef __SANITIZE_ADDRESS__

// GCC 12 has the functions, but not the header that declares them.
extern "C" {
std::size_t __sanitizer_get_allocated_size(const volatile void *block);
int __sanitizer_install_malloc_and_free_hooks(void (*onMalloc)(const volatile void *, std::size_t),
                                              void (*onFree)(const volatile void *));
}

namespace {

void onAllocation(const volatile void *, std::size_t size)
{
    count(size);
}

void onRelease(const volatile void *block)
{
    uncount(block != nullptr ? __sanitizer_get_allocated_size(block) : 0);
}

const int installed = __sanitizer_install_malloc_and_free_hooks(onAllocation, onRelease);

} // namespace

#else

#include <malloc.h>

// The program's own allocation functions stand before those of the C library, in Qt too.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void __libc_free(void *block);

void *malloc(std::size_t size) noexcept
{
    void *block = __libc_malloc(size);
    count(malloc_usable_size(block));
    return block;
}

void *calloc(std::size_t number, std::size_t size) noexcept
{
    void *block = __libc_calloc(number, size);
    count(malloc_usable_size(block));
    return block;
}

void *realloc(void *block, std::size_t size) noexcept
{
    uncount(malloc_usable_size(block));
    void *moved = __libc_realloc(block, size);
    count(malloc_usable_size(moved));
    return moved;
}

void free(void *block) noexcept
{
    uncount(malloc_usable_size(block));
    __libc_free(block);
}
}

#endif

PeakMemory::PeakMemory()
{
    current = 0;
    peak = 0;
}

qint64 PeakMemory::bytes() const
{
    return peak;
}
