#include "cli/clearoutput.h"
#include "cli/commands.h"
#include "cli/content.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"

#include <QFile>

#include <sys/stat.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// A symbolic link that leads nowhere is something, too.
bool exists(const QString &path)
{
    struct stat status = {};
    return ::lstat(QFile::encodeName(path).constData(), &status) == 0;
}

// A device, a pipe, or the name of an open descriptor: a new file in its place would take it away.
bool isSpecial(const QString &path)
{
    struct stat status = {};
    return ClearOutput(path, ClearOutput::Kind::Bytes).isStream()
        || (::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISBLK(status.st_mode));
}

std::optional<Failure> refusal(const Arguments &arguments)
{
    if (!exists(arguments.file())) {
        return std::nullopt;
    }
    if (isSpecial(arguments.file())) {
        return Failure {ExitCode::CannotWrite, u"it is no ordinary file, and a document is one"_s};
    }
    if (arguments.has("force")) {
        return std::nullopt;
    }
    return Failure {ExitCode::CannotWrite, u"it exists; --force replaces it"_s};
}

} // namespace

ExitCode runCreate(const Arguments &arguments)
{
    const QString &file = arguments.file();
    if (file.isEmpty()) {
        complain(u"the name of the document is empty"_s);
        return ExitCode::Usage;
    }
    if (const auto failure = refusal(arguments)) {
        return fail(file, *failure); // before the trouble of a password
    }
    const auto typed = newPassword(arguments, NewPasswordSource::PasswordOptions);
    if (!typed.value) {
        return fail(file, typed.failure);
    }
    // After the password, which may be the first line of the same input.
    QByteArray body;
    if (const std::optional<QString> from = arguments.value("from")) {
        const Result<QByteArray> read = bodyFrom(*from);
        if (!read.value) {
            return fail(*from, read.failure);
        }
        body = *read.value;
    }
    if (const auto failure = refusal(arguments)) {
        return fail(file, *failure);
    }
    const auto failure =
        StoredDocument::create(file, body, arguments.value("note").value_or(u""_s), *typed.value);
    return failure ? fail(file, *failure) : ExitCode::Done;
}

} // namespace quorvane
