#include "platform_qt/terminationsignals.h"

#include <atomic>
#include <cerrno>

#include <fcntl.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::array handled {SIGTERM, SIGHUP, SIGINT};

std::atomic<int> writeEnd {-1};
static_assert(std::atomic<int>::is_always_lock_free); // read in a signal handler

// Only what is async-signal-safe: the work is done by the main loop.
void passOn(int number)
{
    const int error = errno;
    const auto byte = static_cast<unsigned char>(number);
    [[maybe_unused]] const ssize_t written = write(writeEnd.load(), &byte, 1);
    errno = error;
}

} // namespace

TerminationSignals::TerminationSignals()
{
    if (pipe2(m_pipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    writeEnd = m_pipe[1];
    m_notifier.emplace(m_pipe[0], QSocketNotifier::Read);
    connect(&*m_notifier, &QSocketNotifier::activated, this, &TerminationSignals::readNumbers);
    struct sigaction action = {};
    action.sa_handler = passOn;
    action.sa_flags = SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (std::size_t i = 0; i < handled.size(); ++i) {
        struct sigaction former = {};
        if (sigaction(handled[i], nullptr, &former) == 0 && former.sa_handler != SIG_IGN
            && sigaction(handled[i], &action, nullptr) == 0) {
            m_former[i] = Former {handled[i], former};
        }
    }
}

TerminationSignals::~TerminationSignals()
{
    for (const std::optional<Former> &former : m_former) {
        if (former) {
            sigaction(former->number, &former->action, nullptr);
        }
    }
    m_notifier.reset();
    writeEnd = -1;
    for (const int end : m_pipe) {
        if (end >= 0) {
            close(end);
        }
    }
}

void TerminationSignals::readNumbers()
{
    unsigned char number = 0;
    while (read(m_pipe[0], &number, 1) == 1) {
        Q_EMIT received(number);
    }
}

} // namespace quorvane
