#pragma once

#include <QUrl>

namespace quorvane {

/// Opens addresses in the user's own programs: http, https and mailto only.
class NSWorkspace
{
public:
    virtual ~NSWorkspace() = default;
    virtual bool openURL(const QUrl &url) = 0;
};

} // namespace quorvane
