#include "platform/posixfolder.h"

#include <algorithm>
#include <memory>

#include <dirent.h>
#include <fcntl.h>

namespace quorvane {

namespace {

struct Closer
{
    void operator()(DIR *directory) const { ::closedir(directory); }
};

} // namespace

Descriptor openFolderIn(int folder, const QByteArray &name)
{
    return Descriptor(uninterrupted([&] {
        return ::openat(folder, name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    }));
}

std::optional<std::vector<QByteArray>> namesIn(int folder, std::size_t most)
{
    // Another descriptor: the listing takes it over, and has a place in the folder of its own.
    const int listed = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, Closer> directory(listed < 0 ? nullptr : ::fdopendir(listed));
    if (!directory) {
        return std::nullopt;
    }
    std::vector<QByteArray> names;
    errno = 0;
    while (names.size() < most) {
        const dirent *entry = ::readdir(directory.get());
        if (!entry) {
            break;
        }
        const QByteArray name(entry->d_name);
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    if (errno != 0) {
        return std::nullopt;
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace quorvane
