#include "cli/commands.h"
#include "cli/passwords.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// Nothing in the format authenticates the text, so neither line may promise more than this.
constexpr QLatin1StringView wholeOutside(
    "whole as far as it shows without the password; whether the encrypted text was changed does "
    "not show");
constexpr QLatin1StringView opensAes(
    "the password opens it, and all that is encrypted can be decrypted; a change in the midst of "
    "the encrypted text would not show");
constexpr QLatin1StringView opensBlowfish(
    "the password opens it and the text reads as one; this old format holds no other proof");

std::optional<Failure> damageInside(const StoredDocument &document)
{
    const QByteArray body = document.body();
    const std::optional<FlatRtfd> folder = readFlatRtfd(body);
    if (folder && folder->damaged) {
        return Failure {ExitCode::NotReadable,
                        u"the password opens it, but the text within is damaged"_s};
    }
    if (document.cipher() == CipherFamily::Blowfish && !document.readsAsText()) {
        return Failure {ExitCode::WrongPassword,
                        u"what comes out is no text: the password seems to be wrong"_s};
    }
    return std::nullopt;
}

ExitCode verify(const QString &path, const std::optional<QString> &password)
{
    const auto loaded = StoredDocument::load(path);
    if (!loaded.value) {
        return fail(path, loaded.failure);
    }
    StoredDocument &document = **loaded.value;
    std::optional<Failure> failure = document.visibleDamage();
    if (!failure && password) {
        failure = document.unlock(*password);
    }
    if (!failure && password) {
        failure = damageInside(document);
    }
    if (failure) {
        return fail(path, *failure);
    }
    const QLatin1StringView verdict = !password  ? wholeOutside
        : document.cipher() == CipherFamily::Aes ? opensAes
                                                 : opensBlowfish;
    return printText(harmless(path) + ": "_L1 + verdict + u'\n') ? ExitCode::Done
                                                                 : ExitCode::CannotWrite;
}

} // namespace

ExitCode runVerify(const Arguments &arguments)
{
    std::optional<QString> tried;
    if (namesPassword(arguments)) {
        const auto typed = password(arguments, u"Password: "_s);
        if (!typed.value) {
            return fail(arguments.file(), typed.failure);
        }
        tried = typed.value;
    }
    ExitCode code = ExitCode::Done;
    for (const QString &path : arguments.files()) {
        code = firstFailure(code, verify(path, tried));
    }
    return code;
}

} // namespace quorvane
