#include "cli/terminal.h"

#include "cli/streams.h"

#include <array>
#include <cerrno>
#include <csignal>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::array caughtSignals {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP, SIGTTIN, SIGTTOU};

volatile std::sig_atomic_t caughtSignal = 0;

void noteSignal(int signal)
{
    caughtSignal = signal;
}

bool stopsOnly(int signal)
{
    return signal == SIGTSTP || signal == SIGTTIN || signal == SIGTTOU;
}

/// Takes the echo from a terminal, and signals into a note, for as long as it lives.
class HiddenInput final
{
public:
    explicit HiddenInput(int terminal)
        : m_terminal(terminal)
    {
        caughtSignal = 0;
        struct sigaction action = {};
        action.sa_handler = noteSignal; // without SA_RESTART: it ends the read
        for (std::size_t i = 0; i < caughtSignals.size(); ++i) {
            sigaction(caughtSignals.at(i), &action, &m_actions.at(i));
        }
        m_hasMode = tcgetattr(m_terminal, &m_mode) == 0;
        termios hidden = m_mode;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        m_isHidden = m_hasMode && tcsetattr(m_terminal, TCSAFLUSH, &hidden) == 0;
    }

    ~HiddenInput()
    {
        if (m_isHidden) {
            tcsetattr(m_terminal, TCSAFLUSH, &m_mode);
        }
        for (std::size_t i = 0; i < caughtSignals.size(); ++i) {
            sigaction(caughtSignals.at(i), &m_actions.at(i), nullptr);
        }
    }

    Q_DISABLE_COPY_MOVE(HiddenInput)

    bool isHidden() const { return m_isHidden; }

    std::optional<QByteArray> readLine() const
    {
        QByteArray line;
        char byte = 0;
        while (caughtSignal == 0) {
            const ssize_t count = ::read(m_terminal, &byte, 1);
            if (count == 1 && byte == '\n') {
                return line;
            }
            if (count == 1) {
                line.append(byte);
            } else if (count == 0 || errno != EINTR) {
                break;
            }
        }
        return std::nullopt;
    }

private:
    int m_terminal;
    termios m_mode {};
    bool m_hasMode = false;
    bool m_isHidden = false;
    std::array<struct sigaction, caughtSignals.size()> m_actions {};
};

} // namespace

Terminal::Terminal()
    : m_descriptor(::open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY))
{ }

Terminal::~Terminal()
{
    if (isThere()) {
        ::close(m_descriptor);
    }
}

std::optional<QByteArray> Terminal::readHidden(const QByteArray &prompt)
{
    while (true) {
        std::optional<QByteArray> line;
        {
            const HiddenInput input(m_descriptor);
            if (input.isHidden()) {
                writeEverything(m_descriptor, prompt);
                line = input.readLine();
                writeEverything(m_descriptor, "\n");
            }
        }
        const int signal = caughtSignal;
        caughtSignal = 0;
        if (signal == 0) {
            return line;
        }
        raise(signal); // now as if nothing had caught it
        if (!stopsOnly(signal)) {
            return std::nullopt; // it was ignored before
        }
    }
}

} // namespace quorvane
