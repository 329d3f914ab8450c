#include "platform/packagereplacement.h"

#include "platform/posixfolder.h"
#include "platform/posixpackagestore.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr int mostNames = 16;
constexpr mode_t ownersAlone = S_IRUSR | S_IWUSR;
constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;

/// Nothing but the name of something in the folder itself.
bool isPlainName(const QByteArray &name)
{
    return !name.isEmpty() && name != "." && name != ".." && !name.contains('/')
        && !name.contains('\0');
}

bool isEmptyFolder(int folder, const QByteArray &name)
{
    const Descriptor opened = openFolderIn(folder, name);
    const auto names = namesIn(opened.get(), 1);
    return opened && names && names->empty();
}

/// Takes away a thing and what is in it, on its own disk alone. What cannot be taken away stays.
void remove(int folder, const QByteArray &name, dev_t device, int depth = 0)
{
    struct stat found = {};
    if (::fstatat(folder, name.constData(), &found, AT_SYMLINK_NOFOLLOW) != 0
        || found.st_dev != device) {
        return;
    }
    if (!S_ISDIR(found.st_mode)) {
        ::unlinkat(folder, name.constData(), 0);
        return;
    }
    const Descriptor opened = openFolderIn(folder, name);
    if (opened && depth <= PosixPackageStore::deepest) {
        for (const QByteArray &inner :
             namesIn(opened.get(), SIZE_MAX).value_or(std::vector<QByteArray>())) {
            remove(opened.get(), inner, device, depth + 1);
        }
    }
    ::unlinkat(folder, name.constData(), AT_REMOVEDIR);
}

bool flush(int file)
{
    return uninterrupted([file] { return ::fsync(file); }) == 0;
}

bool isUnsupported(int code)
{
    return code == EINVAL || code == ENOSYS || code == ENOTSUP;
}

QByteArray hiddenName()
{
    const quint64 random = QRandomGenerator::system()->generate64();
    return ".quorvane-saving-" + QByteArray::number(random, 16).rightJustified(16, '0');
}

} // namespace

PackageReplacement::PackageReplacement(const QByteArray &path, const QByteArray &mark,
                                       const PackageEntries &entries)
    : m_entries(entries)
    , m_mark(mark)
    , m_path(path)
{ }

std::optional<FileError> PackageReplacement::run()
{
    if (Result error = locate()) {
        return error;
    }
    if (Result error = makeNew()) {
        return error;
    }
    Result error = writeEntries(m_newFolder.get(), m_entries, m_path);
    error = error ? error : dress();
    error = error ? error : putInPlace();
    if (error) {
        removeHidden();
        return error;
    }
    error = flushFolder();
    if (m_old && !error) { // not while a power cut might still bring it back
        removeHidden();
    }
    return error;
}

/// Finds the folder and the name that the path leads to, and what stands there.
PackageReplacement::Result PackageReplacement::locate()
{
    while (m_path.size() > 1 && m_path.endsWith('/')) {
        m_path.chop(1);
    }
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(m_path.constData(), nullptr),
                                                           &std::free);
    if (real) {
        m_path = real.get();
    } else if (errno != ENOENT) {
        return failure(filestep::lookingAtFile, m_path);
    }
    const qsizetype slash = m_path.lastIndexOf('/');
    m_name = m_path.mid(slash + 1);
    m_folderPath = slash < 0 ? QByteArray(".") : m_path.left(std::max<qsizetype>(slash, 1));
    m_folder = Descriptor(uninterrupted(
        [this] { return ::open(m_folderPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!m_folder) {
        return failure(filestep::openingFolder, m_folderPath);
    }
    if (!isPlainName(m_name)) {
        errno = EINVAL;
        return failure(filestep::lookingAtFile, m_path);
    }
    struct stat found = {};
    if (::fstatat(m_folder.get(), m_name.constData(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
        return errno == ENOENT ? Result() : failure(filestep::lookingAtFile, m_path);
    }
    m_old = found;
    struct stat mark = {};
    const QByteArray markPath = m_name + '/' + m_mark;
    const bool isPackage =
        ::fstatat(m_folder.get(), markPath.constData(), &mark, AT_SYMLINK_NOFOLLOW) == 0
        && S_ISREG(mark.st_mode);
    if (S_ISREG(found.st_mode) || isPackage
        || (S_ISDIR(found.st_mode) && isEmptyFolder(m_folder.get(), m_name))) {
        return std::nullopt;
    }
    errno = S_ISDIR(found.st_mode) ? ENOTEMPTY : ENODEV;
    return failure(filestep::lookingAtFile, m_path);
}

PackageReplacement::Result PackageReplacement::makeNew()
{
    for (int i = 0; i < mostNames; ++i) {
        m_newName = hiddenName();
        if (::mkdirat(m_folder.get(), m_newName.constData(), S_IRWXU) == 0) {
            m_newFolder = openFolderIn(m_folder.get(), m_newName);
            return m_newFolder ? Result() : failure(filestep::makingNewFile, m_folderPath);
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return failure(filestep::makingNewFile, m_folderPath);
}

PackageReplacement::Result PackageReplacement::writeEntries(int folder,
                                                            const PackageEntries &entries,
                                                            const QByteArray &inside)
{
    for (const PackageEntry &entry : entries) {
        const QByteArray path = inside + '/' + entry.name;
        if (!isPlainName(entry.name)) {
            errno = EINVAL;
            return failure(filestep::writing, path);
        }
        if (Result error = entry.isFolder ? writeFolder(folder, entry, path)
                                          : writeFile(folder, entry, path)) {
            return error;
        }
    }
    return flush(folder) || isUnsupported(errno) ? Result() : failure(filestep::flushing, inside);
}

PackageReplacement::Result PackageReplacement::writeFolder(int folder, const PackageEntry &entry,
                                                           const QByteArray &path)
{
    if (::mkdirat(folder, entry.name.constData(), S_IRWXU) != 0) {
        return failure(filestep::writing, path);
    }
    const Descriptor made = openFolderIn(folder, entry.name);
    return made ? writeEntries(made.get(), entry.children, path) : failure(filestep::writing, path);
}

PackageReplacement::Result PackageReplacement::writeFile(int folder, const PackageEntry &entry,
                                                         const QByteArray &path)
{
    const Descriptor file(uninterrupted([&] {
        return ::openat(folder, entry.name.constData(),
                        O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownersAlone);
    }));
    if (!file || !writeAll(file.get(), entry.bytes)) {
        return failure(filestep::writing, path);
    }
    if (!flush(file.get())) {
        return failure(filestep::flushing, path);
    }
    if (const auto same = holds(file.get(), entry.bytes); same != true) {
        errno = same ? 0 : errno;
        return failure(filestep::readingBack, path);
    }
    return std::nullopt;
}

/// The mode that people have given the package, but never less than its owner needs.
PackageReplacement::Result PackageReplacement::dress()
{
    if (!m_old || !S_ISDIR(m_old->st_mode) || m_old->st_uid != ::geteuid()) {
        return std::nullopt;
    }
    const mode_t mode = (m_old->st_mode & permissions) | S_IRWXU;
    if (::fchmod(m_newFolder.get(), mode) != 0 && errno != EPERM && !isUnsupported(errno)) {
        return failure(filestep::settingPermissions, m_path);
    }
    return std::nullopt;
}

PackageReplacement::Result PackageReplacement::putInPlace()
{
    const unsigned int how = m_old ? RENAME_EXCHANGE : RENAME_NOREPLACE;
    if (::renameat2(m_folder.get(), m_newName.constData(), m_folder.get(), m_name.constData(), how)
        == 0) {
        return std::nullopt;
    }
    return isUnsupported(errno) ? exchangeInSteps() : failure(filestep::puttingInPlace, m_path);
}

/// For disks that know no exchange: the old package steps aside first, and back where that fails.
PackageReplacement::Result PackageReplacement::exchangeInSteps()
{
    const int folder = m_folder.get();
    const QByteArray aside = hiddenName();
    if (m_old && ::renameat(folder, m_name.constData(), folder, aside.constData()) != 0) {
        return failure(filestep::puttingInPlace, m_path);
    }
    if (::renameat(folder, m_newName.constData(), folder, m_name.constData()) != 0) {
        const FileError error = failure(filestep::puttingInPlace, m_path);
        if (m_old) {
            ::renameat(folder, aside.constData(), folder, m_name.constData());
        }
        return error;
    }
    m_newName = aside;
    return std::nullopt;
}

void PackageReplacement::removeHidden()
{
    struct stat here = {};
    if (::fstat(m_folder.get(), &here) == 0) {
        remove(m_folder.get(), m_newName, here.st_dev);
    }
}

PackageReplacement::Result PackageReplacement::flushFolder()
{
    return flush(m_folder.get()) || isUnsupported(errno)
        ? Result()
        : failure(filestep::flushingFolder, m_folderPath);
}

FileError PackageReplacement::failure(QLatin1StringView step, const QByteArray &path) const
{
    return {errno, step, QFile::decodeName(path)};
}

} // namespace quorvane
