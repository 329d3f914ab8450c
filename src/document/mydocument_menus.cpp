#include "document/mydocument.h"

namespace quorvane {

using namespace Qt::StringLiterals;

MenuItemState MyDocument::validateMenuItem(DocumentAction action) const
{
    switch (action) {
    case DocumentAction::EditPublicNote:
    case DocumentAction::ImportFromTEXT:
    case DocumentAction::ImportFromRTF:
    case DocumentAction::ImportFromRTFD:
    case DocumentAction::ExportToTEXT:
    case DocumentAction::ExportToRTF:
    case DocumentAction::ExportToRTFD:
        // Also while the document is read-only: these do not look at it.
        return {!isEncrypted(), {}, {}};
    case DocumentAction::MakePlainText:
        return {myIsEditable() && !isEncrypted(), {}, {}};
    case DocumentAction::SwitchReadAndWrite:
        return {!isEncrypted(), myIsEditable() ? u"Prevent Editing"_s : u"Allow Editing"_s, {}};
    case DocumentAction::SetReadOnly:
        return {validateUserInterfaceItem(action), {}, !myIsEditable()};
    case DocumentAction::SetReadAndWrite:
        return {validateUserInterfaceItem(action), {}, myIsEditable()};
    case DocumentAction::LockDocument:
        return {!isEncrypted() && !plainPassword().isEmpty() && fileURL(), {}, {}};
    default:
        return {validateUserInterfaceItem(action), {}, {}};
    }
}

} // namespace quorvane
