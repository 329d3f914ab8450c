#include "platform_qt/qtworkspace.h"

#include "platform/safefilename.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

void openFolderOf(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

/// What cannot be read is not.
bool isHarmless(const QFileInfo &info)
{
    QFile file(info.filePath());
    return !info.isExecutable() && file.open(QIODevice::ReadOnly)
        && !mayRunAsProgram(info.fileName(), file.read(programBeginning));
}

} // namespace

bool QtWorkspace::openURL(const QUrl &url)
{
    // A link in a document may come from anybody: nothing that starts a program or shows a file.
    const bool isAllowed = QStringList({u"http"_s, u"https"_s, u"mailto"_s}).contains(url.scheme());
    return isAllowed && url.isValid() && QDesktopServices::openUrl(url);
}

bool QtWorkspace::openFile(const QString &path)
{
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool QtWorkspace::openLinkedFile(const QString &path)
{
    // By its real name: another one may only pretend to be harmless.
    const QFileInfo file(QFileInfo(path).canonicalFilePath());
    return (file.isDir() || (file.isFile() && isHarmless(file))) && openFile(file.filePath());
}

void QtWorkspace::selectFileInFileViewer(const QString &path)
{
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolderOf(path);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
        u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    call << QStringList {QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded())} << QString();
    auto *reply = new QDBusPendingCallWatcher(bus.asyncCall(call)); // deletes itself below
    QObject::connect(reply, &QDBusPendingCallWatcher::finished, reply, [reply, path] {
        if (reply->isError()) {
            openFolderOf(path);
        }
        reply->deleteLater();
    });
}

} // namespace quorvane
