#include "cli/storeddocument.h"

#include "crypto/blowfish.h"
#include "product/qvappsupportutility.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"

#include <QStringDecoder>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype aesBlock = 16;
constexpr qsizetype blowfishBlock = 8;
constexpr qsizetype vectorLength = 16;
constexpr qsizetype digestLength = 20;
// A document that no window has had yet opens at a comfortable size.
constexpr NSRect firstFrame {200, 200, 760, 560};

const Failure noDocument {ExitCode::NotReadable,
                          u"no document of this program, or a damaged one"_s};
const Failure couldNotEncrypt {ExitCode::CannotWrite, u"it could not be encrypted"_s};

Failure damaged(const QString &reason)
{
    return {ExitCode::NotReadable, reason};
}

/// Whether the field can be a ciphertext: whole blocks, of which padding makes at least one.
bool isCiphertext(const std::optional<QByteArray> &field)
{
    return field && !field->isEmpty() && field->size() % aesBlock == 0;
}

bool hasCheckRecord(const DocumentFile &file)
{
    return file.salt && file.iv && file.rc && file.sha1Rc;
}

std::optional<Failure> damageOfAes(const DocumentFile &file)
{
    if (familyOf(file.appversion) == FormatFamily::Unlisted) {
        return damaged(u"no release wrote format version %1, and what it says of its cipher does "
                       u"not count: nothing can unlock it"_s.arg(file.appversion));
    }
    if (!hasCheckRecord(file) || !isCiphertext(file.rc) || file.iv->size() < vectorLength
        || file.sha1Rc->size() != digestLength) {
        return damaged(u"the password check or the parameters of the cipher are missing or "
                       u"damaged"_s);
    }
    const std::pair<const char *, const std::optional<QByteArray> &> fields[] = {
        {"text (textData)", file.textData},
        {"creation date (crDate)", file.crDate},
        {"creation address (crMAC)", file.crMAC},
    };
    for (const auto &[name, field] : fields) {
        if (!isCiphertext(field)) {
            return damaged(
                u"the encrypted %1 is missing or cut short"_s.arg(QLatin1StringView(name)));
        }
    }
    return std::nullopt;
}

bool isPlainText(const QByteArray &body)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(body);
    return !decoder.hasError() && std::all_of(text.begin(), text.end(), [](QChar character) {
        return character >= u' ' || character == u'\n' || character == u'\t' || character == u'\r'
            || character == u'\f';
    });
}

} // namespace

StoredDocument::StoredDocument(QString path)
    : m_path(std::move(path))
    , m_document(m_world.surroundings())
{ }

Result<std::unique_ptr<StoredDocument>> StoredDocument::load(const QString &path)
{
    std::unique_ptr<StoredDocument> document(new StoredDocument(path));
    FileStore::ReadResult read = document->m_world.files().read(path);
    if (!read.data) {
        return {std::nullopt, cannotRead(read.error)};
    }
    document->m_bytes = *std::move(read.data);
    std::optional<DocumentFile> file = DocumentFile::fromData(document->m_bytes);
    if (!file) {
        return {std::nullopt, noDocument};
    }
    if (familyOf(file->appversion) == FormatFamily::Newer) {
        return {std::nullopt,
                {ExitCode::NewerVersion,
                 u"written by a newer release (format version %1; up to %2 can be read here)"_s
                     .arg(file->appversion)
                     .arg(currentFormatVersion)}};
    }
    // Another program's archive reads like a document without anything in it. To save that as one
    // would be its end.
    if (familyOf(file->appversion) == FormatFamily::Unlisted && !file->textData) {
        return {std::nullopt, noDocument};
    }
    document->m_file = *std::move(file);
    if (!document->m_document.readFromData(document->m_bytes)) {
        return {std::nullopt, noDocument};
    }
    document->m_showsToolbar = document->m_document.makeToolbarVisibleAtDecrypt();
    return {std::move(document), {}};
}

std::optional<Failure> StoredDocument::create(const QString &path, const QByteArray &body,
                                              const QString &note, const QString &password)
{
    StoredDocument made(path);
    made.m_file.windowRec = firstFrame;
    made.m_document.setMyTextViewData(body);
    made.setNote(note);
    made.setPassword(password);
    const std::optional<QByteArray> bytes = made.encrypted();
    if (!bytes) {
        return couldNotEncrypt;
    }
    const std::optional<FileError> error = made.m_world.files().replace(path, *bytes);
    return error ? std::optional(cannotWrite(*error)) : std::nullopt;
}

std::optional<Failure> StoredDocument::visibleDamage() const
{
    if (cipher() == CipherFamily::Aes) {
        return damageOfAes(m_file);
    }
    if (!m_file.textData || m_file.textData->size() % blowfishBlock == 0) {
        return std::nullopt;
    }
    return damaged(u"the encrypted text is cut short"_s);
}

std::optional<Failure> StoredDocument::unlock(const QString &password)
{
    m_document.setPlainPassword(password);
    if (m_document.Decript() != 0) {
        return refusalOf(password);
    }
    m_document.decryptDone();
    return std::nullopt;
}

Failure StoredDocument::refusalOf(const QString &password) const
{
    if (const std::optional<Failure> damage = visibleDamage()) {
        return *damage;
    }
    if (cipher() == CipherFamily::Blowfish) {
        return isBlowfishAvailable()
            ? Failure {ExitCode::WrongPassword, u"wrong password"_s}
            : damaged(u"its cipher, Blowfish, is missing here: OpenSSL's legacy provider cannot be "
                      u"loaded"_s);
    }
    QVCommonCrypto engine;
    engine.setPasswordToDecrypt(password, m_file.iv, m_file.salt);
    const Outcome check = engine.decrypt(m_file.rc);
    if (check.error != 0 || QVCommonCrypto::dataSHA1(check.data) != m_file.sha1Rc) {
        return {ExitCode::WrongPassword, u"wrong password"_s};
    }
    return damaged(u"the password is right, but the document is damaged"_s);
}

QByteArray StoredDocument::body() const
{
    return m_document.myTextViewData().value_or(QByteArray());
}

bool StoredDocument::readsAsText() const
{
    const QByteArray bytes = body();
    switch (formOf(bytes)) {
    case BodyForm::Empty:
    case BodyForm::Rtf:
        return true;
    case BodyForm::FlatRtfd:
        return readFlatRtfd(bytes).has_value();
    case BodyForm::PlainText:
        break;
    }
    return isPlainText(bytes);
}

void StoredDocument::setNote(const QString &note)
{
    m_document.setMyPublicTextData(note);
}

void StoredDocument::setPassword(const QString &password)
{
    m_document.setPlainPassword(password);
}

std::optional<Failure> StoredDocument::whyNotSaved() const
{
    if (m_document.plainPassword().isEmpty()) {
        return Failure {ExitCode::CannotWrite,
                        u"its password is empty, and nothing is saved under such a one: change it "
                        u"first (passwd)"_s};
    }
    if (cipher() == CipherFamily::Blowfish && !readsAsText()) {
        return Failure {ExitCode::WrongPassword,
                        u"the password seems to be wrong: what comes out is no text. Nothing was "
                        u"changed"_s};
    }
    return std::nullopt;
}

std::optional<Failure> StoredDocument::save()
{
    if (const std::optional<Failure> failure = whyNotSaved()) {
        return failure;
    }
    const std::optional<QByteArray> bytes = encrypted();
    if (!bytes) {
        return couldNotEncrypt;
    }
    if (m_world.files().read(m_path).data != m_bytes) {
        return Failure {ExitCode::CannotWrite, u"another program changed it meanwhile"_s};
    }
    const std::optional<FileError> error = m_world.files().replace(m_path, *bytes);
    return error ? std::optional(cannotWrite(*error)) : std::nullopt;
}

std::optional<QByteArray> StoredDocument::encrypted()
{
    const std::optional<QByteArray> bytes = m_document.dataOfType();
    std::optional<DocumentFile> file = bytes ? DocumentFile::fromData(*bytes) : std::nullopt;
    if (!file) {
        return std::nullopt;
    }
    // Without a window the document tells of none; the file keeps the one that it had.
    if (m_file.windowRec) {
        file->windowRec = m_file.windowRec;
    }
    file->makeToolbarVisibleAtDecrypt = m_showsToolbar;
    return file->toData();
}

} // namespace quorvane
