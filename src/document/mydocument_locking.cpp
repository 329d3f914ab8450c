#include "document/mydocument.h"
#include "document/qvrevertdoccontroller.h"

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
    endSheets();
    later([this] {
        endSheets(); // what the ends of the others have begun
        doLockDocument();
    });
}

void MyDocument::doLockDocument()
{
    if (m_isSealed) {
        // Reverted since the lock was queued: what is in memory does not fit the fields of the
        // file.
        return;
    }
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

void MyDocument::didDismissLockDocument(int returnCode)
{
    auto *controller =
        qobject_cast<QVRevertDocController *>(NSDocumentController::sharedDocumentController());
    if (controller && returnCode == static_cast<int>(AlertAnswer::First)) {
        controller->advancedLockDocument(*this);
    }
}

} // namespace quorvane
