#include "app/windowprogram.h"
#include "platform/coredumps.h"
#include "platform/largeblocks.h"

int main(int argc, char **argv)
{
    quorvane::turnCoreDumpsOff();
    quorvane::returnLargeBlocksAtOnce();
    return quorvane::runWindowProgram(argc, argv);
}
