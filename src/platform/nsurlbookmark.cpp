#include "platform/nsurlbookmark.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

#include <sys/stat.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int version = 1;
constexpr qsizetype longestBookmark = 65536; // bytes
constexpr int mostEntriesLookedAt = 20'000;

struct FileNumber
{
    quint64 device = 0;
    quint64 inode = 0;
    bool operator==(const FileNumber &) const = default;
};

std::optional<FileNumber> numberOf(const QString &path)
{
    struct stat status = {};
    if (path.isEmpty() || stat(QFile::encodeName(path).constData(), &status) != 0) {
        return std::nullopt;
    }
    return FileNumber {static_cast<quint64>(status.st_dev), static_cast<quint64>(status.st_ino)};
}

// JSON knows doubles alone: a whole number of 64 bits goes as its digits.
std::optional<quint64> wholeNumber(const QJsonValue &value)
{
    bool isNumber = false;
    const quint64 number = value.toString().toULongLong(&isNumber);
    return isNumber ? std::optional(number) : std::nullopt;
}

QString folderOf(const QString &file)
{
    return QFileInfo(file).absolutePath();
}

/// Looks through a folder and what is below it, for so many entries.
std::optional<QString> findBelow(const QString &folder, const FileNumber &wanted, int &entriesLeft)
{
    QDirIterator entries(folder, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                         QDirIterator::Subdirectories);
    while (entries.hasNext() && entriesLeft-- > 0) {
        const QString path = entries.next();
        if (numberOf(path) == wanted) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<QString> findRenamed(const QString &path, const FileNumber &wanted)
{
    int entriesLeft = mostEntriesLookedAt;
    const QString folder = folderOf(path);
    if (const std::optional<QString> found = findBelow(folder, wanted, entriesLeft)) {
        return found;
    }
    return findBelow(folderOf(folder), wanted, entriesLeft);
}

} // namespace

namespace nsurlbookmark {

std::optional<QByteArray> bookmarkData(const QString &path, BookmarkAccess access,
                                       const std::optional<QString> &relativeTo)
{
    const std::optional<FileNumber> number = numberOf(path);
    if (!number) {
        return std::nullopt;
    }
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QString kept =
        relativeTo ? QDir(folderOf(*relativeTo)).relativeFilePath(absolute) : absolute;
    const QJsonObject bookmark {
        {u"bookmark"_s, version},
        {u"access"_s, static_cast<int>(access)},
        {u"path"_s, kept},
        {u"device"_s, QString::number(number->device)},
        {u"inode"_s, QString::number(number->inode)},
    };
    return QJsonDocument(bookmark).toJson(QJsonDocument::Compact);
}

std::optional<ResolvedBookmark> resolve(const QByteArray &bookmark,
                                        const std::optional<QString> &relativeTo)
{
    if (bookmark.size() > longestBookmark) {
        return std::nullopt;
    }
    const QJsonObject object = QJsonDocument::fromJson(bookmark).object();
    const std::optional<quint64> device = wholeNumber(object[u"device"_s]);
    const std::optional<quint64> inode = wholeNumber(object[u"inode"_s]);
    const QString kept = object[u"path"_s].toString();
    if (object[u"bookmark"_s].toInt() != version || !device || !inode || kept.isEmpty()) {
        return std::nullopt;
    }
    const QString path =
        relativeTo ? QDir::cleanPath(QDir(folderOf(*relativeTo)).filePath(kept)) : kept;
    if (QDir::isRelativePath(path)) {
        return std::nullopt;
    }
    const FileNumber wanted {*device, *inode};
    const std::optional<FileNumber> present = numberOf(path);
    if (present == wanted) {
        return ResolvedBookmark {path, false};
    }
    if (const std::optional<QString> found = findRenamed(path, wanted)) {
        return ResolvedBookmark {*found, true};
    }
    // A file that was replaced under its name, as every save does, is the same one to its owner.
    return present ? std::optional(ResolvedBookmark {path, true}) : std::nullopt;
}

} // namespace nsurlbookmark

} // namespace quorvane
