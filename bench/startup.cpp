// The start of the program to its first painted window, against an empty main window with an editor
// in it. Goal: at most 1.5 times.
#include "paired.h"

#include <string>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>

extern char **environ;

using namespace quorvane;

namespace {

bool run(const char *program)
{
    std::string path(program);
    std::vector<char *> arguments {path.data(), nullptr};
    pid_t child = 0;
    int status = 0;
    return posix_spawn(&child, program, nullptr, nullptr, arguments.data(), environ) == 0
        && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void Startup(benchmark::State &state)
{
    measurePaired(
        state, [] { return run(STARTUP_BARE); }, [] { return run(STARTUP_OURS); });
}

} // namespace

BENCHMARK(Startup)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(31);
