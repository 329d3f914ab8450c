#pragma once

#include "crypto/outcome.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// The cipher of documents before format version 10700: Blowfish in CBC mode with the padding of
/// PKCS #5. Nothing is derived: the key is the first 16 bytes of the password in Mac Roman, filled
/// up with zeros.
///
/// Nothing proves a password but the padding, which about one wrong password in 256 passes. The
/// errors are those of blowfishDecryptBuffer. A password with a character that Mac Roman lacks
/// encrypts nothing and decrypts nothing.
class QVCrypto final
{
public:
    /// The vector of every document.
    static const uchar documentVector[8];

    /// \param vector 8 bytes, or null for none.
    explicit QVCrypto(const uchar *vector = nullptr, const QString &password = QStringLiteral(""));

    /// Whether there are a vector and a password that is not empty.
    bool isReady() const;

    /// \param vector 8 bytes, which are copied; null takes the vector away.
    void setInitVector(const uchar *vector);
    void setPassword(const QString &password);

    // Encrypting needs isReady(). Nothing is the only sign of failure; an empty input gives it too.
    /// The string's bytes in Mac Roman.
    [[nodiscard]] std::optional<QByteArray> cryptString(const QString &string) const;
    [[nodiscard]] std::optional<QByteArray> cryptData(const std::optional<QByteArray> &data) const;
    /// The 8 bytes of the value, in the order of the memory.
    [[nodiscard]] std::optional<QByteArray> cryptLong(quint64 value) const;
    /// The low 4 bytes of the value, in the order of the memory.
    [[nodiscard]] std::optional<QByteArray> cryptLongToInt32(quint64 value) const;

    // Decrypting does not ask isReady(): no vector is one of zeros. Of no bytes comes no byte.
    /// The bytes are read in the encoding of the system, not in the one of cryptString.
    OutcomeOf<QString> decryptToString(const std::optional<QByteArray> &data) const;
    Outcome decryptToData(const std::optional<QByteArray> &data) const;
    /// 4 bytes give their number with its sign, others the low end of one.
    OutcomeOf<qint64> decryptToLong(const std::optional<QByteArray> &data) const;

private:
    std::optional<QByteArray> m_myIV;
    QString m_myPassword;
};

} // namespace quorvane
