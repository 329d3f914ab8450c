#include "platform_qt/xdgrecentdocuments.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {
constexpr double writingDelay = 1.0; // seconds
}

XdgRecentDocuments::XdgRecentDocuments(TimerFactory &timers,
                                       DesktopBookmarks::Application application, QString file)
    : m_timers(timers)
    , m_application(std::move(application))
    , m_file(std::move(file))
{ }

XdgRecentDocuments::~XdgRecentDocuments()
{
    writeNoted();
}

QString XdgRecentDocuments::standardFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation)
        + u"/recently-used.xbel"_s;
}

// Read anew each time: other programs write it, too, and may have cleared it.
std::optional<DesktopBookmarks> XdgRecentDocuments::load()
{
    const FileStore::ReadResult file = m_files.read(m_file);
    if (!file.data && file.error.code != ENOENT) {
        return std::nullopt;
    }
    return DesktopBookmarks::read(file.data.value_or(QByteArray()));
}

bool XdgRecentDocuments::store(const QByteArray &bytes)
{
    if (!DesktopBookmarks::read(bytes) || !QDir().mkpath(QFileInfo(m_file).path())) {
        return false;
    }
    const std::optional<FileError> error = m_files.replace(m_file, bytes);
    return !error || error->isInPlace();
}

QStringList XdgRecentDocuments::paths()
{
    QStringList all = m_noted;
    if (const std::optional<DesktopBookmarks> list = load()) {
        all += list->pathsOf(m_application.name);
    }
    all.removeDuplicates();
    return all.first(std::min(all.size(), mostPaths));
}

bool XdgRecentDocuments::isThere(const QString &path) const
{
    return QFileInfo(path).isFile();
}

void XdgRecentDocuments::note(const QString &path)
{
    // A document that is saved every few seconds is written once.
    if (m_noted.isEmpty() && m_written == path) {
        return;
    }
    m_noted.removeAll(path);
    m_noted.prepend(path);
    m_timer = m_timers.scheduledTimer(writingDelay, [this] { writeNoted(); });
    Q_EMIT changed();
}

void XdgRecentDocuments::writeNoted()
{
    std::optional<DesktopBookmarks> list = load();
    for (auto path = m_noted.crbegin(); list && path != m_noted.crend(); ++path) {
        list = DesktopBookmarks::read(
            list->withUse(*path, m_application, QDateTime::currentDateTimeUtc()));
    }
    if (m_noted.isEmpty() || !list || !store(list->bytes())) {
        return;
    }
    m_written = m_noted.first();
    m_noted.clear();
}

void XdgRecentDocuments::remove(const QString &path)
{
    forget([path](const QString &each) { return each == path; });
}

void XdgRecentDocuments::clear()
{
    forget([](const QString &) { return true; });
}

void XdgRecentDocuments::forget(const std::function<bool(const QString &path)> &goes)
{
    m_noted.removeIf(goes);
    m_written.reset();
    if (const std::optional<DesktopBookmarks> list = load()) {
        const QByteArray left = list->withoutUses(m_application.name, goes);
        if (left != list->bytes()) {
            static_cast<void>(store(left));
        }
    }
    Q_EMIT changed();
}

} // namespace quorvane
