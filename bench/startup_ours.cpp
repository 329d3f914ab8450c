// The window program itself, up to its first painted window.
#include "app/windowprogram.h"
#include "firstpaint.h"

namespace {

void watch()
{
    qApp->installEventFilter(new EndAfterFirstPaint);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(watch)

int main(int argc, char **argv)
{
    return quorvane::runWindowProgram(argc, argv);
}
