#pragma once

namespace quorvane {

/// Builds the adapters, hands them over and runs the window program. \return the exit code.
int runWindowProgram(int argc, char **argv);

} // namespace quorvane
