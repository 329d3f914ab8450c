#pragma once

#include "platform/nsvalues.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// The format version that is written.
constexpr quint64 currentFormatVersion = 20400;
/// The first version that this program refuses.
constexpr quint64 firstNewerVersion = 20401;
/// From this version on the cipher is AES, below it is Blowfish.
constexpr qint64 firstAesVersion = 10700;

enum class FormatFamily {
    EarlyBlowfish,
    BlowfishWithWindow,
    FirstAes,
    CurrentAes,
    Unlisted,
    Newer
};
enum class CipherFamily { Blowfish, Aes };

/// The family of an exact version number: a number between two listed ones is Unlisted.
FormatFamily familyOf(quint64 appversion);

constexpr CipherFamily cipherOf(qint64 appversion)
{
    return appversion >= firstAesVersion ? CipherFamily::Aes : CipherFamily::Blowfish;
}

/// The entries of a document file, as they stand in its archive. Absent is a missing entry.
struct DocumentFile
{
    quint64 appversion = 0;
    std::optional<QString> publicTextData;
    std::optional<bool> isEditable;
    std::optional<QByteArray> textData;
    std::optional<QByteArray> crDate;
    std::optional<QByteArray> crMAC;
    std::optional<QByteArray> salt;
    std::optional<QByteArray> iv;
    std::optional<QByteArray> rc;
    std::optional<QByteArray> sha1Rc;
    /// The window's frame. Read, its numbers are whole; for a family that keeps none it is absent.
    std::optional<NSRect> windowRec;
    std::optional<bool> makeToolbarVisibleAtDecrypt;

    /// Reads an archive: the entries of its version's family, the others are passed over. Nothing
    /// where the bytes are no keyed archive of a dictionary, or an entry is of the wrong class.
    static std::optional<DocumentFile> fromData(const QByteArray &data);
    /// The archive with \c appversion 20400.
    QByteArray toData() const;
};

} // namespace quorvane
