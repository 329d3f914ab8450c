// Moving a folder of old documents to the current version against the derivations that their saves
// demand, shared by as many threads. Goal: at most 1.3 times.
#include "cli/migration.h"
#include "crypto/qvcrypto.h"
#include "paired.h"
#include "platform/nskeyedarchiver.h"

#include <QFile>
#include <QTemporaryDir>

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <thread>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int derivationsOfAFirstSave = 7;
constexpr qsizetype bodySize = 10 * 1000;
constexpr int runs = 1; // and one to warm up, each of them seconds long
const QString password = u"correct horse"_s;

QByteArray oldDocument()
{
    const QByteArray body = "{\\rtf1\\ansi " + QByteArray(bodySize, 'a') + '}';
    NSDictionary root;
    root.insert("appversion"_L1, NSObject(NSNumber::numberWithUnsignedLong(10603)));
    root.insert("isEditable"_L1, NSObject(NSNumber::numberWithBool(true)));
    root.insert("publicTextData"_L1, NSObject(u"a note"_s));
    const QVCrypto engine(QVCrypto::documentVector, password);
    root.insert("textData"_L1, NSObject(engine.cryptData(body).value()));
    return NSKeyedArchiver::archivedDataWithRootObject(NSObject(root));
}

/// A folder of that many old documents; its paths.
QStringList fill(const QTemporaryDir &folder, int count)
{
    const QByteArray document = oldDocument();
    QStringList paths;
    for (int i = 0; i < count; ++i) {
        QFile file(folder.filePath(u"%1.quorvane"_s.arg(i)));
        if (file.open(QIODevice::WriteOnly) && file.write(document) == document.size()) {
            paths << file.fileName();
        }
    }
    return paths;
}

void derive(int count)
{
    std::array<uchar, 32> key {};
    const std::array<uchar, 8> salt {};
    const QByteArray utf8 = password.toUtf8();
    for (int i = 0; i < count; ++i) {
        PKCS5_PBKDF2_HMAC(utf8.constData(), int(utf8.size()), salt.data(), int(salt.size()), 10000,
                          EVP_sha1(), int(key.size()), key.data());
        benchmark::DoNotOptimize(key);
    }
}

bool deriveInThreads(int count)
{
    // As the migration has them: on a busy machine, more threads get more of it.
    const int threadCount = 2 * std::max(1, int(std::thread::hardware_concurrency()));
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back(derive, count / threadCount + (i < count % threadCount ? 1 : 0));
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    return true;
}

bool migrate(const QStringList &paths, int count)
{
    const std::atomic<bool> goesOn = false;
    Migration migration(paths);
    migration.run(
        password, Migration::Mode::Save, [] {}, goesOn);
    return migration.count(Migration::State::Migrated) == count;
}

void Migrate(benchmark::State &state)
{
    const int count = int(state.range(0));
    std::vector<std::unique_ptr<QTemporaryDir>> folders;
    std::vector<QStringList> paths;
    for (int i = 0; i < runs + 1; ++i) {
        folders.push_back(std::make_unique<QTemporaryDir>());
        paths.push_back(fill(*folders.back(), count));
    }
    std::size_t next = 0;
    measurePaired(
        state, [count] { return deriveInThreads(count * derivationsOfAFirstSave); },
        [&] { return migrate(paths.at(next++), count); });
}

} // namespace

BENCHMARK(Migrate)->Arg(1000)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(runs);

BENCHMARK_MAIN();
