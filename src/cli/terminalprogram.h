#pragma once

namespace quorvane {

/// The program for the terminal, from its arguments to its exit code.
int runTerminalProgram(int argc, char **argv);

} // namespace quorvane
