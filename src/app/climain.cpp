#include "cli/terminalprogram.h"
#include "platform/coredumps.h"

int main(int argc, char **argv)
{
    quorvane::turnCoreDumpsOff();
    return quorvane::runTerminalProgram(argc, argv);
}
