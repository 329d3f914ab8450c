#pragma once

#include <QString>

#include <array>
#include <functional>
#include <optional>
#include <vector>

namespace quorvane {

/// A system call that an operation made.
struct SystemCall
{
    quint64 number = 0;
    int occurrence = 0; ///< How many of that number came before it.
    std::array<quint64, 6> arguments = {};
    qint64 result = 0; ///< Below 0: minus the errno.
};

/// What befalls an operation at one of its calls.
struct Fault
{
    enum class Kind {
        None,
        KillBefore, ///< The process dies before the call is made.
        KillAfter, ///< ... and when it has been made.
        Fail, ///< The call is not made and fails with the code.
        FailFromHere, ///< This call and all behind it fail so, but for those that ask for memory.
        Cut, ///< The argument that is a length is made smaller.
        CutThenFail, ///< ... and the next call of that kind to the same file fails.
        CutThenKill, ///< ... and the process dies when the call has been made.
        Lie, ///< The call is not made, but its result is the length, as if it had been.
    };

    Kind kind = Kind::None;
    quint64 number = 0;
    int occurrence = 0;
    int code = 0;
    size_t argument = 0; ///< Which one is cut.
    quint64 length = 0; ///< To what.

    QString text() const; ///< For a complaint.
};

/// How an operation under watch ended.
struct TracedRun
{
    std::vector<SystemCall> calls;
    bool isHit = false; ///< Whether the fault's call was reached.
    bool isKilled = false; ///< By the fault.
    std::optional<int> exitCode; ///< The operation's result; none if it died.
    QString problem; ///< Why nothing can be said of the run; empty if something can.
};

/// Whether a call only asks for memory: a program may die of having none.
bool isMemoryCall(quint64 number);

/// Whether a call asks for content to be brought to the disk. That it fails shows nowhere but in
/// what the save answers.
bool isFlushCall(quint64 number);

/// Runs \a operation in a process of its own, watches each system call it makes from its start to
/// its end, and does \a fault to it. The operation has one thread and its result is 0 to 255.
TracedRun runTraced(const std::function<int()> &operation, const Fault &fault);

} // namespace quorvane
