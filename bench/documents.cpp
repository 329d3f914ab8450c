// Unlocking and saving against the bare library work that the format demands: the derivations, the
// passes of the cipher and the digests over the same bytes. Goal: at most 1.5 times, and a peak of
// memory of at most 6 times the body.
#include "document/mydocument.h"
#include "paired.h"
#include "tests/document/documentfixture.h"

#include <openssl/evp.h>

#include <array>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

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

QByteArray cipher(const QByteArray &input, const Key &key, bool encrypts)
{
    const Block iv {};
    QByteArray output(input.size() + 32, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(output.data());
    const auto *in = reinterpret_cast<const unsigned char *>(input.constData());
    EVP_CIPHER_CTX *context = EVP_CIPHER_CTX_new();
    int written = 0;
    int last = 0;
    EVP_CipherInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), iv.data(), encrypts ? 1 : 0);
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

void bareWork(const QByteArray &input, bool encrypts)
{
    Key key {};
    for (int i = 0; i < derivationsOfAnOpening; ++i) {
        key = deriveKey();
    }
    digestOfCheck();
    for (const QByteArray &field :
         {QByteArray(384, 'r'), QByteArray(6, 'm'), QByteArray(300, 'd')}) {
        benchmark::DoNotOptimize(cipher(field, key, encrypts));
    }
    benchmark::DoNotOptimize(cipher(input, key, encrypts));
}

void unlock(World &world, const QByteArray &file)
{
    MyDocument document(world.surroundings());
    if (!document.readFromData(file)) {
        qFatal("the file does not open");
    }
    document.setPlainPassword(password);
    if (document.Decript() != 0) {
        qFatal("the password does not fit");
    }
    benchmark::DoNotOptimize(document.myTextViewData());
}

/// The peak of resident memory that \a work adds, as a multiple of the body. Measured in a process
/// of its own, since a peak never goes down again.
template <typename Work> double peakPerBody(qsizetype size, const Work &work)
{
    std::array<int, 2> pipe {};
    if (::pipe(pipe.data()) != 0) {
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        const QByteArray input = work(nullptr);
        rusage before {};
        // The input itself counts as part of the work.
        getrusage(RUSAGE_SELF, &before);
        work(&input);
        rusage after {};
        getrusage(RUSAGE_SELF, &after);
        const double added =
            double(after.ru_maxrss - before.ru_maxrss) * 1024 + double(input.size());
        const auto ignored = ::write(pipe[1], &added, sizeof added);
        _exit(ignored == sizeof added ? 0 : 1);
    }
    double added = 0;
    const auto got = ::read(pipe[0], &added, sizeof added);
    waitpid(child, nullptr, 0);
    close(pipe[0]);
    close(pipe[1]);
    return got == sizeof added ? added / double(size) : -1;
}

void Unlock(benchmark::State &state)
{
    const qsizetype size = state.range(0) * megabyte;
    World world;
    const QByteArray file = fileOf(world, bodyOf(size), password);
    const QByteArray ciphertext = cipher(bodyOf(size), Key {}, true);
    pairWithFloor(
        state, [&] { unlock(world, file); },
        [&] {
            Key key {};
            for (int i = 0; i < derivationsOfAnOpening; ++i) {
                key = deriveKey();
            }
            digestOfCheck();
            benchmark::DoNotOptimize(cipher(ciphertext, Key {}, false));
        });
    state.counters["peak_x_body"] = peakPerBody(size, [&](const QByteArray *input) {
        if (input) {
            unlock(world, *input);
            return QByteArray();
        }
        return file;
    });
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
    pairWithFloor(
        state, [&] { benchmark::DoNotOptimize(document.dataOfType()); },
        [&] { bareWork(body, true); });
    state.counters["peak_x_body"] = peakPerBody(size, [&](const QByteArray *input) {
        if (input) {
            MyDocument saved(world.surroundings());
            saved.setPlainPassword(password);
            saved.setMyTextViewData(*input);
            benchmark::DoNotOptimize(saved.dataOfType());
            return QByteArray();
        }
        return body;
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
