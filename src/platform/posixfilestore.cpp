#include "platform/posixfilestore.h"

#include "platform/largebuffer.h"
#include "platform/posixreplacement.h"

#include <QFile>

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

namespace {

bool isUnchanged(const struct stat &before, const struct stat &after)
{
    return stampOf(before) == stampOf(after);
}

} // namespace

PosixFileStore::PosixFileStore(qint64 largest)
    : m_largest(largest)
{ }

FileStore::ReadResult PosixFileStore::read(const QString &path)
{
    const auto failure = [&](int code, QLatin1StringView step) {
        return ReadResult {std::nullopt, {code, step, path}, {}};
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
    return {data, {}, stampOf(after)};
}

FileStore::StampResult PosixFileStore::stamp(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    struct stat found = {};
    if (name.contains('\0')) {
        errno = EINVAL;
    } else if (::stat(name.constData(), &found) == 0) {
        return {stampOf(found), {}};
    }
    return {std::nullopt, {errno, filestep::lookingAtFile, path}};
}

FileStore::WriteResult PosixFileStore::write(const QString &path, const QByteArray &data)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0')) {
        return {FileError {EINVAL, filestep::lookingAtFile, path}, {}};
    }
    if (data.size() > m_largest) {
        return {FileError {EFBIG, filestep::writing, path}, {}};
    }
    PosixReplacement replacement(name, data);
    std::optional<FileError> error = replacement.run();
    const bool isInPlace = !error || error->isInPlace();
    return {std::move(error), isInPlace ? replacement.stamp() : std::nullopt};
}

} // namespace quorvane
