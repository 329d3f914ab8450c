#include "app/windowprogram.h"
#include "platform/coredumps.h"

int main(int argc, char **argv)
{
    quorvane::turnCoreDumpsOff();
    return quorvane::runWindowProgram(argc, argv);
}
