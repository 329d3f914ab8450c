#include "savetorture/savetorture.h"

#include <cerrno>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 pageLength = 4096;
constexpr qint64 leastLength = 64; // what is less is no length of content, but perhaps a descriptor
constexpr size_t mostComplaints = 20;

constexpr std::array codes {EPERM,  ENOENT,       EINTR,  EIO,    EBADF,      EAGAIN, ENOMEM,
                            EACCES, EBUSY,        EEXIST, EINVAL, EMFILE,     EFBIG,  ENOSPC,
                            EROFS,  ENAMETOOLONG, ENOSYS, ELOOP,  EOPNOTSUPP, ESTALE, EDQUOT};
constexpr std::array lastingCodes {EIO, ENOSPC, EROFS, EDQUOT, EACCES};

using Kind = Fault::Kind;

/// Which argument of a call is the length that its result reports; none if it has none.
std::optional<size_t> lengthArgument(const SystemCall &call)
{
    for (size_t i = call.arguments.size(); i-- > 1;) {
        if (call.result > leastLength && call.arguments.at(i) >= static_cast<quint64>(call.result)
            && call.arguments.at(i) < quint64(1) << 32) {
            return i;
        }
    }
    return std::nullopt;
}

std::vector<Fault> cutsOf(const SystemCall &call)
{
    std::vector<Fault> cuts;
    const std::optional<size_t> argument = lengthArgument(call);
    if (!argument) {
        return cuts;
    }
    const Fault cut {Kind::Cut, call.number, call.occurrence, 0, *argument, 0};
    const auto add = [&](Kind kind, int code, quint64 length) {
        cuts.push_back(cut);
        cuts.back().kind = kind;
        cuts.back().code = code;
        cuts.back().length = length;
    };
    const auto whole = static_cast<quint64>(call.result);
    add(Kind::Lie, 0, whole);
    add(Kind::Cut, 0, 0);
    add(Kind::Cut, 0, 1);
    add(Kind::Cut, 0, whole - 1);
    for (quint64 length = pageLength; length < whole; length += pageLength) {
        add(Kind::Cut, 0, length);
        add(Kind::CutThenFail, ENOSPC, length);
        add(Kind::CutThenFail, EIO, length);
        add(Kind::CutThenKill, 0, length);
    }
    return cuts;
}

std::vector<Fault> faultsOf(const std::vector<SystemCall> &calls)
{
    std::vector<Fault> faults;
    for (const SystemCall &call : calls) {
        const auto add = [&](Kind kind, int code) {
            faults.push_back({kind, call.number, call.occurrence, code, 0, 0});
        };
        add(Kind::KillBefore, 0);
        add(Kind::KillAfter, 0);
        for (const int code : codes) {
            add(Kind::Fail, code);
        }
        for (const int code : lastingCodes) {
            add(Kind::FailFromHere, code);
        }
        const std::vector<Fault> cuts = cutsOf(call);
        faults.insert(faults.end(), cuts.begin(), cuts.end());
    }
    return faults;
}

/// \return what is wrong with how the run ended; empty if nothing is.
QString complaintAt(const SaveUnderTorture &save, const Fault &fault, const TracedRun &run)
{
    using State = SaveUnderTorture::State;
    if (!run.problem.isEmpty()) {
        return run.problem;
    }
    const bool mayDie = isMemoryCall(fault.number);
    if (!run.isHit && fault.kind != Kind::None) {
        return mayDie ? QString() : u"the call was not made again"_s;
    }
    const State state = save.look();
    if (state == State::Broken) {
        return u"neither the old nor the new state is there"_s;
    }
    const bool isAnswer = run.exitCode && *run.exitCode >= SaveUnderTorture::Saved
        && *run.exitCode <= SaveUnderTorture::SavedUnsurely;
    if (!isAnswer) {
        return run.isKilled || mayDie ? QString() : u"the save died of it"_s;
    }
    const bool isSaved = run.exitCode == SaveUnderTorture::Saved;
    if (fault.kind == Kind::Cut && fault.length > 0 && !isSaved) {
        return u"a short count is no failure"_s;
    }
    if (fault.kind == Kind::Fail && fault.code == EIO && isFlushCall(fault.number) && isSaved) {
        return u"told as saved, but the disk did not take it"_s;
    }
    const State told = run.exitCode == SaveUnderTorture::Refused ? State::Old : State::New;
    if (state != told) {
        return told == State::Old ? u"told as failed, but the new state stands"_s
                                  : u"told as saved, but the old state stands"_s;
    }
    const QStringList leftovers = save.leftovers();
    if (!leftovers.isEmpty() && fault.kind != Kind::FailFromHere) {
        return u"left behind: "_s + leftovers.join(u' ');
    }
    return QString();
}

/// Whatever a broken save left there, the next one has to go through.
QString complaintAboutNextSave(const SaveUnderTorture &save)
{
    const bool isSaved = save.save() == SaveUnderTorture::Saved;
    return isSaved && save.look() == SaveUnderTorture::State::New
        ? QString()
        : u"the next save does not go through"_s;
}

} // namespace

TracedRun watch(const SaveUnderTorture &save)
{
    // Libraries and sanitizers do some things once a process: they are not part of the save.
    save.prepare();
    static_cast<void>(save.save());
    save.prepare();
    return runTraced([&save] { return static_cast<int>(save.save()); }, Fault());
}

TortureReport torture(const SaveUnderTorture &save)
{
    TortureReport report;
    const TracedRun undisturbed = watch(save);
    report.calls = static_cast<int>(undisturbed.calls.size());
    const QString complaint = complaintAt(save, Fault(), undisturbed);
    if (!complaint.isEmpty() || undisturbed.exitCode != SaveUnderTorture::Saved) {
        report.complaints.append(u"undisturbed: "_s + complaint);
        return report;
    }
    for (const Fault &fault : faultsOf(undisturbed.calls)) {
        save.prepare();
        const TracedRun run = runTraced([&save] { return static_cast<int>(save.save()); }, fault);
        ++report.runs;
        QString found = complaintAt(save, fault, run);
        if (found.isEmpty() && !run.exitCode) {
            found = complaintAboutNextSave(save);
        }
        if (!found.isEmpty()) {
            report.complaints.append(fault.text() + u": "_s + found);
        }
        if (static_cast<size_t>(report.complaints.size()) >= mostComplaints) {
            break;
        }
    }
    return report;
}

} // namespace quorvane
