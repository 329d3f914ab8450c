#pragma once

#include "cli/failure.h"

#include <QStringList>

#include <atomic>
#include <functional>
#include <vector>

namespace quorvane {

/// Moves documents of every accepted version to the current one, on all cores.
class Migration final
{
public:
    enum class State {
        Waiting, ///< Of an older version, and to be saved.
        Current, ///< Of the current version: left alone.
        Opened, ///< Its password was tried and opens it; nothing was written.
        Migrated,
        Failed,
        Twice, ///< The same file as one before it.
    };

    struct Item
    {
        QString path;
        quint64 version = 0; ///< As it was found; 0 also where it could not be.
        bool isBlowfish = false;
        State state = State::Waiting;
        Failure failure; ///< Where it failed.
    };

    /// Looks at every file, without a password.
    explicit Migration(const QStringList &paths);

    const std::vector<Item> &items() const { return m_items; }

    qsizetype count(State state) const;
    bool hasBlowfish() const;

    enum class Mode { TryOnly, Save };

    /// Works at all that wait. A failure leaves its file as it was and the others alone.
    /// \a progressed is called after each one, by one thread at a time. Once \a stop is set, no
    /// further one is begun.
    void run(const QString &password, Mode mode, const std::function<void()> &progressed,
             const std::atomic<bool> &stop);

private:
    std::vector<Item> m_items;
};

} // namespace quorvane
