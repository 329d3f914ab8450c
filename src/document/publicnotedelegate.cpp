#include "document/publicnotedelegate.h"

#include "document/mydocument.h"

namespace quorvane {

void PublicNoteDelegate::textDidChange()
{
    doc.updateChangeCount(NSDocumentChangeType::Done);
}

void PublicNoteDelegate::textDidEndEditing()
{
    doc.updateChangeCount(NSDocumentChangeType::Done);
}

} // namespace quorvane
