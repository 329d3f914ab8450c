#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// Turns a file into opaque data that finds it again in a later run, and back. It keeps nothing.
class QVBookmark final
{
public:
    QVBookmark() = delete;

    static std::optional<QByteArray> bookmarkForURL_RO(const QString &url);
    static std::optional<QByteArray> bookmarkForURL_RW(const QString &url);
    /// \a isStale turns true where the file goes by another name now, and false otherwise.
    static std::optional<QString> urlForBookmark(const QByteArray &bookmark, bool &isStale);

    static std::optional<QByteArray> docBookmarkForURL_RO(const QString &url,
                                                          const QString &docUrl);
    /// Unlike its twin it does not count the path from the document, which it takes all the same.
    static std::optional<QByteArray> docBookmarkForURL_RW(const QString &url,
                                                          const QString &docUrl);
    static std::optional<QString> urlForDocBookmark(const QByteArray &bookmark,
                                                    const QString &docUrl, bool &isStale);
};

} // namespace quorvane
