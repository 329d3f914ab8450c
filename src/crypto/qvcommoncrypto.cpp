#include "crypto/qvcommoncrypto.h"

#include "crypto/randominrange.h"
#include "platform/largebuffer.h"

#include <openssl/evp.h>
#include <openssl/rand.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

namespace quorvane {

namespace {

constexpr qsizetype keyLength = 32;
constexpr qsizetype saltLength = 8;
constexpr qsizetype blockSize = 16;
constexpr qsizetype vectorLength = blockSize;
constexpr qsizetype digestLength = 20;
constexpr int randomStringLength = 256;
// The library counts in int, a body may be longer: it is fed in pieces, whole blocks each.
constexpr qsizetype pieceLength = qsizetype(1) << 20;

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

const uchar *bytesOf(const QByteArray &data)
{
    return reinterpret_cast<const uchar *>(data.constData());
}

uchar *bytesOf(QByteArray &data)
{
    return reinterpret_cast<uchar *>(data.data());
}

bool derive(const std::optional<QString> &password, const std::optional<QByteArray> &salt,
            QByteArray &key)
{
    const QByteArray hashed = QVCommonCrypto::keyBytesOf(password.value_or(QString()));
    const QByteArray salting = salt.value_or(QByteArray());
    constexpr qsizetype longest = std::numeric_limits<int>::max();
    if (hashed.size() > longest || salting.size() > longest) {
        return false;
    }
    return PKCS5_PBKDF2_HMAC(hashed.constData(), static_cast<int>(hashed.size()), bytesOf(salting),
                             static_cast<int>(salting.size()), QVCommonCrypto::derivationRounds,
                             EVP_sha1(), static_cast<int>(key.size()), bytesOf(key))
        == 1;
}

CipherContext makeCipher(const QByteArray &key, const QByteArray &iv, quint32 context,
                         qint32 padding)
{
    CipherContext cipher(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    const bool ecb = (padding & QVCommonCrypto::paddingECBMode) != 0;
    const EVP_CIPHER *mode = ecb ? EVP_aes_256_ecb() : EVP_aes_256_cbc();
    const int encrypting = context == QVCommonCrypto::contextEncrypt ? 1 : 0;
    if (!cipher
        || EVP_CipherInit_ex2(cipher.get(), mode, bytesOf(key), bytesOf(iv), encrypting, nullptr)
            != 1
        || EVP_CIPHER_CTX_set_padding(cipher.get(), padding & QVCommonCrypto::paddingPKCS7) != 1) {
        cipher.reset();
    }
    return cipher;
}

std::optional<QByteArray> roomFor(qsizetype length)
{
    if (length > std::numeric_limits<qsizetype>::max() / 2) {
        return std::nullopt;
    }
    try {
        return largeBuffer(length);
    } catch (const std::bad_alloc &) {
        return std::nullopt;
    }
}

Outcome run(EVP_CIPHER_CTX *cipher, const QByteArray &input, qint32 errorAtTheEnd)
{
    std::optional<QByteArray> output = roomFor(input.size() + blockSize);
    if (!output) {
        return {std::nullopt, QVCommonCrypto::statusMemory};
    }
    qsizetype total = 0;
    for (qsizetype done = 0; done < input.size(); done += pieceLength) {
        const int piece = static_cast<int>(std::min(pieceLength, input.size() - done));
        int written = 0;
        if (EVP_CipherUpdate(cipher, bytesOf(*output) + total, &written, bytesOf(input) + done,
                             piece)
            != 1) {
            return {std::nullopt, QVCommonCrypto::statusLibrary};
        }
        total += written;
    }
    int written = 0;
    if (EVP_CipherFinal_ex(cipher, bytesOf(*output) + total, &written) != 1) {
        return {std::nullopt, errorAtTheEnd};
    }
    output->resize(total + written);
    return {std::move(output), 0};
}

} // namespace

QVCommonCrypto::QVCommonCrypto(std::optional<QString> password)
    : m_password(std::move(password))
{
    recalcIV_Salt_AESKey();
}

void QVCommonCrypto::recalcIV_Salt_AESKey()
{
    m_IV = randomDataOfLength(vectorLength);
    m_salt = randomDataOfLength(saltLength);
    m_AESKey = AESKeyForPassword(m_password, m_salt);
}

void QVCommonCrypto::setPasswordToDecrypt(std::optional<QString> password,
                                          std::optional<QByteArray> iv,
                                          std::optional<QByteArray> salt)
{
    m_password = std::move(password);
    m_IV = std::move(iv);
    m_salt = std::move(salt);
}

void QVCommonCrypto::setPasswordToEncrypt(std::optional<QString> password)
{
    m_password = std::move(password);
    recalcIV_Salt_AESKey();
}

Outcome QVCommonCrypto::doCipher(const std::optional<QByteArray> &input, const QByteArray &key,
                                 quint32 context, qint32 &padding)
{
    Q_UNUSED(key) // The operation has always had it, and has always taken the password's own.
    QByteArray derived(keyLength, '\0');
    const bool isDerived = derive(m_password, m_salt, derived);
    m_AESKey = derived;
    if (!isDerived) {
        return {std::nullopt, statusLibrary}; // A key of zeros would be as good as none.
    }
    if (context == contextEncrypt && padding != paddingECBMode) {
        padding = paddingPKCS7;
    }
    const bool knownContext = context == contextEncrypt || context == contextDecrypt;
    if (!m_salt || !m_IV || m_IV->size() < vectorLength || !knownContext) {
        return {std::nullopt, statusParameter};
    }
    const CipherContext cipher = makeCipher(derived, *m_IV, context, padding);
    if (!cipher) {
        return {std::nullopt, statusLibrary};
    }
    const QByteArray bytes = input.value_or(QByteArray());
    const bool unpads = context == contextDecrypt && (padding & paddingPKCS7) != 0;
    return run(cipher.get(), bytes,
               unpads && bytes.size() % blockSize == 0 ? statusDecode : statusAlignment);
}

Outcome QVCommonCrypto::encrypt(const std::optional<QByteArray> &data)
{
    qint32 padding = paddingPKCS7;
    return doCipher(data, m_password.value_or(QString()).toUtf8(), contextEncrypt, padding);
}

Outcome QVCommonCrypto::decrypt(const std::optional<QByteArray> &data)
{
    qint32 padding = paddingPKCS7;
    return doCipher(data, m_password.value_or(QString()).toUtf8(), contextDecrypt, padding);
}

std::optional<QByteArray> QVCommonCrypto::encrypt(const std::optional<QByteArray> &data,
                                                  const QByteArray &key, qint32 &padding)
{
    return doCipher(data, key, contextEncrypt, padding).data;
}

std::optional<QByteArray> QVCommonCrypto::decrypt(const std::optional<QByteArray> &data,
                                                  const QByteArray &key, qint32 &padding)
{
    return doCipher(data, key, contextDecrypt, padding).data;
}

std::optional<QByteArray> QVCommonCrypto::randomDataOfLength(qsizetype length)
{
    if (length < 0) {
        return std::nullopt;
    }
    QByteArray data(length, '\0');
    if (RAND_bytes_ex(nullptr, bytesOf(data), static_cast<size_t>(length), 0) != 1) {
        return std::nullopt;
    }
    return data;
}

QByteArray QVCommonCrypto::AESKeyForPassword(const std::optional<QString> &password,
                                             const std::optional<QByteArray> &salt)
{
    QByteArray key(keyLength, '\0');
    derive(password, salt, key);
    return key;
}

QByteArray QVCommonCrypto::keyBytesOf(const QString &password)
{
    // Existing files hash as many UTF-8 bytes as the password has UTF-16 units.
    return password.toUtf8().left(password.size());
}

std::optional<QByteArray> QVCommonCrypto::dataSHA1(const std::optional<QByteArray> &data)
{
    const QByteArray bytes = data.value_or(QByteArray());
    // The length is a 32-bit one, also for longer data.
    const quint32 length = static_cast<quint32>(bytes.size());
    QByteArray digest(digestLength, '\0');
    if (EVP_Digest(bytes.constData(), length, bytesOf(digest), nullptr, EVP_sha1(), nullptr) != 1) {
        return std::nullopt;
    }
    return digest;
}

QString QVCommonCrypto::generateRandom256AsciiString()
{
    QString text;
    text.reserve(randomStringLength);
    for (int i = 0; i < randomStringLength; ++i) {
        text.append(QChar(static_cast<char16_t>(randomInRange(1, 255))));
    }
    return text;
}

} // namespace quorvane
