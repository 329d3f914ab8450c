#pragma once

#include "platform/nstimer.h"
#include "platform/posixfilestore.h"
#include "platform/recentdocuments.h"
#include "platform_qt/desktopbookmarks.h"

#include <memory>

namespace quorvane {

/// The recent documents in the list that the desktop and its programs share.
///
/// What was noted is written a moment later, and at the end at the latest. A list that cannot be
/// read or written is left as it is, and what was noted is kept for as long as the program runs.
class XdgRecentDocuments final : public RecentDocuments
{
    Q_OBJECT

public:
    /// \param file the shared list; by default the user's own.
    XdgRecentDocuments(TimerFactory &timers, DesktopBookmarks::Application application,
                       QString file = standardFile());
    ~XdgRecentDocuments() override;

    static QString standardFile(); ///< recently-used.xbel among the user's data.

    QStringList paths() override;
    bool isThere(const QString &path) const override;
    void note(const QString &path) override;
    void remove(const QString &path) override;
    void clear() override;

private:
    std::optional<DesktopBookmarks> load();
    bool store(const QByteArray &bytes);
    void writeNoted();
    void forget(const std::function<bool(const QString &path)> &goes);

    TimerFactory &m_timers;
    DesktopBookmarks::Application m_application;
    QString m_file;
    PosixFileStore m_files {DesktopBookmarks::largestFile};
    QStringList m_noted; // not in the file, the newest first
    std::optional<QString> m_written; // what was written last
    std::unique_ptr<NSTimer> m_timer;
};

} // namespace quorvane
