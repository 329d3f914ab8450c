#include "document/qvrevertdoccontroller.h"

#include <QPointer>

namespace quorvane {

void QVRevertDocController::advancedLockDocument(NSDocument &document)
{
    const QPointer self(this);
    const QPointer pointer(&document);
    if (document.isDocumentEdited()) {
        document.saveDocument([self, pointer](bool didSave) {
            if (self && pointer) {
                self->document(*pointer, didSave);
            }
        });
        return;
    }
    mainQueue().addOperation([self, pointer] {
        if (self && pointer) {
            self->CloseAndReopenTheDoc(*pointer);
        }
    });
}

void QVRevertDocController::document(NSDocument &document, bool didSave)
{
    if (didSave) {
        CloseAndReopenTheDoc(document);
    }
}

void QVRevertDocController::CloseAndReopenTheDoc(NSDocument &document)
{
    if (const std::optional<QString> path = document.fileURL()) {
        openDocumentWithContentsOfURL(*path);
    }
}

} // namespace quorvane
