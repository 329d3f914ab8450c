#include "shell/qvbookmark.h"

#include "platform/nsurlbookmark.h"

namespace quorvane {

namespace {

std::optional<QString> resolved(const QByteArray &bookmark, bool &isStale,
                                const std::optional<QString> &relativeTo)
{
    isStale = false;
    const std::optional<ResolvedBookmark> found = nsurlbookmark::resolve(bookmark, relativeTo);
    if (!found) {
        return std::nullopt;
    }
    isStale = found->isStale;
    return found->path;
}

} // namespace

std::optional<QByteArray> QVBookmark::bookmarkForURL_RO(const QString &url)
{
    return nsurlbookmark::bookmarkData(url, BookmarkAccess::ReadOnly);
}

std::optional<QByteArray> QVBookmark::bookmarkForURL_RW(const QString &url)
{
    return nsurlbookmark::bookmarkData(url, BookmarkAccess::ReadWrite);
}

std::optional<QString> QVBookmark::urlForBookmark(const QByteArray &bookmark, bool &isStale)
{
    return resolved(bookmark, isStale, std::nullopt);
}

std::optional<QByteArray> QVBookmark::docBookmarkForURL_RO(const QString &url,
                                                           const QString &docUrl)
{
    return nsurlbookmark::bookmarkData(url, BookmarkAccess::ReadOnly, docUrl);
}

std::optional<QByteArray> QVBookmark::docBookmarkForURL_RW(const QString &url, const QString &)
{
    return nsurlbookmark::bookmarkData(url, BookmarkAccess::ReadWrite);
}

std::optional<QString> QVBookmark::urlForDocBookmark(const QByteArray &bookmark,
                                                     const QString &docUrl, bool &isStale)
{
    return resolved(bookmark, isStale, docUrl);
}

} // namespace quorvane
