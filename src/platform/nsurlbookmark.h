#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// What a bookmark is made for. It is kept in the bookmark; files here are opened by their modes.
enum class BookmarkAccess { ReadWrite = 2048, ReadOnly = 6144 };

struct ResolvedBookmark
{
    QString path;
    bool isStale = false; ///< The file has another name than the bookmark says: make a new one.
};

/// Bookmarks remember a file across renames: an opaque token of its path, device and inode.
namespace nsurlbookmark {

/// Nothing where there is no such file. \a relativeTo is a file whose folder the path is counted
/// from when the token is resolved; without it the path is absolute.
std::optional<QByteArray> bookmarkData(const QString &path, BookmarkAccess access,
                                       const std::optional<QString> &relativeTo = {});
/// The file that stands under the path now; else the same file under another name in its folder, a
/// folder beside or below it. Nothing for data that is no bookmark or a file that is not found.
std::optional<ResolvedBookmark> resolve(const QByteArray &bookmark,
                                        const std::optional<QString> &relativeTo = {});

} // namespace nsurlbookmark

} // namespace quorvane
