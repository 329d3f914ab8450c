#pragma once

#include "savetorture/tracedrun.h"

#include <QStringList>

namespace quorvane {

/// A save to be broken off at each of its system calls. The calls are listed by watching it once,
/// so a call that it makes tomorrow is covered without being named.
struct SaveUnderTorture
{
    enum Answer {
        Saved = 10,
        Refused = 11, ///< The save tells that it failed and that the old state stands.
        SavedUnsurely = 12, ///< ... that it failed, but that the new state stands.
    };
    enum class State { Old, New, Broken };

    std::function<void()> prepare; ///< Sets up the old state.
    std::function<Answer()> save;
    std::function<State()> look; ///< What is found there now.
    std::function<QStringList()> leftovers; ///< What lies there beside it.
};

struct TortureReport
{
    int calls = 0; ///< That the undisturbed save makes.
    int runs = 0;
    QStringList complaints;
};

/// Breaks \a save off in every way at every call.
TortureReport torture(const SaveUnderTorture &save);

/// Watches \a save undisturbed.
TracedRun watch(const SaveUnderTorture &save);

} // namespace quorvane
