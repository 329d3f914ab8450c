#include "cli/commands.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"

namespace quorvane {

using namespace Qt::StringLiterals;

ExitCode runPasswd(const Arguments &arguments)
{
    const QString &file = arguments.file();
    const auto loaded = StoredDocument::load(file);
    if (!loaded.value) {
        return fail(file, loaded.failure);
    }
    StoredDocument &document = **loaded.value;
    const auto old = password(arguments, u"Old password of %1: "_s.arg(harmless(file)));
    if (!old.value) {
        return fail(file, old.failure);
    }
    // Of several things that are wrong, the old password is told of first.
    if (const auto failure = document.unlock(*old.value)) {
        return fail(file, *failure);
    }
    const auto fresh = newPassword(arguments, NewPasswordSource::NewPasswordOptions);
    if (!fresh.value) {
        return fail(file, fresh.failure);
    }
    document.setPassword(*fresh.value);
    const auto failure = document.save();
    return failure ? fail(file, *failure) : ExitCode::Done;
}

} // namespace quorvane
