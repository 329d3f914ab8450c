#pragma once

#include "platform/securityscopedaccess.h"

#include <QStringList>

namespace quorvane {

/// Access to files that is given, and noted.
class RecordingAccess final : public SecurityScopedAccess
{
public:
    bool startAccessingSecurityScopedResource(const QString &) override
    {
        calls << QStringLiteral("start");
        return gives;
    }

    void stopAccessingSecurityScopedResource(const QString &) override
    {
        calls << QStringLiteral("stop");
    }

    QStringList calls;
    bool gives = true;
};

} // namespace quorvane
