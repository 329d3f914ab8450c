#include "cli/content.h"

#include "cli/streams.h"
#include "platform/posixpackagestore.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/richtextexport.h"
#include "richtext/rtfwriter.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QTextDocument>

#include <algorithm>
#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

/// What the toolkit thinks of locale and fonts is not told; why it ends the program is.
void tellOnlyTheEnd(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg) {
        complain(message);
    }
}

/// A text document needs fonts, and these an application; it is made where one is needed, and needs
/// no display.
void needApplication()
{
    static int count = 1;
    static char name[] = "quorvane-cli";
    static char *arguments[] = {name, nullptr};
    if (QCoreApplication::instance()) {
        return;
    }
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(tellOnlyTheEnd);
    static const QGuiApplication application(count, arguments);
}

QByteArray packaged(const QByteArray &rtf)
{
    return bodyFromPackage({{"TXT.rtf", false, rtf, {}}});
}

QByteArray bodyOfText(const QByteArray &text)
{
    needApplication();
    QTextDocument document;
    readBody(text, document);
    return bodyFromDocument(document);
}

QByteArray bodyOfContent(const QByteArray &content)
{
    switch (formOf(content)) {
    case BodyForm::Empty:
    case BodyForm::PlainText:
        break;
    case BodyForm::Rtf:
        return packaged(content);
    case BodyForm::FlatRtfd:
        if (readFlatRtfd(content)) {
            return content;
        }
    }
    return bodyOfText(content);
}

const QString nameOfText = u"TXT.rtf"_s;
const Failure noPackage {ExitCode::NotReadable, u"a folder without TXT.rtf is no RTFD package"_s};

bool isText(const PackageEntry &entry)
{
    return !entry.isFolder
        && QFile::decodeName(entry.name).compare(nameOfText, Qt::CaseInsensitive) == 0;
}

Result<QByteArray> bodyOfPackage(const QString &path)
{
    // Before all of it is read, which may be a whole disk.
    if (QDir(path).isReadable() && !holdsPackageText(path)) {
        return {std::nullopt, noPackage};
    }
    const PackageStore::ReadResult read = PosixPackageStore().read(path);
    if (!read.entries) {
        return {std::nullopt, cannotRead(read.error)};
    }
    for (const QByteArray &left : read.leftOut) {
        complain(path, u"left out: "_s + QFile::decodeName(left));
    }
    if (std::none_of(read.entries->begin(), read.entries->end(), isText)) {
        return {std::nullopt, noPackage};
    }
    return {bodyFromPackage(*read.entries), {}};
}

Result<QByteArray> contentOf(const QString &path)
{
    const bool isInput = path == "-"_L1;
    const int file = isInput
        ? STDIN_FILENO
        : ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC | O_NOCTTY);
    std::optional<QByteArray> content;
    if (file >= 0) {
        content = readEverything(file);
    }
    const int error = errno;
    if (file >= 0 && !isInput) {
        ::close(file);
    }
    if (!content) {
        return {std::nullopt, {ExitCode::NotReadable, qt_error_string(error)}};
    }
    return {content, {}};
}

} // namespace

QByteArray rtfOfBody(const QByteArray &body)
{
    if (formOf(body) == BodyForm::Rtf) {
        return body;
    }
    needApplication();
    QTextDocument document;
    readBody(body, document);
    return rtfFromDocument(document);
}

QByteArray htmlOfBody(const QByteArray &body)
{
    needApplication();
    QTextDocument document;
    readBody(body, document);
    return document.toHtml().toUtf8();
}

PackageEntries packageOfBody(const QByteArray &body)
{
    needApplication();
    QTextDocument document;
    readBody(body, document);
    return packageFromDocument(document);
}

bool holdsPackageText(const QString &path)
{
    return QDir(path)
        .entryList(QDir::Files | QDir::Hidden | QDir::System)
        .contains(nameOfText, Qt::CaseInsensitive);
}

std::optional<QByteArray> foreignEntry(const PackageEntries &old, const PackageEntries &fresh)
{
    needApplication();
    QTextDocument document;
    readBody(bodyFromPackage(old), document);
    RtfWriter writer(document);
    writer.write();
    const QSet<QString> &named = writer.attachmentNames();
    const auto foreign = std::find_if(old.begin(), old.end(), [&](const PackageEntry &entry) {
        return !isText(entry) && !named.contains(QString::fromUtf8(entry.name))
            && std::none_of(fresh.begin(), fresh.end(),
                            [&entry](const PackageEntry &its) { return its.name == entry.name; });
    });
    return foreign == old.end() ? std::nullopt : std::optional(foreign->name);
}

Result<QByteArray> bodyFrom(const QString &path)
{
    struct stat status = {};
    const bool isFolder = path != "-"_L1
        && ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISDIR(status.st_mode);
    if (isFolder) {
        return bodyOfPackage(path);
    }
    const Result<QByteArray> content = contentOf(path);
    return content.value ? Result<QByteArray> {bodyOfContent(*content.value), {}} : content;
}

} // namespace quorvane
