#include "cli/content.h"

#include "cli/streams.h"
#include "platform/posixpackagestore.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/richtextexport.h"

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

Result<QByteArray> bodyOfPackage(const QString &path)
{
    const PackageStore::ReadResult read = PosixPackageStore().read(path);
    if (!read.entries) {
        return {std::nullopt, cannotRead(read.error)};
    }
    for (const QByteArray &left : read.leftOut) {
        complain(path, u"left out: "_s + QFile::decodeName(left));
    }
    const auto isText = [](const PackageEntry &entry) {
        return !entry.isFolder && entry.name.compare("TXT.rtf", Qt::CaseInsensitive) == 0;
    };
    if (std::none_of(read.entries->begin(), read.entries->end(), isText)) {
        return {std::nullopt, {ExitCode::NotReadable, u"a folder without TXT.rtf is no RTFD"_s}};
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
