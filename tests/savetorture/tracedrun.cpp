#include "savetorture/tracedrun.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>

#include <elf.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// The marks are calls that do nothing, told from others by an argument that they do not look at.
constexpr quint64 startMark = 0x51565f7374617274;
constexpr quint64 endMark = 0x51565f656e64;
constexpr auto markNumber = static_cast<quint64>(SYS_getppid);

void *asPointer(quint64 value)
{
    return reinterpret_cast<void *>(value);
}

#if defined(__x86_64__)
constexpr std::array<size_t, 6> argumentPlaces {
    offsetof(user_regs_struct, rdi), offsetof(user_regs_struct, rsi),
    offsetof(user_regs_struct, rdx), offsetof(user_regs_struct, r10),
    offsetof(user_regs_struct, r8),  offsetof(user_regs_struct, r9)};

bool poke(pid_t process, size_t place, quint64 value)
{
    return ::ptrace(PTRACE_POKEUSER, process, asPointer(place), asPointer(value)) == 0;
}

bool setArgument(pid_t process, size_t argument, quint64 value)
{
    return poke(process, argumentPlaces.at(argument), value);
}

bool setResult(pid_t process, qint64 value)
{
    return poke(process, offsetof(user_regs_struct, rax), static_cast<quint64>(value));
}

bool skipCall(pid_t process)
{
    return poke(process, offsetof(user_regs_struct, orig_rax), ~quint64(0));
}
#elif defined(__aarch64__)
bool setArgument(pid_t process, size_t argument, quint64 value)
{
    user_regs_struct registers = {};
    iovec whole {&registers, sizeof registers};
    if (::ptrace(PTRACE_GETREGSET, process, asPointer(NT_PRSTATUS), &whole) != 0) {
        return false;
    }
    registers.regs[argument] = value;
    return ::ptrace(PTRACE_SETREGSET, process, asPointer(NT_PRSTATUS), &whole) == 0;
}

bool setResult(pid_t process, qint64 value)
{
    return setArgument(process, 0, static_cast<quint64>(value)); // one register serves both
}

bool skipCall(pid_t process)
{
    int number = -1;
    iovec whole {&number, sizeof number};
    return ::ptrace(PTRACE_SETREGSET, process, asPointer(NT_ARM_SYSTEM_CALL), &whole) == 0;
}
#else
#error "How this processor's calls are changed is not known here."
#endif

[[noreturn]] void runChild(const std::function<int()> &operation)
{
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGTERM, SIGINT}) {
        std::signal(signal, SIG_DFL); // the test program's own would write a report
    }
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) == 0) {
        ::raise(SIGSTOP);
    }
    ::syscall(static_cast<long>(markNumber), startMark);
    const int result = operation();
    ::syscall(static_cast<long>(markNumber), endMark);
    ::_exit(result); // no handlers at exit: they are the parent's
}

/// Watches one process from stop to stop.
class Watch
{
public:
    Watch(pid_t process, const Fault &fault)
        : m_process(process)
        , m_fault(fault)
    { }

    TracedRun run();

private:
    bool isReady();
    void atStop(int status);
    void atCall();
    void atEntry(const __ptrace_syscall_info &info);
    void atExit(const __ptrace_syscall_info &info);
    void strike(const SystemCall &call);
    bool isStruckFromHere(const SystemCall &call) const;
    void answer(qint64 result);
    void kill();
    void proceed(int signal);
    void giveUp(const QString &problem);

    pid_t m_process;
    const Fault &m_fault;
    TracedRun m_run;
    bool m_isWatching = false;
    bool m_isKillDue = false;
    bool m_isCutCall = false;
    std::optional<qint64> m_result; ///< What the call under way is to give instead.
    std::optional<SystemCall> m_cut;
};

TracedRun Watch::run()
{
    if (!isReady()) {
        return m_run;
    }
    proceed(0);
    while (true) {
        int status = 0;
        const pid_t stopped = ::waitpid(m_process, &status, __WALL);
        if (stopped < 0 && errno == EINTR) {
            continue;
        }
        if (stopped < 0) {
            giveUp(u"waiting: "_s + qt_error_string(errno));
            return m_run;
        }
        if (WIFEXITED(status)) {
            m_run.exitCode = WEXITSTATUS(status);
            return m_run;
        }
        if (WIFSIGNALED(status)) {
            return m_run;
        }
        atStop(status);
    }
}

bool Watch::isReady()
{
    int status = 0;
    if (::waitpid(m_process, &status, __WALL) != m_process || !WIFSTOPPED(status)) {
        m_run.problem = u"ptrace is forbidden here, so nothing was tested"_s;
        return false;
    }
    constexpr quint64 options = PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACECLONE
        | PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK;
    if (::ptrace(PTRACE_SETOPTIONS, m_process, nullptr, asPointer(options)) != 0) {
        giveUp(u"ptrace options: "_s + qt_error_string(errno));
        ::waitpid(m_process, &status, __WALL);
        return false;
    }
    return true;
}

void Watch::atStop(int status)
{
    const int signal = WSTOPSIG(status);
    if (signal == (SIGTRAP | 0x80)) {
        atCall();
    } else if (status >> 16 != 0) {
        giveUp(u"the operation has more than one thread or process"_s);
    } else {
        proceed(signal);
    }
}

void Watch::atCall()
{
    __ptrace_syscall_info info = {};
    if (::ptrace(PTRACE_GET_SYSCALL_INFO, m_process, asPointer(sizeof info), &info) <= 0) {
        giveUp(u"ptrace call: "_s + qt_error_string(errno));
        return;
    }
    if (info.op == PTRACE_SYSCALL_INFO_ENTRY) {
        atEntry(info);
    } else if (info.op == PTRACE_SYSCALL_INFO_EXIT) {
        atExit(info);
    }
    proceed(0);
}

void Watch::atEntry(const __ptrace_syscall_info &info)
{
    const quint64 mark = info.entry.nr == markNumber ? info.entry.args[0] : 0;
    if (mark == startMark || mark == endMark) {
        m_isWatching = mark == startMark;
        return;
    }
    if (!m_isWatching) {
        return;
    }
    SystemCall call {info.entry.nr, 0, {}, 0};
    std::copy_n(info.entry.args, call.arguments.size(), call.arguments.begin());
    call.occurrence = static_cast<int>(
        std::count_if(m_run.calls.begin(), m_run.calls.end(),
                      [&](const SystemCall &each) { return each.number == call.number; }));
    m_run.calls.push_back(call);
    strike(call);
}

void Watch::strike(const SystemCall &call)
{
    using Kind = Fault::Kind;
    if (m_cut && m_fault.kind == Kind::CutThenFail && !m_isCutCall && call.number == m_cut->number
        && call.arguments.front() == m_cut->arguments.front()) {
        m_cut.reset();
        answer(-m_fault.code);
        return;
    }
    if (isStruckFromHere(call)) {
        answer(-m_fault.code);
        return;
    }
    if (call.number != m_fault.number || call.occurrence != m_fault.occurrence
        || m_fault.kind == Kind::None) {
        return;
    }
    m_run.isHit = true;
    // No save is quite as long as the one that was watched: a check record varies in length.
    const quint64 length = std::min(m_fault.length, call.arguments.at(m_fault.argument));
    if (m_fault.kind == Kind::KillBefore) {
        skipCall(m_process);
        kill();
    } else if (m_fault.kind == Kind::KillAfter) {
        m_isKillDue = true;
    } else if (m_fault.kind == Kind::Fail || m_fault.kind == Kind::FailFromHere) {
        answer(-m_fault.code);
    } else if (m_fault.kind == Kind::Lie) {
        answer(static_cast<qint64>(length));
    } else {
        m_cut = call;
        m_isCutCall = true;
        m_isKillDue = m_fault.kind == Kind::CutThenKill;
        if (!setArgument(m_process, m_fault.argument, length)) {
            giveUp(u"changing an argument: "_s + qt_error_string(errno));
        }
    }
}

bool Watch::isStruckFromHere(const SystemCall &call) const
{
    return m_run.isHit && m_fault.kind == Fault::Kind::FailFromHere && !isMemoryCall(call.number);
}

void Watch::atExit(const __ptrace_syscall_info &info)
{
    if (!m_isWatching || m_run.calls.empty()) {
        return;
    }
    m_run.calls.back().result = info.exit.rval;
    if (m_result && !setResult(m_process, *m_result)) {
        giveUp(u"changing a result: "_s + qt_error_string(errno));
    }
    m_result.reset();
    if (m_isCutCall) {
        // The program counts on its registers being as it left them.
        setArgument(m_process, m_fault.argument, m_cut->arguments.at(m_fault.argument));
        m_isCutCall = false;
    }
    if (m_isKillDue) {
        kill();
    }
}

void Watch::answer(qint64 result)
{
    m_result = result;
    if (!skipCall(m_process)) {
        giveUp(u"skipping a call: "_s + qt_error_string(errno));
    }
}

void Watch::kill()
{
    m_run.isKilled = true;
    ::kill(m_process, SIGKILL);
}

void Watch::proceed(int signal)
{
    // Fails where the process has been killed meanwhile; the next wait tells.
    ::ptrace(PTRACE_SYSCALL, m_process, nullptr, asPointer(static_cast<quint64>(signal)));
}

void Watch::giveUp(const QString &problem)
{
    if (m_run.problem.isEmpty()) {
        m_run.problem = problem;
    }
    ::kill(m_process, SIGKILL);
}

} // namespace

QString Fault::text() const
{
    const char *what = "nothing";
    switch (kind) {
    case Kind::None:
        break;
    case Kind::KillBefore:
        what = "killed before";
        break;
    case Kind::KillAfter:
        what = "killed after";
        break;
    case Kind::Fail:
        what = "failing at";
        break;
    case Kind::FailFromHere:
        what = "failing from";
        break;
    case Kind::Cut:
        what = "cut at";
        break;
    case Kind::CutThenFail:
        what = "cut and then failing at";
        break;
    case Kind::CutThenKill:
        what = "cut and then killed at";
        break;
    case Kind::Lie:
        what = "believing without its being made";
        break;
    }
    return u"%1 call %2 (its no. %3), error %4, length %5"_s.arg(QLatin1StringView(what))
        .arg(number)
        .arg(occurrence)
        .arg(code)
        .arg(length);
}

bool isFlushCall(quint64 number)
{
    constexpr std::array<long, 4> numbers {SYS_fsync, SYS_fdatasync, SYS_syncfs,
                                           SYS_sync_file_range};
    return std::find(numbers.begin(), numbers.end(), static_cast<long>(number)) != numbers.end();
}

bool isMemoryCall(quint64 number)
{
    constexpr std::array<long, 6> numbers {SYS_mmap, SYS_munmap,   SYS_mremap,
                                           SYS_brk,  SYS_mprotect, SYS_madvise};
    return std::find(numbers.begin(), numbers.end(), static_cast<long>(number)) != numbers.end();
}

TracedRun runTraced(const std::function<int()> &operation, const Fault &fault)
{
    const pid_t process = ::fork();
    if (process < 0) {
        TracedRun run;
        run.problem = u"fork: "_s + qt_error_string(errno);
        return run;
    }
    if (process == 0) {
        runChild(operation);
    }
    return Watch(process, fault).run();
}

} // namespace quorvane
