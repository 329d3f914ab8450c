// A document's file replaced as it is done, against a bare write, flush, rename and read of the
// same bytes. In the current folder, so that the disk can be chosen.

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

void replace(benchmark::State &state)
{
    QTemporaryDir folder(u"bench-replace-XXXXXX"_s);
    const QByteArray data(state.range(0) * megabyte, 'x');
    const QByteArray bare = folder.filePath(u"bare"_s).toUtf8();
    const QString ours = folder.filePath(u"ours"_s);
    PosixFileStore store;
    measurePaired(
        state, [&] { return replaceBare(bare, data); },
        [&] { return !store.replace(ours, data).has_value(); });
}

BENCHMARK(replace)->ArgName("MB")->Arg(1)->Arg(10)->Arg(100)->Iterations(31)->UseManualTime()->Unit(
    benchmark::kMillisecond);

} // namespace
