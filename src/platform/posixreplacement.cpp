#include "platform/posixreplacement.h"

#include <QFile>
#include <QRandomGenerator>

#include <algorithm>
#include <array>
#include <climits>
#include <cstring>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr int mostLinks = 40; // as many as the kernel follows
constexpr int mostNames = 16;
constexpr mode_t ownersAlone = S_IRUSR | S_IWUSR;
constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr size_t chunkLength = 65536;
constexpr auto accessList = "system.posix_acl_access";

bool isUnsupported(int code)
{
    return code == EINVAL || code == ENOTSUP || code == ENOSYS;
}

QByteArray attribute(int file, const char *name)
{
    const ssize_t length = ::fgetxattr(file, name, nullptr, 0);
    QByteArray value(std::max<ssize_t>(length, 0), '\0');
    const ssize_t count = ::fgetxattr(file, name, value.data(), static_cast<size_t>(value.size()));
    value.resize(std::max<ssize_t>(count, 0));
    return value;
}

/// What the user's programs have noted at the file. That it is lost is no reason not to save.
void copyNotes(int from, int to)
{
    const ssize_t length = ::flistxattr(from, nullptr, 0);
    if (length <= 0) {
        return;
    }
    QByteArray names(length, '\0');
    names.resize(
        std::max<ssize_t>(::flistxattr(from, names.data(), static_cast<size_t>(names.size())), 0));
    for (const QByteArray &name : names.split('\0')) {
        if (name.startsWith("user.")) {
            const QByteArray value = attribute(from, name.constData());
            ::fsetxattr(to, name.constData(), value.constData(), static_cast<size_t>(value.size()),
                        0);
        }
    }
}

/// Gives the new file the access list of the old one, or none, whatever its folder handed down.
/// \return whether that is certain.
bool copyAccessList(int from, int to)
{
    const ssize_t length = ::fgetxattr(from, accessList, nullptr, 0);
    if (length < 0 && errno == ENODATA) {
        return ::fremovexattr(to, accessList) == 0 || errno == ENODATA || isUnsupported(errno);
    }
    if (length < 0) {
        return isUnsupported(errno);
    }
    const QByteArray list = attribute(from, accessList);
    return !list.isEmpty()
        && ::fsetxattr(to, accessList, list.constData(), static_cast<size_t>(list.size()), 0) == 0;
}

/// The old file's mode, less what somebody would gain where owner, group or access list could not
/// be kept.
mode_t modeToKeep(const struct stat &old, const struct stat &fresh, bool isListKept)
{
    if (!isListKept) {
        return old.st_mode & S_IRWXU;
    }
    const mode_t owner = (old.st_mode & S_IRWXU) >> 6;
    mode_t group = (old.st_mode & S_IRWXG) >> 3;
    mode_t others = old.st_mode & S_IRWXO;
    if (fresh.st_gid != old.st_gid) {
        // Members of the new group were others before, members of the old group are others now.
        group &= others;
        others = group;
    }
    if (fresh.st_uid != old.st_uid) {
        // The former owner has become one of the group or of the others.
        group &= owner;
        others &= owner;
    }
    return static_cast<mode_t>(owner << 6 | group << 3 | others);
}

} // namespace

int errorOfKind(mode_t mode)
{
    if (S_ISDIR(mode)) {
        return EISDIR;
    }
    return S_ISREG(mode) ? 0 : ENODEV;
}

Descriptor::Descriptor(int descriptor)
    : m_descriptor(descriptor)
{ }

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) {
        const int code = errno;
        ::close(m_descriptor); // What was written has been flushed before: nothing to learn here.
        errno = code;
    }
}

Descriptor::Descriptor(Descriptor &&other) noexcept
    : m_descriptor(std::exchange(other.m_descriptor, -1))
{ }

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept
{
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

qint64 readAll(int file, QByteArray &data)
{
    qint64 total = 0;
    while (total < data.size()) {
        const ssize_t count = uninterrupted([&] {
            return ::read(file, data.data() + total, static_cast<size_t>(data.size() - total));
        });
        if (count < 0) {
            return -1;
        }
        if (count == 0) {
            break;
        }
        total += count;
    }
    return total;
}

bool writeAll(int file, const QByteArray &data)
{
    for (qsizetype done = 0; done < data.size();) {
        const ssize_t count = uninterrupted([&] {
            return ::write(file, data.constData() + done, static_cast<size_t>(data.size() - done));
        });
        if (count == 0) {
            errno = EIO;
        }
        if (count <= 0) {
            return false;
        }
        done += count;
    }
    return true;
}

std::optional<bool> holds(int file, const QByteArray &data)
{
    std::array<char, chunkLength> chunk = {};
    qsizetype done = 0;
    while (true) {
        const ssize_t count =
            uninterrupted([&] { return ::pread(file, chunk.data(), chunk.size(), done); });
        if (count < 0) {
            return std::nullopt;
        }
        if (count == 0) {
            return done == data.size();
        }
        if (count > data.size() - done
            || std::memcmp(chunk.data(), data.constData() + done, static_cast<size_t>(count))
                != 0) {
            return false;
        }
        done += count;
    }
}

PosixReplacement::PosixReplacement(const QByteArray &path, const QByteArray &data)
    : m_data(data)
    , m_path(path)
{ }

std::optional<FileError> PosixReplacement::run()
{
    for (const auto step :
         {&PosixReplacement::locate, &PosixReplacement::openOld, &PosixReplacement::makeNew}) {
        if (Result error = (this->*step)()) {
            return error;
        }
    }
    for (const auto step :
         {&PosixReplacement::write, &PosixReplacement::dress, &PosixReplacement::flush,
          &PosixReplacement::compare, &PosixReplacement::putInPlace}) {
        if (Result error = (this->*step)()) {
            ::unlinkat(m_folder.get(), m_newName.constData(), 0);
            return error;
        }
    }
    return flushFolder();
}

/// Finds the folder and the name that the path leads to, and what stands there.
PosixReplacement::Result PosixReplacement::locate()
{
    for (int links = 0; links <= mostLinks; ++links) {
        if (Result error = openFolderOf(m_path)) {
            return error;
        }
        struct stat found = {};
        if (::fstatat(m_folder.get(), m_name.constData(), &found, AT_SYMLINK_NOFOLLOW) != 0) {
            return errno == ENOENT ? Result() : failure(filestep::lookingAtFile, m_path);
        }
        if (!S_ISLNK(found.st_mode)) {
            m_old = found;
            return std::nullopt;
        }
        if (Result error = followLink()) {
            return error;
        }
    }
    errno = ELOOP;
    return failure(filestep::followingLink, m_path);
}

PosixReplacement::Result PosixReplacement::openFolderOf(const QByteArray &path)
{
    const qsizetype slash = path.lastIndexOf('/');
    m_name = path.mid(slash + 1);
    m_folderPath = slash < 0 ? QByteArray(".") : path.left(std::max<qsizetype>(slash, 1));
    const auto open = [this](int flags) {
        return Descriptor(uninterrupted(
            [&] { return ::open(m_folderPath.constData(), flags | O_DIRECTORY | O_CLOEXEC); }));
    };
    m_folder = open(O_RDONLY);
    if (!m_folder && errno == EACCES) {
        m_folder = open(O_PATH); // a folder may take files without showing them
    }
    if (!m_folder) {
        return failure(filestep::openingFolder, m_folderPath);
    }
    if (m_name.isEmpty()) {
        errno = path.isEmpty() ? ENOENT : EISDIR;
        return failure(filestep::lookingAtFile, path);
    }
    return std::nullopt;
}

PosixReplacement::Result PosixReplacement::followLink()
{
    std::array<char, PATH_MAX> text = {};
    const ssize_t length =
        ::readlinkat(m_folder.get(), m_name.constData(), text.data(), text.size());
    if (length < 0) {
        return failure(filestep::followingLink, m_path);
    }
    const QByteArray aim(text.data(), length);
    m_path = aim.startsWith('/') ? aim : pathOf(aim);
    return std::nullopt;
}

PosixReplacement::Result PosixReplacement::openOld()
{
    if (!m_old) {
        return std::nullopt;
    }
    if (const int code = errorOfKind(m_old->st_mode)) {
        errno = code;
        return failure(filestep::lookingAtFile, m_path);
    }
    // The folder's permissions would let a rename overrule those of the file.
    if (::faccessat(m_folder.get(), m_name.constData(), W_OK, AT_EACCESS) != 0) {
        return failure(filestep::openingFile, m_path);
    }
    m_oldFile = Descriptor(uninterrupted([this] {
        return ::openat(m_folder.get(), m_name.constData(),
                        O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    }));
    if (!m_oldFile && errno != EACCES) {
        return failure(filestep::openingFile, m_path);
    }
    return std::nullopt;
}

PosixReplacement::Result PosixReplacement::makeNew()
{
    for (int i = 0; i < mostNames; ++i) {
        const quint64 random = QRandomGenerator::system()->generate64();
        m_newName = ".quorvane-saving-" + QByteArray::number(random, 16).rightJustified(16, '0');
        m_newFile = Descriptor(uninterrupted([this] {
            return ::openat(m_folder.get(), m_newName.constData(),
                            O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownersAlone);
        }));
        if (m_newFile) {
            return std::nullopt;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    return failure(filestep::makingNewFile, m_folderPath);
}

PosixReplacement::Result PosixReplacement::write()
{
    return writeAll(m_newFile.get(), m_data) ? Result() : failure(filestep::writing, m_path);
}

/// Gives the new file what is the old one's beside its content.
PosixReplacement::Result PosixReplacement::dress()
{
    if (m_old && !takeOverOwner()) {
        return failure(filestep::settingPermissions, m_path);
    }
    if (m_oldFile) {
        copyNotes(m_oldFile.get(), m_newFile.get());
    }
    const bool isListKept = m_oldFile && copyAccessList(m_oldFile.get(), m_newFile.get());
    struct stat fresh = {};
    if (::fstat(m_newFile.get(), &fresh) != 0) {
        return failure(filestep::settingPermissions, m_path);
    }
    const mode_t mode = m_old ? modeToKeep(*m_old, fresh, isListKept) : ownersAlone;
    const mode_t present = fresh.st_mode & permissions;
    if (present == mode || ::fchmod(m_newFile.get(), mode) == 0) {
        return std::nullopt;
    }
    // Some disks have one mode for all files.
    const bool isNarrower = (present & ~mode) == 0;
    if ((errno == EPERM || isUnsupported(errno)) && (!m_old || isNarrower)) {
        return std::nullopt;
    }
    return failure(filestep::settingPermissions, m_path);
}

/// As far as that is allowed. \return whether the new file could be looked at.
bool PosixReplacement::takeOverOwner()
{
    struct stat fresh = {};
    if (::fstat(m_newFile.get(), &fresh) != 0) {
        return false;
    }
    if (fresh.st_uid == m_old->st_uid && fresh.st_gid == m_old->st_gid) {
        return true;
    }
    // To give a file away takes rights that few have, to share it with a group of one's own none.
    // Whatever comes of it, the mode is made to fit.
    if (::fchown(m_newFile.get(), m_old->st_uid, m_old->st_gid) != 0) {
        std::ignore = ::fchown(m_newFile.get(), static_cast<uid_t>(-1), m_old->st_gid);
    }
    return true;
}

PosixReplacement::Result PosixReplacement::flush()
{
    if (uninterrupted([this] { return ::fsync(m_newFile.get()); }) != 0) {
        return failure(filestep::flushing, m_path);
    }
    return std::nullopt;
}

PosixReplacement::Result PosixReplacement::compare()
{
    const std::optional<bool> same = holds(m_newFile.get(), m_data);
    if (same == true) {
        return std::nullopt;
    }
    errno = same ? 0 : errno;
    return failure(filestep::readingBack, m_path);
}

PosixReplacement::Result PosixReplacement::putInPlace()
{
    if (::renameat(m_folder.get(), m_newName.constData(), m_folder.get(), m_name.constData())
        != 0) {
        return failure(filestep::puttingInPlace, m_path);
    }
    return std::nullopt;
}

PosixReplacement::Result PosixReplacement::flushFolder()
{
    // A folder that was opened without the right to read it gives EBADF, a disk that keeps folders
    // in another way EINVAL: neither could be flushed, and neither has failed.
    if (uninterrupted([this] { return ::fsync(m_folder.get()); }) != 0 && errno != EBADF
        && !isUnsupported(errno)) {
        return failure(filestep::flushingFolder, m_folderPath);
    }
    return std::nullopt;
}

FileError PosixReplacement::failure(QLatin1StringView step, const QByteArray &path) const
{
    return {errno, step, QFile::decodeName(path)};
}

QByteArray PosixReplacement::pathOf(const QByteArray &name) const
{
    return m_folderPath.endsWith('/') ? m_folderPath + name : m_folderPath + '/' + name;
}

} // namespace quorvane
