#include "crypto/qvcrypto.h"

#include "crypto/blowfish.h"
#include "crypto/macroman.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace quorvane {

namespace {

constexpr qsizetype longestInput = std::numeric_limits<qint32>::max() - blowfishVectorLength;

const uchar *bytesOf(const QByteArray &data)
{
    return reinterpret_cast<const uchar *>(data.constData());
}

QByteArray dataOf(const uchar *bytes, qint32 length)
{
    return QByteArray(reinterpret_cast<const char *>(bytes), length);
}

QByteArray vectorFrom(const std::optional<QByteArray> &iv)
{
    return iv.value_or(QByteArray(blowfishVectorLength, '\0'));
}

} // namespace

const uchar QVCrypto::documentVector[8] {0x3e, 0xa1, 0x5c, 0x07, 0xd2, 0x96, 0x4b, 0xf8};

QVCrypto::QVCrypto(const uchar *vector, const QString &password)
{
    setInitVector(vector);
    setPassword(password);
}

bool QVCrypto::isReady() const
{
    return !m_myPassword.isEmpty() && m_myIV;
}

void QVCrypto::setInitVector(const uchar *vector)
{
    m_myIV = vector ? std::optional(dataOf(vector, blowfishVectorLength)) : std::nullopt;
}

void QVCrypto::setPassword(const QString &password)
{
    m_myPassword = password;
}

std::optional<QByteArray> QVCrypto::cryptString(const QString &string) const
{
    return cryptData(macRomanFrom(string));
}

std::optional<QByteArray> QVCrypto::cryptData(const std::optional<QByteArray> &data) const
{
    const std::optional<QByteArray> key = macRomanFrom(m_myPassword);
    const QByteArray input = data.value_or(QByteArray());
    if (!isReady() || !key || input.size() > longestInput) {
        return std::nullopt;
    }
    qint32 length = 0;
    const auto output =
        blowfishEncryptBuffer(bytesOf(input), static_cast<qint32>(input.size()), bytesOf(*key),
                              static_cast<qint32>(key->size()), bytesOf(*m_myIV), length);
    return output ? std::optional(dataOf(output.get(), length)) : std::nullopt;
}

std::optional<QByteArray> QVCrypto::cryptLong(quint64 value) const
{
    return cryptData(QByteArray(reinterpret_cast<const char *>(&value), sizeof value));
}

std::optional<QByteArray> QVCrypto::cryptLongToInt32(quint64 value) const
{
    const auto low = static_cast<quint32>(value);
    return cryptData(QByteArray(reinterpret_cast<const char *>(&low), sizeof low));
}

OutcomeOf<QString> QVCrypto::decryptToString(const std::optional<QByteArray> &data) const
{
    const Outcome outcome = decryptToData(data);
    if (!outcome.data) {
        return {std::nullopt, outcome.error};
    }
    return {QString::fromLocal8Bit(*outcome.data), 0};
}

Outcome QVCrypto::decryptToData(const std::optional<QByteArray> &data) const
{
    const QByteArray input = data.value_or(QByteArray());
    if (input.isEmpty()) {
        return {QByteArray(), 0}; // with any password
    }
    const std::optional<QByteArray> key = macRomanFrom(m_myPassword);
    if (!key || input.size() > longestInput) {
        return {std::nullopt, blowfishFinalFailed};
    }
    qint32 length = 0;
    qint32 error = 0;
    const auto output = blowfishDecryptBuffer(bytesOf(input), static_cast<qint32>(input.size()),
                                              bytesOf(*key), static_cast<qint32>(key->size()),
                                              bytesOf(vectorFrom(m_myIV)), length, error);
    if (!output) {
        return {std::nullopt, error};
    }
    return {dataOf(output.get(), length), 0};
}

OutcomeOf<qint64> QVCrypto::decryptToLong(const std::optional<QByteArray> &data) const
{
    const Outcome outcome = decryptToData(data);
    if (!outcome.data) {
        return {std::nullopt, outcome.error};
    }
    const QByteArray &bytes = *outcome.data;
    if (bytes.size() == sizeof(qint32)) {
        qint32 value = 0;
        std::memcpy(&value, bytes.constData(), sizeof value);
        return {value, 0};
    }
    qint64 value = 0;
    std::memcpy(&value, bytes.constData(),
                std::min(static_cast<std::size_t>(bytes.size()), sizeof value));
    return {value, 0};
}

} // namespace quorvane
