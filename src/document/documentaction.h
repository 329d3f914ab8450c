#pragma once

#include <QString>

#include <functional>
#include <map>
#include <optional>

namespace quorvane {

/// The commands that a document decides about.
enum class DocumentAction {
    SaveDocument,
    SaveDocumentAs,
    DocumentPassword,
    RevertDocumentToSaved,
    RunPageLayout,
    PrintPreview,
    PrintDocument,
    EditPublicNote,
    ImportFromTEXT,
    ImportFromRTF,
    ImportFromRTFD,
    ExportToTEXT,
    ExportToRTF,
    ExportToRTFD,
    MakePlainText,
    SwitchReadAndWrite,
    SetReadOnly,
    SetReadAndWrite,
    LockDocument,
};

/// How a command's menu item stands at this moment.
struct MenuItemState
{
    bool enabled = false;
    std::optional<QString> title; ///< Absent where the item keeps its own.
    std::optional<bool> on; ///< The check mark; absent where the item has none.
    bool operator==(const MenuItemState &) const = default;
};

/// What each command does in one document's window. A command without an entry is not offered.
using DocumentCommands = std::map<DocumentAction, std::function<void()>>;

} // namespace quorvane
