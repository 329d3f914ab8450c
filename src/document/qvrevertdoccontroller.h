#pragma once

#include "platform/nsdocumentcontroller.h"

namespace quorvane {

/// The program's document controller, with a second road to a locked document: save it, and open
/// its file again. Nothing takes that road of itself.
class QVRevertDocController final : public NSDocumentController
{
    Q_OBJECT

public:
    using NSDocumentController::NSDocumentController;

    /// Saves an edited document first, and opens its file again once it is saved.
    void advancedLockDocument(NSDocument &document);
    /// Told when that save has ended.
    void document(NSDocument &document, bool didSave);
    /// In spite of its name it closes nothing: a document that is open comes forward.
    void CloseAndReopenTheDoc(NSDocument &document);
};

} // namespace quorvane
