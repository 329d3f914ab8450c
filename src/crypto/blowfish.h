#pragma once

#include <QtGlobal>

#include <memory>

namespace quorvane {

// Blowfish in CBC mode with the padding of PKCS #5, as the oldest documents have it.
//
// The key is always 16 bytes: the first ones of \a key, filled up with zeros. Bytes past the
// sixteenth do not count. \a vector is 8 bytes. Both give a new buffer of \a resultLength bytes, or
// null for a failure and for an input of less than one byte.

constexpr qint32 blowfishVectorLength = 8;

/// Whether this machine has the cipher at all: it comes with OpenSSL's legacy provider.
[[nodiscard]] bool isBlowfishAvailable();

[[nodiscard]] std::unique_ptr<uchar[]> blowfishEncryptBuffer(const uchar *input, qint32 inputLength,
                                                             const uchar *key, qint32 keyLength,
                                                             const uchar *vector,
                                                             qint32 &resultLength);

constexpr qint32 blowfishUpdateFailed = 1;
constexpr qint32 blowfishFinalFailed = 2; ///< Padding or length: mostly a wrong password.

/// \param errorCode 0, blowfishUpdateFailed or blowfishFinalFailed. An input of less than one byte
/// is no error.
[[nodiscard]] std::unique_ptr<uchar[]>
blowfishDecryptBuffer(const uchar *input, qint32 inputLength, const uchar *key, qint32 keyLength,
                      const uchar *vector, qint32 &resultLength, qint32 &errorCode);

} // namespace quorvane
