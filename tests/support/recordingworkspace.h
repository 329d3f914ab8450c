#pragma once

#include "platform/nsworkspace.h"

#include <QList>
#include <QStringList>

namespace quorvane {

class RecordingWorkspace final : public NSWorkspace
{
public:
    bool openURL(const QUrl &url) override
    {
        opened.append(url);
        return opens;
    }

    bool openFile(const QString &path) override
    {
        openedFiles.append(path);
        return opens;
    }

    bool openLinkedFile(const QString &path) override
    {
        openedLinkedFiles.append(path);
        return opens;
    }

    void selectFileInFileViewer(const QString &path) override { selectedFiles.append(path); }

    QList<QUrl> opened;
    QStringList openedFiles;
    QStringList openedLinkedFiles;
    QStringList selectedFiles;
    bool opens = true; ///< What openURL answers.
};

} // namespace quorvane
