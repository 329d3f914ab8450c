#pragma once

#include "platform/nsworkspace.h"

namespace quorvane {

/// Hands addresses to the desktop.
class QtWorkspace final : public NSWorkspace
{
public:
    /// \return false for every other scheme, and where the desktop has no program for it.
    bool openURL(const QUrl &url) override;
    bool openFile(const QString &path) override;
    /// Neither what may be executed nor a starter of the desktop.
    bool openLinkedFile(const QString &path) override;
    /// Where no file manager answers on the session bus, the file's folder is opened.
    void selectFileInFileViewer(const QString &path) override;
};

} // namespace quorvane
