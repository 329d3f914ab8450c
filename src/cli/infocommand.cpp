#include "cli/commands.h"
#include "cli/storeddocument.h"
#include "cli/streams.h"
#include "product/qvappsupportutility.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString nameOf(FormatFamily family)
{
    switch (family) {
    case FormatFamily::EarlyBlowfish:
        return u"Early Blowfish"_s;
    case FormatFamily::BlowfishWithWindow:
        return u"Blowfish with window"_s;
    case FormatFamily::FirstAes:
        return u"First AES"_s;
    case FormatFamily::CurrentAes:
        return u"Current AES"_s;
    case FormatFamily::Unlisted:
        return u"Unlisted"_s;
    case FormatFamily::Newer:
        break;
    }
    return u"Newer"_s;
}

QString nameOf(CipherFamily cipher)
{
    return cipher == CipherFamily::Aes ? u"AES-256"_s : u"Blowfish"_s;
}

struct Field
{
    QString key;
    std::optional<QByteArray> value;
};

std::vector<Field> fieldsOf(const DocumentFile &file)
{
    return {{u"textData"_s, file.textData}, {u"crDate"_s, file.crDate}, {u"crMAC"_s, file.crMAC},
            {u"salt"_s, file.salt},         {u"IV"_s, file.iv},         {u"rc"_s, file.rc},
            {u"sha1-rc"_s, file.sha1Rc}};
}

template <typename T> QJsonValue jsonOf(const std::optional<T> &value)
{
    return value ? QJsonValue(*value) : QJsonValue();
}

QJsonObject jsonOf(const QString &path, const StoredDocument &document)
{
    const DocumentFile &file = document.file();
    QJsonObject lengths;
    for (const auto &[key, value] : fieldsOf(file)) {
        lengths.insert(key, value ? QJsonValue(value->size()) : QJsonValue());
    }
    QJsonValue window;
    if (const std::optional<NSRect> &rect = file.windowRec) {
        window = QJsonObject {{u"x"_s, rect->x},
                              {u"y"_s, rect->y},
                              {u"width"_s, rect->width},
                              {u"height"_s, rect->height}};
    }
    return {{u"file"_s, path},
            {u"version"_s, static_cast<qint64>(file.appversion)},
            {u"release"_s,
             QVAppSupportUtility::calcReleaseString(static_cast<qint64>(file.appversion))},
            {u"family"_s, nameOf(familyOf(file.appversion))},
            {u"cipher"_s, nameOf(document.cipher())},
            {u"note"_s, jsonOf(file.publicTextData)},
            {u"readOnly"_s, !file.isEditable.value_or(true)},
            {u"window"_s, window},
            {u"toolbar"_s, jsonOf(file.makeToolbarVisibleAtDecrypt)},
            {u"lengths"_s, lengths}};
}

QString textOf(const QString &path, const StoredDocument &document)
{
    const DocumentFile &file = document.file();
    const QString release =
        QVAppSupportUtility::calcReleaseString(static_cast<qint64>(file.appversion));
    QString text = harmless(path) + u'\n';
    const auto line = [&text](const QString &name, const QString &value) {
        text += u"  "_s + name.leftJustified(16) + value + u'\n';
    };
    line(u"Format version"_s,
         u"%1 (%2%3)"_s.arg(file.appversion)
             .arg(release.isEmpty() ? QString() : release + u", "_s,
                  nameOf(familyOf(file.appversion))));
    line(u"Cipher"_s, nameOf(document.cipher()));
    const QStringList note = file.publicTextData.value_or(u""_s).split(u'\n');
    for (qsizetype i = 0; i < note.size(); ++i) {
        line(i == 0 ? u"Public note"_s : u""_s, harmless(note.at(i)));
    }
    line(u"Read-only"_s, file.isEditable.value_or(true) ? u"no"_s : u"yes"_s);
    if (const std::optional<NSRect> &rect = file.windowRec) {
        line(u"Window"_s,
             u"%1 x %2 at %3, %4"_s.arg(rect->width).arg(rect->height).arg(rect->x).arg(rect->y));
    }
    for (const auto &[key, value] : fieldsOf(file)) {
        if (value) {
            line(key, u"%1 bytes"_s.arg(value->size()));
        }
    }
    return text;
}

} // namespace

ExitCode runInfo(const Arguments &arguments)
{
    ExitCode code = ExitCode::Done;
    const bool asJson = arguments.has("json");
    QJsonArray all;
    QStringList texts;
    for (const QString &path : arguments.files()) {
        const auto loaded = StoredDocument::load(path);
        if (!loaded.value) {
            code = firstFailure(code, fail(path, loaded.failure));
        } else if (asJson) {
            all.append(jsonOf(path, **loaded.value));
        } else {
            texts << textOf(path, **loaded.value);
        }
    }
    const QString output =
        asJson ? QString::fromUtf8(QJsonDocument(all).toJson()) : texts.join(u'\n');
    return printText(output) ? code : firstFailure(code, ExitCode::CannotWrite);
}

} // namespace quorvane
