// A document's file replaced as it is done, against a bare write, flush, rename and read of the
// same bytes; and against the same with a flush of the folder, without which a power cut may undo
// the rename. In the current folder, so that the disk can be chosen.

#include "paired.h"
#include "platform/posixfilestore.h"

#include <QTemporaryDir>

#include <array>

#include <fcntl.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr int64_t megabyte = 1000000;

bool writeBare(int file, const QByteArray &data)
{
    const char *rest = data.constData();
    for (size_t left = static_cast<size_t>(data.size()); left > 0;) {
        const ssize_t count = ::write(file, rest, left);
        if (count <= 0) {
            return false;
        }
        rest += count;
        left -= static_cast<size_t>(count);
    }
    return ::fsync(file) == 0;
}

bool readBare(int file)
{
    static std::array<char, 65536> chunk;
    ssize_t count = 1;
    for (off_t at = 0; count > 0; at += count) {
        count = ::pread(file, chunk.data(), chunk.size(), at);
    }
    return count == 0;
}

bool replaceBare(const QByteArray &path, const QByteArray &data)
{
    const QByteArray fresh = path + ".new";
    const int file = ::open(fresh.constData(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool isDone = file >= 0 && writeBare(file, data) && readBare(file)
        && ::rename(fresh.constData(), path.constData()) == 0;
    return ::close(file) == 0 && isDone;
}

bool flushBare(const QByteArray &folder)
{
    const int file = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const bool isDone = file >= 0 && ::fsync(file) == 0;
    return ::close(file) == 0 && isDone;
}

void measure(benchmark::State &state, bool isFolderFlushed)
{
    QTemporaryDir folder(u"bench-replace-XXXXXX"_s);
    const QByteArray data(state.range(0) * megabyte, 'x');
    const QByteArray bare = folder.filePath(u"bare"_s).toUtf8();
    const QString ours = folder.filePath(u"ours"_s);
    const QByteArray place = folder.path().toUtf8();
    PosixFileStore store;
    measurePaired(
        state, [&] { return replaceBare(bare, data) && (!isFolderFlushed || flushBare(place)); },
        [&] { return !store.replace(ours, data).has_value(); });
}

void replace(benchmark::State &state)
{
    measure(state, false);
}

void replaceWithFolder(benchmark::State &state)
{
    measure(state, true);
}

void sizes(benchmark::internal::Benchmark *benchmark)
{
    benchmark->ArgName("MB")->Arg(1)->Arg(10)->Arg(100);
    benchmark->Iterations(31)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK(replace)->Apply(sizes);
BENCHMARK(replaceWithFolder)->Apply(sizes);

} // namespace
