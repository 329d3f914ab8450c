// One operation of the document cipher against the bare library: one derivation of the key and one
// pass over the same bytes.

#include "crypto/qvcommoncrypto.h"
#include "paired.h"

#include <openssl/evp.h>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int64_t megabyte = 1000000;

const uchar *bytesOf(const QByteArray &data)
{
    return reinterpret_cast<const uchar *>(data.constData());
}

bool cipherBare(const QVCommonCrypto &engine, const QByteArray &data, int encrypting)
{
    uchar key[32] = {};
    const QByteArray password = engine.password().value_or(QString()).toUtf8();
    const QByteArray &salt = engine.salt().value();
    PKCS5_PBKDF2_HMAC(password.constData(), static_cast<int>(password.size()), bytesOf(salt),
                      static_cast<int>(salt.size()), 10000, EVP_sha1(), sizeof key, key);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(
        EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free);
    EVP_CipherInit_ex2(context.get(), EVP_aes_256_cbc(), key, bytesOf(engine.IV().value()),
                       encrypting, nullptr);
    const size_t room = static_cast<size_t>(data.size()) + 16;
    const std::unique_ptr<uchar[]> output(new uchar[room]); // left as it is, unlike make_unique's
    int updated = 0;
    int finished = 0;
    const int length = static_cast<int>(data.size());
    return EVP_CipherUpdate(context.get(), output.get(), &updated, bytesOf(data), length) == 1
        && EVP_CipherFinal_ex(context.get(), output.get() + updated, &finished) == 1;
}

void encrypt(benchmark::State &state)
{
    QVCommonCrypto engine(u"a password of some length"_s);
    const QByteArray data(state.range(0) * megabyte, 'x');
    measurePaired(
        state, [&] { return cipherBare(engine, data, 1); },
        [&] { return engine.encrypt(data).error == 0; });
}

void decrypt(benchmark::State &state)
{
    QVCommonCrypto engine(u"a password of some length"_s);
    const QByteArray data =
        engine.encrypt(QByteArray(state.range(0) * megabyte, 'x')).data.value_or(QByteArray());
    measurePaired(
        state, [&] { return cipherBare(engine, data, 0); },
        [&] { return engine.decrypt(data).error == 0; });
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("MB")->Arg(0)->Arg(1)->Arg(100);
    benchmark->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(encrypt)->Apply(sizes);
BENCHMARK(decrypt)->Apply(sizes);

} // namespace
