#include "product/settings.h"
#include "shell/qvappdelegatebase.h"
#include "shell/qvbookmark.h"

#include <QFileInfo>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString selectAFile = u"Please select a file or change startup option"_s;
const QString bookmarkRenewed = u"Bookmark renewed"_s;

} // namespace

struct QVAppDelegateBase::ResolvedStartupDoc
{
    std::optional<QString> url;
    bool isStale = false;
};

void QVAppDelegateBase::setStartupDocPathMessageString(const QString &message)
{
    m_startupDocPathMessageString = message;
    Q_EMIT StartupDocPathMessageStringChanged();
}

void QVAppDelegateBase::setStartupDocSpecified(bool specified)
{
    m_startupDocSpecified = specified;
    Q_EMIT StartupDocSpecifiedChanged();
}

QVAppDelegateBase::ResolvedStartupDoc QVAppDelegateBase::resolveStartupDoc() const
{
    ResolvedStartupDoc resolved;
    resolved.url = QVBookmark::urlForBookmark(
        defaults().objectForKey(settings::startupSelectedDocBookmark).toByteArray(),
        resolved.isStale);
    return resolved;
}

void QVAppDelegateBase::writeStartupDocBookmark(const std::optional<QByteArray> &bookmark)
{
    defaults().setObject(settings::startupSelectedDocBookmark,
                         QVariant(bookmark.value_or(QByteArray())));
}

bool QVAppDelegateBase::startAccess(const std::optional<QString> &url)
{
    return url && m_surroundings.access.startAccessingSecurityScopedResource(*url);
}

// The scope stays open for as long as the document is being read, whatever comes of it.
bool QVAppDelegateBase::openIfAccessible(const std::optional<QString> &url)
{
    if (!startAccess(url)) {
        return false;
    }
    documents().openDocumentWithContentsOfURL(
        *url, [&access = m_surroundings.access, url](NSDocument *, bool) {
            access.stopAccessingSecurityScopedResource(*url);
        });
    return true;
}

void QVAppDelegateBase::openStartupDoc()
{
    auto [url, isStale] = resolveStartupDoc();
    if (!url || url->isEmpty()) {
        sayNoStartupDoc();
        return;
    }
    if (isStale) {
        startAccess(url);
        writeStartupDocBookmark(QVBookmark::bookmarkForURL_RW(*url));
        m_surroundings.access.stopAccessingSecurityScopedResource(*url);
        setStartupDocPathMessageString(bookmarkRenewed);
        url = resolveStartupDoc().url;
    }
    if (!openIfAccessible(url)) {
        sayStartupDocRefused();
    }
}

void QVAppDelegateBase::sayNoStartupDoc()
{
    setStartupDocPathMessageString(selectAFile);
    setStartupDocSpecified(false);
    m_surroundings.mainQueue.addOperation([self = QPointer(this)] {
        if (self) {
            self->askForPreferences(
                {u"Preference was set to open at startup a document without specifying it"_s,
                 u"You can fix the problem in the preferences"_s,
                 {u"Open Preferences"_s, u"Cancel"_s}});
        }
    });
}

void QVAppDelegateBase::sayStartupDocRefused()
{
    setStartupDocPathMessageString(u"Not valid Startup Document selected. Please re-select"_s);
    setStartupDocSpecified(true);
    askForPreferences(
        {u"The system is negating the access to the document selected to be opened at startup"_s,
         u"It must be selected in the preferences or the startup action must be changed"_s,
         {u"Open Preferences"_s, u"Cancel"_s}});
}

void QVAppDelegateBase::askForPreferences(const NSAlert &alert)
{
    m_surroundings.alerts.runModal(alert, [self = QPointer(this)](AlertAnswer answer) {
        if (self && answer == AlertAnswer::First) {
            self->openPreferences();
        }
    });
}

QStringList QVAppDelegateBase::allowedStartupDocExtensions() const
{
    return {u""_s};
}

void QVAppDelegateBase::selectStartupDoc()
{
    if (!preparePrefWindow()) {
        return;
    }
    NSOpenPanel panel {allowedStartupDocExtensions()};
    panel.prompt = u"Select"_s;
    m_surroundings.panels.beginOpenSheet(
        *prefWindow(), panel, [self = QPointer(this)](const QStringList &paths) {
            if (!self || paths.isEmpty()) {
                return;
            }
            self->writeStartupDocBookmark(QVBookmark::bookmarkForURL_RW(paths.last()));
            self->setStartupDocPathMessageString(u""_s);
            self->setStartupDocSpecified(true);
        });
}

// Not the renewal of a start: access is begun twice and not ended, and what was found stays in use.
void QVAppDelegateBase::testOpenStartupDoc()
{
    const auto [url, isStale] = resolveStartupDoc();
    if (isStale && url) {
        writeStartupDocBookmark(QVBookmark::bookmarkForURL_RW(*url));
        startAccess(url);
        const std::optional<QByteArray> renewed = QVBookmark::bookmarkForURL_RW(*url);
        startAccess(url);
        writeStartupDocBookmark(renewed);
        setStartupDocPathMessageString(bookmarkRenewed);
    }
    if (url && url->isEmpty()) {
        setStartupDocPathMessageString(selectAFile);
    }
    openIfAccessible(url);
}

void QVAppDelegateBase::showInFinderStartupDoc()
{
    auto [url, isStale] = resolveStartupDoc();
    if (isStale && url) {
        startAccess(url);
        const std::optional<QByteArray> renewed = QVBookmark::bookmarkForURL_RW(*url);
        startAccess(url); // also not ended
        writeStartupDocBookmark(renewed);
        setStartupDocPathMessageString(bookmarkRenewed);
        url = resolveStartupDoc().url;
    }
    if (url && QFileInfo::exists(*url)) {
        m_surroundings.workspace.selectFileInFileViewer(*url);
    }
}

void QVAppDelegateBase::clearStartupSelectedDoc()
{
    writeStartupDocBookmark(QByteArray());
    setStartupDocPathMessageString(selectAFile);
    setStartupDocSpecified(false);
}

void QVAppDelegateBase::UseFrontDocumentAsStartupDoc()
{ }

} // namespace quorvane
