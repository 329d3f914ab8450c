#pragma once

#include <QByteArray>

#include <array>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvane {

/// The peak of resident memory that \a work needs for \a input, itself counted in, as a multiple
/// of the body. Measured in a process of its own, since a peak never goes down again, after the
/// same work on \a small has taken what a process needs once.
template <typename Work>
double peakPerBody(qsizetype size, const QByteArray &input, const QByteArray &small,
                   const Work &work)
{
    std::array<int, 2> pipe {};
    if (::pipe(pipe.data()) != 0) {
        return -1;
    }
    const pid_t child = fork();
    if (child == 0) {
        work(small);
        rusage before {};
        getrusage(RUSAGE_SELF, &before);
        work(input);
        rusage after {};
        getrusage(RUSAGE_SELF, &after);
        const double added =
            double(after.ru_maxrss - before.ru_maxrss) * 1024 + double(input.size());
        const auto written = ::write(pipe[1], &added, sizeof added);
        _exit(written == sizeof added ? 0 : 1);
    }
    double added = 0;
    const auto got = ::read(pipe[0], &added, sizeof added);
    waitpid(child, nullptr, 0);
    close(pipe[0]);
    close(pipe[1]);
    return got == sizeof added ? added / double(size) : -1;
}

} // namespace quorvane
