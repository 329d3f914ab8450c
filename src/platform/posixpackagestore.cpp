#include "platform/posixpackagestore.h"

#include "platform/packagereplacement.h"
#include "platform/posixfolder.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

/// Reads what lies in one package.
class PackageReading final
{
public:
    PackageReading(const QByteArray &path, qint64 largest)
        : m_path(path)
        , m_left(largest)
    { }

    PackageStore::ReadResult run()
    {
        const Descriptor folder(uninterrupted(
            [this] { return ::open(m_path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
        struct stat top = {};
        if (!folder || ::fstat(folder.get(), &top) != 0) {
            return {std::nullopt, error(filestep::openingFolder, m_path), {}};
        }
        m_device = top.st_dev;
        PackageEntries entries;
        if (!readFolder(folder.get(), QByteArray(), 0, entries)) {
            return {std::nullopt, m_error, {}};
        }
        return {std::move(entries), {}, std::move(m_leftOut)};
    }

private:
    bool readFolder(int folder, const QByteArray &inside, int depth, PackageEntries &entries)
    {
        const auto names = namesIn(folder, std::size_t(m_entriesLeft) + 1);
        if (!names) {
            return fail(errno, filestep::openingFolder, inside);
        }
        return std::all_of(names->begin(), names->end(), [&](const QByteArray &name) {
            return readEntry(folder, name, inside + name, depth, entries);
        });
    }

    bool readEntry(int folder, const QByteArray &name, const QByteArray &inside, int depth,
                   PackageEntries &entries)
    {
        if (--m_entriesLeft < 0) {
            return fail(EFBIG, filestep::reading, inside);
        }
        // To open a device can do things to it, so the look comes first; what is put there since
        // then is neither followed nor waited for.
        struct stat found = {};
        if (::fstatat(folder, name.constData(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
            return fail(errno, filestep::lookingAtFile, inside);
        }
        const bool isTooDeep = S_ISDIR(found.st_mode) && depth >= PosixPackageStore::deepest;
        if (!isOurs(found) || isTooDeep) {
            m_leftOut.push_back(inside);
            return true;
        }
        const Descriptor entry(uninterrupted([&] {
            return ::openat(folder, name.constData(),
                            O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        }));
        if (!entry || ::fstat(entry.get(), &found) != 0) {
            return fail(errno, filestep::openingFile, inside);
        }
        if (!isOurs(found)) {
            return fail(ENODEV, filestep::openingFile, inside);
        }
        entries.push_back({name, S_ISDIR(found.st_mode), {}, {}});
        return S_ISDIR(found.st_mode)
            ? readFolder(entry.get(), inside + '/', depth + 1, entries.back().children)
            : readFile(entry.get(), found, inside, entries.back().bytes);
    }

    bool readFile(int file, const struct stat &found, const QByteArray &inside, QByteArray &bytes)
    {
        if (found.st_size > m_left) {
            return fail(EFBIG, filestep::openingFile, inside);
        }
        bytes = QByteArray(found.st_size + 1, Qt::Uninitialized); // one more: a file that grows
        const qint64 count = readAll(file, bytes);
        if (count < 0) {
            return fail(errno, filestep::reading, inside);
        }
        if (count != found.st_size) {
            return fail(EAGAIN, filestep::reading, inside);
        }
        bytes.resize(count);
        m_left -= count;
        return true;
    }

    bool isOurs(const struct stat &found) const
    {
        return found.st_dev == m_device && (S_ISREG(found.st_mode) || S_ISDIR(found.st_mode));
    }

    bool fail(int code, QLatin1StringView step, const QByteArray &inside)
    {
        errno = code;
        m_error = error(step, m_path + '/' + inside);
        return false;
    }

    static FileError error(QLatin1StringView step, const QByteArray &path)
    {
        return {errno, step, QFile::decodeName(path)};
    }

    const QByteArray m_path;
    qint64 m_left;
    int m_entriesLeft = PosixPackageStore::mostEntries;
    dev_t m_device = 0;
    FileError m_error;
    std::vector<QByteArray> m_leftOut;
};

qint64 bytesIn(const PackageEntries &entries)
{
    qint64 total = 0;
    for (const PackageEntry &entry : entries) {
        total += entry.bytes.size() + bytesIn(entry.children);
    }
    return total;
}

} // namespace

PosixPackageStore::PosixPackageStore(QByteArray mark, qint64 largest)
    : m_mark(std::move(mark))
    , m_largest(largest)
{ }

PackageStore::ReadResult PosixPackageStore::read(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0')) {
        return {std::nullopt, {EINVAL, filestep::lookingAtFile, path}, {}};
    }
    return PackageReading(name, m_largest).run();
}

std::optional<FileError> PosixPackageStore::replace(const QString &path,
                                                    const PackageEntries &entries)
{
    const QByteArray name = QFile::encodeName(path);
    if (name.contains('\0')) {
        return FileError {EINVAL, filestep::lookingAtFile, path};
    }
    if (bytesIn(entries) > m_largest) {
        return FileError {EFBIG, filestep::writing, path};
    }
    return PackageReplacement(name, m_mark, entries).run();
}

} // namespace quorvane
