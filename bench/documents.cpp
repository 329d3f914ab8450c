// Unlocking and saving against the bare library work that the format demands: the derivations, the
// passes of the cipher and the digests over the same bytes. Goal: at most 1.5 times, and a peak of
// memory of at most 6 times the body.
#include "document/documentfixture.h"
#include "document/mydocument.h"
#include "paired.h"
#include "peak.h"

#include <openssl/evp.h>

#include <array>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype megabyte = 1000 * 1000;
constexpr int rounds = 10000;
constexpr int derivationsOfAnOpening = 5;
const QString password = u"correct horse battery"_s;

using Key = std::array<unsigned char, 32>;
using Block = std::array<unsigned char, 16>;

QByteArray bodyOf(qsizetype size)
{
    QByteArray body(size, Qt::Uninitialized);
    quint32 seed = 1;
    for (char &byte : body) {
        seed = seed * 1664525 + 1013904223;
        byte = static_cast<char>(seed >> 24);
    }
    return body;
}

Key deriveKey()
{
    Key key {};
    const QByteArray utf8 = password.toUtf8();
    const Block salt {};
    PKCS5_PBKDF2_HMAC(utf8.constData(), int(utf8.size()), salt.data(), 8, rounds, EVP_sha1(),
                      int(key.size()), key.data());
    return key;
}

enum class Direction { Decrypt = 0, Encrypt = 1 };

QByteArray cipher(const QByteArray &input, const Key &key, Direction direction)
{
    const Block iv {};
    QByteArray output(input.size() + 32, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(output.data());
    const auto *in = reinterpret_cast<const unsigned char *>(input.constData());
    EVP_CIPHER_CTX *context = EVP_CIPHER_CTX_new();
    int written = 0;
    int last = 0;
    EVP_CipherInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), iv.data(), int(direction));
    EVP_CipherUpdate(context, out, &written, in, int(input.size()));
    EVP_CipherFinal_ex(context, out + written, &last);
    EVP_CIPHER_CTX_free(context);
    output.resize(written + last);
    return output;
}

void digestOfCheck()
{
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest {};
    const QByteArray check(384, 'r');
    EVP_Digest(check.constData(), size_t(check.size()), digest.data(), nullptr, EVP_sha1(),
               nullptr);
    benchmark::DoNotOptimize(digest);
}

/// The library's share of an opening or a saving; the small fields are ciphered by their own.
void bareWork(const QByteArray &input, Direction direction)
{
    Key key {};
    for (int i = 0; i < derivationsOfAnOpening; ++i) {
        key = deriveKey();
    }
    digestOfCheck();
    for (const qsizetype size : {384, 16, 304}) {
        benchmark::DoNotOptimize(cipher(QByteArray(size, 'f'), key, direction));
    }
    benchmark::DoNotOptimize(cipher(input, key, direction));
}

bool unlock(World &world, const QByteArray &file)
{
    MyDocument document(world.surroundings());
    if (!document.readFromData(file)) {
        return false;
    }
    document.setPlainPassword(password);
    return document.Decript() == 0 && document.myTextViewData();
}

void Unlock(benchmark::State &state)
{
    const qsizetype size = state.range(0) * megabyte;
    World world;
    const QByteArray file = fileOf(world, bodyOf(size), password);
    const QByteArray ciphertext = cipher(bodyOf(size), deriveKey(), Direction::Encrypt);
    measurePaired(
        state,
        [&] {
            bareWork(ciphertext, Direction::Decrypt);
            return true;
        },
        [&] { return unlock(world, file); });
    state.counters["peak_x_body"] = peakPerBody(
        size, file, fileOf(world, "small", password),
        [&world](const QByteArray &input) { benchmark::DoNotOptimize(unlock(world, input)); });
}

void Save(benchmark::State &state)
{
    const qsizetype size = state.range(0) * megabyte;
    World world;
    const QByteArray body = bodyOf(size);
    MyDocument document(world.surroundings());
    document.setPlainPassword(password);
    document.setMyTextViewData(body);
    benchmark::DoNotOptimize(document.dataOfType());
    measurePaired(
        state,
        [&] {
            bareWork(body, Direction::Encrypt);
            return true;
        },
        [&] { return document.dataOfType().has_value(); });
    state.counters["peak_x_body"] =
        peakPerBody(size, body, "small", [&world](const QByteArray &input) {
            MyDocument saved(world.surroundings());
            saved.setPlainPassword(password);
            saved.setMyTextViewData(input);
            benchmark::DoNotOptimize(saved.dataOfType());
        });
}

} // namespace

BENCHMARK(Unlock)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(9);
BENCHMARK(Save)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(9);

BENCHMARK_MAIN();
