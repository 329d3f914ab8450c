#pragma once

#include "platform/nswindow.h"

#include <QStringList>

#include <functional>
#include <optional>

namespace quorvane {

/// What an open panel offers.
struct NSOpenPanel
{
    QStringList allowedFileTypes; ///< Extensions without a dot; empty for any file.
    bool allowsMultipleSelection = false;
    QStringList packageTypes = {}; ///< Extensions of folders that are chosen like files.
    QString prompt = {}; ///< The title of the button that chooses; empty for the usual one.
};

/// What a save panel offers.
struct NSSavePanel
{
    QStringList allowedFileTypes; ///< The first one is added to a name without an extension.
    QString directory; ///< Empty for the last one used.
    QString name; ///< Empty for none.
    bool savesPackage = false; ///< A folder that has an allowed extension is replaced, not entered.
};

/// The file panels of the desktop.
class FilePanels
{
public:
    virtual ~FilePanels() = default;
    /// A panel of the program's own, before all windows. Empty where the user dismissed it.
    virtual void beginOpen(const NSOpenPanel &panel,
                           std::function<void(QStringList paths)> completion) = 0;
    /// The same as a sheet on the window.
    virtual void beginOpenSheet(NSWindow &window, const NSOpenPanel &panel,
                                std::function<void(QStringList paths)> completion) = 0;
    /// A sheet on the window. Nothing where the user dismissed it.
    virtual void beginSaveSheet(NSWindow &window, const NSSavePanel &panel,
                                std::function<void(std::optional<QString> path)> completion) = 0;
};

} // namespace quorvane
