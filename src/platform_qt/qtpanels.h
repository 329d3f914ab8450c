#pragma once

#include "platform/panels.h"
#include "platform/sheetqueue.h"

#include <QString>

namespace quorvane {

/// The file panels, in Qt's own look: one of the desktop's could not be ended by a lock. The folder
/// last used is kept while the program runs, and nothing of it is written to the disk.
class QtPanels final : public FilePanels
{
public:
    explicit QtPanels(NSOperationQueue &queue);

    void beginOpen(const NSOpenPanel &panel,
                   std::function<void(QStringList paths)> completion) override;
    /// The window is a QtWindow, here and below.
    void beginOpenSheet(NSWindow &window, const NSOpenPanel &panel,
                        std::function<void(QStringList paths)> completion) override;
    /// An existing file is asked about before it is answered.
    void beginSaveSheet(NSWindow &window, const NSSavePanel &panel,
                        std::function<void(std::optional<QString> path)> completion) override;

private:
    SheetQueue m_openPanels;
    QString m_directory;
};

} // namespace quorvane
