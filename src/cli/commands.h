#pragma once

#include "cli/arguments.h"
#include "cli/failure.h"

namespace quorvane {

// What the commands of the program do; the table of them is in terminalprogram.cpp.

ExitCode runInfo(const Arguments &arguments);
ExitCode runCat(const Arguments &arguments);
ExitCode runCreate(const Arguments &arguments);
ExitCode runPasswd(const Arguments &arguments);
ExitCode runNote(const Arguments &arguments);
ExitCode runMigrate(const Arguments &arguments);
ExitCode runVerify(const Arguments &arguments);

/// Tells of the failure. \return its code.
ExitCode fail(const QString &path, const Failure &failure);

/// The code of the first that is not Done.
ExitCode firstFailure(ExitCode before, ExitCode now);

} // namespace quorvane
