#include "document/mydocument.h"

namespace quorvane {

void MyDocument::editPublicNote()
{
    if (myWindow && myPublicTextSheet) {
        myWindow->beginSheet(*myPublicTextSheet, {});
    }
}

void MyDocument::closePublicNoteSheet()
{
    if (myWindow && myPublicTextSheet) {
        myWindow->endSheet(*myPublicTextSheet); // which takes it off the screen, too
    }
}

} // namespace quorvane
