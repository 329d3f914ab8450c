#include "platform/recoveryfolder.h"

#include "platform/posixreplacement.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <array>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr auto documentEnding = ".quorvane"_L1;
constexpr auto lockEnding = ".lock"_L1;
constexpr int mostNames = 16;
constexpr int unguessableLength = 32;
constexpr int longestName = 120; // bytes: a file's name has room for 255, and gains endings
constexpr mode_t ownersFolder = S_IRWXU;
constexpr mode_t ownersFile = S_IRUSR | S_IWUSR;
constexpr mode_t permissions = S_IRWXU | S_IRWXG | S_IRWXO;

QString unguessableName()
{
    std::array<quint32, 4> random = {};
    QRandomGenerator::system()->fillRange(random.data(), random.size());
    QString name;
    for (const quint32 part : random) {
        name += QString::number(part, 16).rightJustified(8, u'0');
    }
    return name;
}

QString shortened(QString name)
{
    while (name.toUtf8().size() > longestName) {
        name.chop(name.back().isLowSurrogate() ? 2 : 1);
    }
    return name;
}

/// The lock, held; nothing where another program holds it or it cannot be had, told by errno.
Descriptor heldLock(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    Descriptor lock(uninterrupted([&] {
        return ::open(name.constData(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, ownersFile);
    }));
    if (!lock || uninterrupted([&] { return ::flock(lock.get(), LOCK_EX | LOCK_NB); }) != 0) {
        return Descriptor();
    }
    // Who held it may have taken it away in between: then this one protects nothing.
    struct stat held = {};
    struct stat named = {};
    if (::fstat(lock.get(), &held) != 0 || ::stat(name.constData(), &named) != 0
        || held.st_dev != named.st_dev || held.st_ino != named.st_ino) {
        errno = EAGAIN;
        return Descriptor();
    }
    return lock;
}

/// Makes the folder, or closes one that is there to others. \return an errno, or 0.
int prepareFolder(const QString &path)
{
    const QByteArray name = QFile::encodeName(path);
    if (!QDir().mkpath(QFileInfo(path).path())) {
        return EACCES;
    }
    if (::mkdir(name.constData(), ownersFolder) != 0 && errno != EEXIST) {
        return errno;
    }
    struct stat found = {};
    const Descriptor folder(uninterrupted(
        [&] { return ::open(name.constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC); }));
    if (!folder || ::fstat(folder.get(), &found) != 0) {
        return errno;
    }
    if (found.st_uid != ::geteuid()) {
        return EPERM;
    }
    const bool isOwnersAlone = (found.st_mode & permissions) == ownersFolder;
    return isOwnersAlone || ::fchmod(folder.get(), ownersFolder) == 0 ? 0 : errno;
}

class FolderEntry final : public RecoveryStore::Entry
{
public:
    /// \a path without ending.
    FolderEntry(QString path, Descriptor lock, FileStore &files)
        : m_path(std::move(path))
        , m_lock(std::move(lock))
        , m_files(files)
    { }

    ~FolderEntry() override
    {
        if (!QFile::exists(path())) {
            QFile::remove(m_path + lockEnding);
        }
    }

    QString path() const override { return m_path + documentEnding; }

    QString name() const override
    {
        return QFileInfo(path())
            .fileName()
            .chopped(documentEnding.size())
            .mid(unguessableLength + 1);
    }

    FileStore::ReadResult read() override { return m_files.read(path()); }

    std::optional<FileError> write(const QByteArray &data) override
    {
        return m_files.replace(path(), data);
    }

    void remove() override { QFile::remove(path()); }

private:
    QString m_path;
    Descriptor m_lock;
    FileStore &m_files;
};

} // namespace

RecoveryFolder::RecoveryFolder(QString path, FileStore &files)
    : m_path(std::move(path))
    , m_files(files)
{ }

RecoveryStore::NewEntry RecoveryFolder::newEntry(const QString &name)
{
    const auto failure = [this](int code) {
        return NewEntry {nullptr, {code, filestep::makingNewFile, m_path}};
    };
    if (const int code = prepareFolder(m_path)) {
        return failure(code);
    }
    for (int i = 0; i < mostNames; ++i) {
        const QString known = name.isEmpty() ? QString() : u' ' + shortened(name);
        const QString path = QDir(m_path).filePath(unguessableName() + known);
        Descriptor lock = heldLock(path + lockEnding);
        if (lock) {
            return {std::make_unique<FolderEntry>(path, std::move(lock), m_files), {}};
        }
        if (errno != EAGAIN) {
            break;
        }
    }
    return failure(errno);
}

std::vector<std::unique_ptr<RecoveryStore::Entry>> RecoveryFolder::takeAbandoned()
{
    std::vector<std::unique_ptr<Entry>> taken;
    const QDir folder(m_path);
    const auto withoutEnding = [&folder](const QString &name) {
        return folder.filePath(name.left(name.lastIndexOf(u'.')));
    };
    const QStringList documents = folder.entryList(
        {u'*' + documentEnding}, QDir::Files | QDir::Hidden, QDir::Time | QDir::Reversed);
    for (const QString &name : documents) {
        const QString path = withoutEnding(name);
        Descriptor lock = heldLock(path + lockEnding);
        // Its program may have ended, and taken it away, between the list and the lock.
        if (lock && QFile::exists(path + documentEnding)) {
            taken.push_back(std::make_unique<FolderEntry>(path, std::move(lock), m_files));
        }
    }
    const QStringList locks = folder.entryList({u'*' + lockEnding}, QDir::Files | QDir::Hidden);
    for (const QString &name : locks) {
        const QString path = withoutEnding(name);
        if (!QFile::exists(path + documentEnding) && heldLock(path + lockEnding)) {
            QFile::remove(path + lockEnding);
        }
    }
    return taken;
}

} // namespace quorvane
