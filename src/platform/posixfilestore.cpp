#include "platform/posixfilestore.h"

#include "platform/largebuffer.h"
#include "platform/posixreplacement.h"

#include <QFile>

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

bool isUnchanged(const struct stat &before, const struct stat &after)
{
    return before.st_size == after.st_size && before.st_mtim.tv_sec == after.st_mtim.tv_sec
        && before.st_mtim.tv_nsec == after.st_mtim.tv_nsec;
}

} // namespace

PosixFileStore::PosixFileStore(qint64 largest)
    : m_largest(largest)
{ }

FileStore::ReadResult PosixFileStore::read(const QString &path)
{
    const auto failure = [&](int code, QLatin1StringView step) {
        return ReadResult {std::nullopt, {code, step, path}};
    };
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0')) {
        return failure(EINVAL, filestep::lookingAtFile);
    }
    // To open a device can do things to it, so the look comes first; a pipe put there since then
    // does not block.
    struct stat before = {};
    if (::stat(name.constData(), &before) != 0) {
        return failure(errno, filestep::lookingAtFile);
    }
    if (const int code = errorOfKind(before.st_mode)) {
        return failure(code, filestep::lookingAtFile);
    }
    const Descriptor file(uninterrupted(
        [&] { return ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC); }));
    if (!file || ::fstat(file.get(), &before) != 0) {
        return failure(errno, filestep::openingFile);
    }
    if (const int code = errorOfKind(before.st_mode)) {
        return failure(code, filestep::openingFile);
    }
    if (before.st_size > m_largest) {
        return failure(EFBIG, filestep::openingFile);
    }
    QByteArray data = largeBuffer(before.st_size + 1); // one more: a file that grew is noticed
    const qint64 count = readAll(file.get(), data);
    struct stat after = {};
    if (count < 0 || ::fstat(file.get(), &after) != 0) {
        return failure(errno, filestep::reading);
    }
    if (count != before.st_size || !isUnchanged(before, after)) {
        return failure(EAGAIN, filestep::reading);
    }
    data.resize(count);
    return {data, {}};
}

std::optional<FileError> PosixFileStore::replace(const QString &path, const QByteArray &data)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0')) {
        return FileError {EINVAL, filestep::lookingAtFile, path};
    }
    if (data.size() > m_largest) {
        return FileError {EFBIG, filestep::writing, path};
    }
    return PosixReplacement(name, data).run();
}

} // namespace quorvane
