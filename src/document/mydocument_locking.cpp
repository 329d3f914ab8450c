#include "document/mydocument.h"

#include <QPointer>

namespace quorvane {

using namespace Qt::StringLiterals;

void MyDocument::lockDocument()
{
    NSWindow *window = windowForSheet();
    if (!window) {
        return;
    }
    const QString reminder =
        u"To browse the document data again you will need to re-insert the master password"_s;
    const NSAlert alert {
        u"Lock Document back to the crypted state?"_s,
        isDocumentEdited()
            ? u"Before locking the document you need to save it on disk.\n"_s + reminder
            : reminder,
        {u"OK"_s, u"Cancel"_s},
    };
    window->beginAlert(alert, [self = QPointer(this)](AlertAnswer answer) {
        if (self && answer == AlertAnswer::First) {
            self->later([self] { self->doLockDocument(); });
        }
    });
}

void MyDocument::lockAutomatically()
{
    if (isEncrypted() || plainPassword().isEmpty() || !fileURL()) {
        return;
    }
    if (NSSheet *sheet = myWindow ? myWindow->attachedSheet() : nullptr) {
        myWindow->endSheet(*sheet);
    }
    later([this] { doLockDocument(); });
}

void MyDocument::doLockDocument()
{
    m_makeToolbarVisibleAtDecrypt = modernToolbar && modernToolbar->isVisible();
    m_myWinRectToUse = myWindow ? myWindow->frame() : NSRect();
    encryptData();
    setIsEncrypted(true);
    // The lock itself writes nothing. What was not saved yet goes to the file in its locked form,
    // since a try of a password takes the edited mark away and a close asks nothing.
    later([this] { autosave(); });
    if (!myWindow) {
        return;
    }
    modernToolbar->setVisible(false);
    const NSRect frame = lockedFrame();
    myWindow->setFrame(frame, true);
    myWindow->setMaxSize(myWindow->minSize());
    myWindow->setShowsResizeIndicator(false);
    myWindow->center();
}

} // namespace quorvane
