#pragma once

#include "crypto/outcome.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <utility>

namespace quorvane {

/// The cipher of documents since format version 10700: AES-256 in CBC mode with PKCS #7 padding
/// (RFC 5652, 6.3), the key from PBKDF2 (RFC 8018) with HMAC-SHA1 and 10000 rounds.
///
/// Holds the password, salt and initialisation vector of one document. Each operation derives the
/// key anew from them, so a changed password or salt counts at once. Nothing authenticates the
/// ciphertext: a wrong password is noticed only by its padding, and not always.
class QVCommonCrypto final
{
public:
    static constexpr int derivationRounds = 10000;

    // The error of an outcome is 0 or one of these.
    static constexpr qint32 statusParameter = -4300; ///< Vector, salt or context of no use.
    static constexpr qint32 statusMemory = -4302; ///< No room for the result.
    static constexpr qint32 statusAlignment = -4303; ///< Not a whole number of blocks.
    static constexpr qint32 statusDecode = -4304; ///< Wrong padding: mostly a wrong password.
    static constexpr qint32 statusLibrary = -4308; ///< The library refused to work.

    static constexpr quint32 contextEncrypt = 0;
    static constexpr quint32 contextDecrypt = 1;

    static constexpr qint32 paddingPKCS7 = 1; ///< An option bit.
    static constexpr qint32 paddingECBMode = 2; ///< An option bit.

    /// Takes the password, a random vector and salt, and derives the key from them.
    explicit QVCommonCrypto(std::optional<QString> password = std::nullopt);

    /// Renews vector and salt and derives the key; the password stays.
    void recalcIV_Salt_AESKey();
    /// Takes the values as they are; the key follows with the next operation.
    void setPasswordToDecrypt(std::optional<QString> password, std::optional<QByteArray> iv,
                              std::optional<QByteArray> salt);
    /// Takes the password and renews vector, salt and key.
    void setPasswordToEncrypt(std::optional<QString> password);

    /// The one cipher routine. Absent input counts as zero bytes, \a key is ignored.
    /// \param context contextEncrypt or contextDecrypt.
    /// \param padding option bits. Encrypting keeps 2 (ECB, no padding) and makes 1 of all else,
    /// in the variable too; decrypting takes them as they are.
    Outcome doCipher(const std::optional<QByteArray> &input, const QByteArray &key, quint32 context,
                     qint32 &padding);

    /// With padding 1. Absent data counts as zero bytes.
    Outcome encrypt(const std::optional<QByteArray> &data);
    Outcome decrypt(const std::optional<QByteArray> &data);
    /// As doCipher, without the status.
    [[nodiscard]] std::optional<QByteArray> encrypt(const std::optional<QByteArray> &data,
                                                    const QByteArray &key, qint32 &padding);
    [[nodiscard]] std::optional<QByteArray> decrypt(const std::optional<QByteArray> &data,
                                                    const QByteArray &key, qint32 &padding);

    /// Bytes from the system's secure source; absent where it fails.
    [[nodiscard]] static std::optional<QByteArray> randomDataOfLength(qsizetype length);
    /// Always 32 bytes. An absent password or salt counts as an empty one.
    [[nodiscard]] static QByteArray AESKeyForPassword(const std::optional<QString> &password,
                                                      const std::optional<QByteArray> &salt);
    /// The bytes of a password that reach the key: as many of its UTF-8 bytes as it has UTF-16
    /// units. All else that stands behind them counts for nothing.
    [[nodiscard]] static QByteArray keyBytesOf(const QString &password);
    /// 20 bytes; absent where the digest fails. Absent data counts as zero bytes.
    [[nodiscard]] static std::optional<QByteArray> dataSHA1(const std::optional<QByteArray> &data);
    /// 256 characters of the codes 1 to 255, not ASCII alone. No key material.
    [[nodiscard]] static QString generateRandom256AsciiString();

    const std::optional<QString> &password() const { return m_password; }

    void setPassword(std::optional<QString> password) { m_password = std::move(password); }

    const std::optional<QByteArray> &salt() const { return m_salt; }

    void setSalt(std::optional<QByteArray> salt) { m_salt = std::move(salt); }

    /// The key last derived, never taken up again: each operation overwrites it.
    const std::optional<QByteArray> &AESKey() const { return m_AESKey; }

    void setAESKey(std::optional<QByteArray> key) { m_AESKey = std::move(key); }

    const std::optional<QByteArray> &IV() const { return m_IV; }

    void setIV(std::optional<QByteArray> iv) { m_IV = std::move(iv); }

private:
    std::optional<QString> m_password;
    std::optional<QByteArray> m_salt;
    std::optional<QByteArray> m_AESKey;
    std::optional<QByteArray> m_IV;
};

} // namespace quorvane
