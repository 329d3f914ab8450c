#include "crypto/blowfish.h"

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/provider.h>

#include <algorithm>
#include <array>
#include <new>

namespace quorvane {

namespace {

constexpr qint32 blockSize = 8;
constexpr std::size_t scheduledKeyLength = 16; // the cipher's own default

using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;
using Buffer = std::unique_ptr<uchar[]>;

/// What the library leaves in its queue of errors here is nobody else's business.
class ErrorMark final
{
public:
    ErrorMark() { ERR_set_mark(); }

    ~ErrorMark() { ERR_pop_to_mark(); }

    Q_DISABLE_COPY_MOVE(ErrorMark)
};

/// The cipher in a library context of its own, so that nothing else in the process finds the old
/// algorithms that come with it.
class LegacyLibrary final
{
public:
    static const EVP_CIPHER *blowfish()
    {
        static const LegacyLibrary library;
        return library.m_cipher.get();
    }

private:
    LegacyLibrary()
    {
        if (m_context) {
            m_provider.reset(OSSL_PROVIDER_load(m_context.get(), "legacy"));
        }
        if (m_provider) {
            m_cipher.reset(EVP_CIPHER_fetch(m_context.get(), "BF-CBC", nullptr));
        }
    }

    // Freed from the last to the first.
    std::unique_ptr<OSSL_LIB_CTX, decltype(&OSSL_LIB_CTX_free)> m_context {OSSL_LIB_CTX_new(),
                                                                           &OSSL_LIB_CTX_free};
    std::unique_ptr<OSSL_PROVIDER, decltype(&OSSL_PROVIDER_unload)> m_provider {
        nullptr, &OSSL_PROVIDER_unload};
    std::unique_ptr<EVP_CIPHER, decltype(&EVP_CIPHER_free)> m_cipher {nullptr, &EVP_CIPHER_free};
};

CipherContext makeCipher(const uchar *key, qint32 keyLength, const uchar *vector, int encrypting)
{
    CipherContext context(EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    const EVP_CIPHER *cipher = LegacyLibrary::blowfish();
    std::array<uchar, scheduledKeyLength> scheduled {};
    const std::size_t given = keyLength > 0 ? static_cast<std::size_t>(keyLength) : 0;
    std::copy_n(key, std::min(given, scheduled.size()), scheduled.begin());
    // The files were made by a program that told the cipher the password's length only after the
    // schedule had been built from 16 bytes, when it counted no more. So it is not told here:
    // before the key it would make another one, and behind it today's library takes the key away.
    if (!context || !cipher
        || EVP_CipherInit_ex2(context.get(), cipher, scheduled.data(), vector, encrypting, nullptr)
            != 1
        || EVP_CIPHER_CTX_set_padding(context.get(), 1) != 1) {
        context.reset();
    }
    return context;
}

Buffer roomFor(qint32 length)
{
    return Buffer(new (std::nothrow) uchar[static_cast<std::size_t>(length) + blockSize]());
}

} // namespace

bool isBlowfishAvailable()
{
    const ErrorMark mark;
    return LegacyLibrary::blowfish() != nullptr;
}

Buffer blowfishEncryptBuffer(const uchar *input, qint32 inputLength, const uchar *key,
                             qint32 keyLength, const uchar *vector, qint32 &resultLength)
{
    resultLength = 0;
    if (inputLength < 1) {
        return nullptr;
    }
    const ErrorMark mark;
    const CipherContext context = makeCipher(key, keyLength, vector, 1);
    Buffer output = roomFor(inputLength);
    int written = 0;
    int last = 0;
    if (!context || !output
        || EVP_EncryptUpdate(context.get(), output.get(), &written, input, inputLength) != 1
        || EVP_EncryptFinal_ex(context.get(), output.get() + written, &last) != 1) {
        return nullptr;
    }
    resultLength = written + last;
    return output;
}

Buffer blowfishDecryptBuffer(const uchar *input, qint32 inputLength, const uchar *key,
                             qint32 keyLength, const uchar *vector, qint32 &resultLength,
                             qint32 &errorCode)
{
    resultLength = 0;
    errorCode = 0;
    if (inputLength < 1) {
        return nullptr;
    }
    const ErrorMark mark;
    const CipherContext context = makeCipher(key, keyLength, vector, 0);
    Buffer output = roomFor(inputLength);
    int written = 0;
    if (!context || !output
        || EVP_DecryptUpdate(context.get(), output.get(), &written, input, inputLength) != 1) {
        errorCode = blowfishUpdateFailed;
        return nullptr;
    }
    int last = 0;
    if (EVP_DecryptFinal_ex(context.get(), output.get() + written, &last) != 1) {
        errorCode = blowfishFinalFailed;
        return nullptr;
    }
    resultLength = written + last;
    return output;
}

} // namespace quorvane
