#include "cli/clearoutput.h"
#include "cli/commands.h"
#include "cli/content.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"
#include "richtext/body.h"

#include <QFile>

#include <cerrno>

#include <sys/stat.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QStringList formats {u"text"_s, u"rtf"_s, u"html"_s, u"rtfd"_s, u"body"_s};

Failure usage(const QString &reason)
{
    return {ExitCode::Usage, reason};
}

bool areSameFile(const QString &one, const QString &other)
{
    struct stat first = {};
    struct stat second = {};
    return ::stat(QFile::encodeName(one).constData(), &first) == 0
        && ::stat(QFile::encodeName(other).constData(), &second) == 0
        && first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

QByteArray contentIn(const QString &format, const QByteArray &body)
{
    if (format == "text"_L1) {
        return plainTextFromBody(body).toUtf8();
    }
    if (format == "rtf"_L1) {
        return rtfOfBody(body);
    }
    return format == "html"_L1 ? htmlOfBody(body) : body;
}

ClearOutput::Kind kindOf(const QString &format)
{
    if (format == "rtfd"_L1) {
        return ClearOutput::Kind::Package;
    }
    return format == "text"_L1 || format == "html"_L1 ? ClearOutput::Kind::Text
                                                      : ClearOutput::Kind::Bytes;
}

std::optional<Failure> write(const ClearOutput &output, const QString &format,
                             const QByteArray &body)
{
    return format == "rtfd"_L1 ? output.write(packageOfBody(body))
                               : output.write(contentIn(format, body));
}

bool print(const QString &format, const QByteArray &body)
{
    if (format == "text"_L1) {
        return printText(plainTextFromBody(body));
    }
    if (format == "html"_L1) {
        return printText(QString::fromUtf8(htmlOfBody(body)));
    }
    if (writeEverything(STDOUT_FILENO, contentIn(format, body))) {
        return true;
    }
    complain(u"standard output"_s, qt_error_string(errno));
    return false;
}

std::optional<Failure> unusable(const QString &format, const std::optional<QString> &output,
                                const QString &file)
{
    if (!formats.contains(format)) {
        return usage(u"'%1' is no format: it is one of "_s.arg(format) + formats.join(u", "_s));
    }
    if (format == "rtfd"_L1 && !output) {
        return usage(u"an rtfd package needs a place: --output OUT"_s);
    }
    if (output && areSameFile(*output, file)) {
        return usage(u"the text would take the place of its own document"_s);
    }
    return output ? ClearOutput(*output, kindOf(format)).refusal() : std::nullopt;
}

} // namespace

ExitCode runCat(const Arguments &arguments)
{
    const QString format = arguments.value("format").value_or(u"text"_s);
    std::optional<QString> output = arguments.value("output");
    if (output == u"-"_s) {
        output.reset();
    }
    if (const auto failure = unusable(format, output, arguments.file())) {
        return fail(output.value_or(arguments.file()), *failure);
    }
    const auto loaded = StoredDocument::load(arguments.file());
    if (!loaded.value) {
        return fail(arguments.file(), loaded.failure);
    }
    StoredDocument &document = **loaded.value;
    const auto typed = password(arguments, u"Password for %1: "_s.arg(harmless(arguments.file())));
    if (!typed.value) {
        return fail(arguments.file(), typed.failure);
    }
    if (const auto failure = document.unlock(*typed.value)) {
        return fail(arguments.file(), *failure);
    }
    if (document.cipher() == CipherFamily::Blowfish && !document.readsAsText()) {
        complain(arguments.file(), u"this reads like no text; the password may be wrong"_s);
    }
    const QByteArray body = document.body();
    if (!output) {
        return print(format, body) ? ExitCode::Done : ExitCode::CannotWrite;
    }
    const auto failure = write(ClearOutput(*output, kindOf(format)), format, body);
    return failure ? fail(*output, *failure) : ExitCode::Done;
}

} // namespace quorvane
