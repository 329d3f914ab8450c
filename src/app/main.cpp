#include "app/windowprogram.h"

#include <sys/resource.h>

int main(int argc, char **argv)
{
    // A dump of this process would hold the text and the password in the clear.
    const rlimit none {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    return quorvane::runWindowProgram(argc, argv);
}
