#include "cli/commands.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

ExitCode print(const QString &note)
{
    const bool isWholeLine = note.isEmpty() || note.endsWith(u'\n');
    return printText(isWholeLine ? note : note + u'\n') ? ExitCode::Done : ExitCode::CannotWrite;
}

} // namespace

ExitCode runNote(const Arguments &arguments)
{
    const QString &file = arguments.file();
    const auto loaded = StoredDocument::load(file);
    if (!loaded.value) {
        return fail(file, loaded.failure);
    }
    StoredDocument &document = **loaded.value;
    const std::optional<QString> note = arguments.value("set");
    if (!note) {
        return print(document.file().publicTextData.value_or(u""_s));
    }
    const auto typed = password(arguments, u"Password for %1: "_s.arg(harmless(file)));
    if (!typed.value) {
        return fail(file, typed.failure);
    }
    if (const auto failure = document.unlock(*typed.value)) {
        return fail(file, *failure);
    }
    document.setNote(*note);
    const auto failure = document.save();
    return failure ? fail(file, *failure) : ExitCode::Done;
}

} // namespace quorvane
