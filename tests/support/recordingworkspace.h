#pragma once

#include "platform/nsworkspace.h"

#include <QList>

namespace quorvane {

class RecordingWorkspace final : public NSWorkspace
{
public:
    bool openURL(const QUrl &url) override
    {
        opened.append(url);
        return opens;
    }

    QList<QUrl> opened;
    bool opens = true; ///< What openURL answers.
};

} // namespace quorvane
