#pragma once

#include "platform/recentdocuments.h"

namespace quorvane {

/// Recent documents in memory.
class ListedRecents final : public RecentDocuments
{
public:
    QStringList paths() override { return listed; }

    bool isThere(const QString &path) const override { return !missing.contains(path); }

    void note(const QString &path) override
    {
        listed.removeAll(path);
        listed.prepend(path);
        Q_EMIT changed();
    }

    void remove(const QString &path) override
    {
        listed.removeAll(path);
        Q_EMIT changed();
    }

    void clear() override
    {
        listed.clear();
        Q_EMIT changed();
    }

    QStringList listed;
    QStringList missing; ///< Paths under which there is no file.
};

} // namespace quorvane
