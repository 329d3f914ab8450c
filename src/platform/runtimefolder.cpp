#include "platform/runtimefolder.h"

#include "platform/safefilename.h"

#include <QDir>
#include <QFile>

#include <cstdlib>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr auto prefix = "quorvane-"_L1;
constexpr auto lockName = "/.lock"_L1;
constexpr mode_t ownersLock = S_IRUSR | S_IWUSR;
constexpr mode_t ownersCopy = S_IRUSR;
constexpr mode_t ownersFolder = S_IRWXU;

/// Held by whoever uses the folder; nothing where that is another program, or it cannot be had.
Descriptor heldLock(const QString &folder, int more)
{
    const QByteArray name = QFile::encodeName(folder + lockName);
    Descriptor lock(uninterrupted([&] {
        return ::open(name.constData(), O_RDWR | O_NOFOLLOW | O_CLOEXEC | more, ownersLock);
    }));
    const bool isHeld =
        lock && uninterrupted([&] { return ::flock(lock.get(), LOCK_EX | LOCK_NB); }) == 0;
    return isHeld ? std::move(lock) : Descriptor();
}

/// A folder of the user's alone, and no link to one.
bool isPrivate(const QString &path)
{
    struct stat found = {};
    return ::lstat(QFile::encodeName(path).constData(), &found) == 0 && S_ISDIR(found.st_mode)
        && found.st_uid == ::geteuid() && (found.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

} // namespace

RuntimeFolder::RuntimeFolder(QString runtimePath)
    : m_runtimePath(std::move(runtimePath))
{ }

RuntimeFolder::~RuntimeFolder()
{
    clear();
}

QString RuntimeFolder::sessionPath()
{
    const QString path = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return QDir::isAbsolutePath(path) && isPrivate(path) ? path : QString();
}

void RuntimeFolder::removeAbandoned(const QString &runtimePath)
{
    if (runtimePath.isEmpty()) {
        return;
    }
    const QDir runtime(runtimePath);
    const QStringList names =
        runtime.entryList({prefix + u"??????"_s}, QDir::Dirs | QDir::Hidden | QDir::NoSymLinks);
    for (const QString &name : names) {
        const QString path = runtime.filePath(name);
        // One without a lock is being made at this moment, or its end was cut short.
        const bool hasLock = QFile::exists(path + lockName);
        const bool isEmpty = QDir(path).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::System
                                                | QDir::NoDotAndDotDot);
        if (isPrivate(path) && (hasLock ? bool(heldLock(path, 0)) : !isEmpty)) {
            QDir(path).removeRecursively();
        }
    }
}

std::optional<FileError> RuntimeFolder::make()
{
    if (!m_path.isEmpty()) {
        return std::nullopt;
    }
    QByteArray name = QFile::encodeName(m_runtimePath + u'/' + prefix + u"XXXXXX"_s);
    if (m_runtimePath.isEmpty() || !::mkdtemp(name.data())) { // 0700 by itself
        return FileError {m_runtimePath.isEmpty() ? ENOENT : errno, filestep::openingFolder,
                          m_runtimePath};
    }
    m_path = QFile::decodeName(name);
    m_lock = heldLock(m_path, O_CREAT | O_EXCL);
    if (!m_lock) {
        const int code = errno;
        clear();
        return FileError {code, filestep::openingFolder, m_runtimePath};
    }
    return std::nullopt;
}

std::variant<QString, FileError> RuntimeFolder::add(const QString &name, const QByteArray &bytes)
{
    if (const std::optional<FileError> error = make()) {
        return *error;
    }
    // Each in a folder of its own, so that each can have its name.
    const QString folder = m_path + u'/' + QString::number(++m_copies);
    const QString path = folder + u'/' + safeFileName(name);
    if (::mkdir(QFile::encodeName(folder).constData(), ownersFolder) != 0) {
        return FileError {errno, filestep::openingFolder, folder};
    }
    const Descriptor file(uninterrupted([&] {
        return ::open(QFile::encodeName(path).constData(),
                      O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, ownersCopy);
    }));
    if (!file) {
        return FileError {errno, filestep::makingNewFile, path};
    }
    if (!writeAll(file.get(), bytes)) {
        const int code = errno;
        ::unlink(QFile::encodeName(path).constData());
        return FileError {code, filestep::writing, path};
    }
    return path;
}

void RuntimeFolder::clear()
{
    if (m_path.isEmpty()) {
        return;
    }
    QDir(m_path).removeRecursively();
    m_path.clear();
    m_lock = Descriptor();
}

} // namespace quorvane
