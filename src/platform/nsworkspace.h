#pragma once

#include <QString>
#include <QUrl>

namespace quorvane {

/// Opens things in the user's own programs.
class NSWorkspace
{
public:
    virtual ~NSWorkspace() = default;
    /// Http, https and mailto only. \return whether a program was found.
    virtual bool openURL(const QUrl &url) = 0;
    /// A file of the program's own, never one that a document names.
    virtual bool openFile(const QString &path) = 0;
    /// A file that a link of a document names, once the user was shown the path and agreed. Nothing
    /// that could run is opened. \return whether it is there and a program was found.
    virtual bool openLinkedFile(const QString &path) = 0;
    /// Shows the file in the file viewer, selected, without opening it.
    virtual void selectFileInFileViewer(const QString &path) = 0;
};

} // namespace quorvane
