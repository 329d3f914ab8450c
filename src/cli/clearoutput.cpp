#include "cli/clearoutput.h"

#include "cli/content.h"
#include "cli/streams.h"
#include "document/documentfile.h"
#include "platform/posixfilestore.h"
#include "platform/posixpackagestore.h"
#include "platform/posixreplacement.h"

#include <QFile>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int mostLinks = 40; // as many as the kernel follows

Failure cannot(const QString &reason)
{
    return {ExitCode::CannotWrite, reason};
}

bool isOfProcesses(const QByteArray &folder)
{
    struct statfs found = {};
    return ::statfs(folder.constData(), &found) == 0 && found.f_type == PROC_SUPER_MAGIC;
}

/// Where the path leads into /proc, whose links stand for what is open and not for a name: the
/// entry there, without further links. /dev/stdout is /proc/12/fd/1.
std::optional<QByteArray> entryOfProcess(QByteArray path)
{
    for (int links = 0; links < mostLinks; ++links) {
        const qsizetype slash = path.lastIndexOf('/');
        const QByteArray folder = slash < 0 ? "." : path.left(std::max<qsizetype>(slash, 1));
        const std::unique_ptr<char, decltype(&std::free)> real(
            ::realpath(folder.constData(), nullptr), &std::free);
        if (!real) {
            return std::nullopt;
        }
        path = QByteArray(real.get()) + '/' + path.mid(slash + 1);
        if (isOfProcesses(real.get())) {
            return path;
        }
        std::array<char, PATH_MAX> target {};
        const ssize_t length = ::readlink(path.constData(), target.data(), target.size());
        if (length <= 0) {
            return std::nullopt;
        }
        const QByteArray next(target.data(), length);
        path = next.startsWith('/') ? next : QByteArray(real.get()) + '/' + next;
    }
    return std::nullopt;
}

bool isProtected(const QByteArray &bytes)
{
    // A damaged one may be all that is left of its text.
    if (bytes.startsWith("bplist0") && bytes.contains("textData")) {
        return true;
    }
    const std::optional<DocumentFile> file = DocumentFile::fromData(bytes);
    return file && (file->textData || familyOf(file->appversion) != FormatFamily::Unlisted);
}

} // namespace

ClearOutput::ClearOutput(const QString &path, Kind kind)
    : m_path(path)
    , m_name(QFile::encodeName(path))
    , m_kind(kind)
    , m_descriptor(entryOfProcess(m_name))
{ }

bool ClearOutput::isStream() const
{
    struct stat found = {};
    return m_descriptor
        || (::stat(m_name.constData(), &found) == 0 && !S_ISREG(found.st_mode)
            && !S_ISDIR(found.st_mode) && !S_ISBLK(found.st_mode));
}

std::optional<Failure> ClearOutput::refusal() const
{
    struct stat found = {};
    if (::stat(m_name.constData(), &found) != 0) {
        return std::nullopt; // nothing is there, or the writing tells what is wrong
    }
    if (S_ISREG(found.st_mode)) {
        return refusalOfFile();
    }
    if (S_ISDIR(found.st_mode)) {
        return m_kind == Kind::Package ? std::nullopt : std::optional(cannot(u"it is a folder"_s));
    }
    if (m_kind == Kind::Package) {
        return cannot(u"it is no folder, and an RTFD package is one"_s);
    }
    return std::nullopt;
}

std::optional<Failure> ClearOutput::refusalOfFile() const
{
    const FileStore::ReadResult read = PosixFileStore().read(m_path);
    if (read.data && isProtected(*read.data)) {
        return cannot(u"it is a protected document, and text in the clear does not take the place "
                      u"of one"_s);
    }
    if (m_kind == Kind::Package) {
        return cannot(u"it is a file, and an RTFD package, which is a folder, does not take its "
                      u"place"_s);
    }
    // A stream's file keeps what it holds; one that is too large to be read is no document.
    if (read.data || isStream() || read.error.code == EFBIG) {
        return std::nullopt;
    }
    return cannot(u"it may be a protected document: "_s + cannotRead(read.error).reason);
}

std::optional<Failure> ClearOutput::write(const QByteArray &content) const
{
    if (const std::optional<Failure> failure = refusal()) {
        return failure;
    }
    if (isStream()) {
        return writeStream(content);
    }
    if (const std::optional<Failure> failure = narrowMode()) {
        return failure;
    }
    const std::optional<FileError> error = PosixFileStore().replace(m_path, content);
    return error ? std::optional(cannotWrite(*error)) : std::nullopt;
}

std::optional<Failure> ClearOutput::write(const PackageEntries &entries) const
{
    if (const std::optional<Failure> failure = refusal()) {
        return failure;
    }
    if (const std::optional<Failure> failure = refusalOfFolder(entries)) {
        return failure;
    }
    const std::optional<FileError> error = PosixPackageStore().replace(m_path, entries);
    return error ? std::optional(cannotWrite(*error)) : std::nullopt;
}

/// A package goes as a whole, so nothing may lie in it that is not its own.
std::optional<Failure> ClearOutput::refusalOfFolder(const PackageEntries &entries) const
{
    if (!holdsPackageText(m_path)) {
        return std::nullopt; // it does not exist, is empty, or the store refuses it
    }
    const PackageStore::ReadResult old = PosixPackageStore().read(m_path);
    if (!old.entries) {
        return cannot(cannotRead(old.error).reason);
    }
    const std::optional<QByteArray> foreign =
        old.leftOut.empty() ? foreignEntry(*old.entries, entries) : old.leftOut.front();
    if (!foreign) {
        return std::nullopt;
    }
    return cannot(u"it holds '%1', which its TXT.rtf does not name and which would be lost"_s.arg(
        QFile::decodeName(*foreign)));
}

/// An own descriptor is written to at its place, as the shell and its other programs left it; all
/// else is opened, and never cut short or overwritten.
int ClearOutput::openStream() const
{
    const QByteArray own = "/proc/" + QByteArray::number(::getpid()) + "/fd/";
    if (m_descriptor && m_descriptor->startsWith(own)) {
        bool isNumber = false;
        const int number = m_descriptor->mid(own.size()).toInt(&isNumber);
        if (isNumber) {
            return ::fcntl(number, F_DUPFD_CLOEXEC, 0);
        }
    }
    return uninterrupted(
        [this] { return ::open(m_name.constData(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC); });
}

std::optional<Failure> ClearOutput::writeStream(const QByteArray &content) const
{
    const int stream = openStream();
    if (stream < 0) {
        return cannot(qt_error_string(errno));
    }
    const bool isShown = m_kind == Kind::Text && ::isatty(stream) == 1;
    int error = 0;
    if (!writeEverything(stream,
                         isShown ? harmless(QString::fromUtf8(content), true).toUtf8() : content)) {
        error = errno;
    }
    if (::close(stream) != 0 && error == 0) {
        error = errno;
    }
    return error == 0 ? std::nullopt : std::optional(cannot(qt_error_string(error)));
}

/// What is replaced gives its mode to the new file: the text in the clear is the owner's alone.
std::optional<Failure> ClearOutput::narrowMode() const
{
    struct stat status = {};
    if (::stat(m_name.constData(), &status) != 0 || !S_ISREG(status.st_mode)
        || (status.st_mode & (S_IRWXG | S_IRWXO)) == 0
        || ::chmod(m_name.constData(), S_IRUSR | S_IWUSR) == 0) {
        return std::nullopt;
    }
    return cannot(u"others may read it, and that cannot be changed: "_s + qt_error_string(errno));
}

} // namespace quorvane
