#pragma once

#include <QString>

namespace quorvane {

/// The right to read a file that the user has chosen in an earlier run: asked for before it is
/// read, and given back afterwards.
class SecurityScopedAccess
{
public:
    virtual ~SecurityScopedAccess() = default;
    virtual bool startAccessingSecurityScopedResource(const QString &path) = 0;
    virtual void stopAccessingSecurityScopedResource(const QString &path) = 0;
};

/// Where modes alone decide: access is given to a file that can be read, and needs no giving back.
class FileModeAccess final : public SecurityScopedAccess
{
public:
    bool startAccessingSecurityScopedResource(const QString &path) override;
    void stopAccessingSecurityScopedResource(const QString &path) override;
};

} // namespace quorvane
