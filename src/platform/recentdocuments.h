#pragma once

#include <QObject>
#include <QStringList>

namespace quorvane {

/// The files that the user has lately opened or saved with the program. Nothing but their names and
/// times is kept.
class RecentDocuments : public QObject
{
    Q_OBJECT

public:
    static constexpr qsizetype mostPaths = 10;

    virtual QStringList paths() = 0; ///< The newest first, at most mostPaths.
    /// Whether there is a file under that path at this moment.
    virtual bool isThere(const QString &path) const = 0;
    virtual void note(const QString &path) = 0; ///< Makes it the newest.
    virtual void remove(const QString &path) = 0;
    virtual void clear() = 0;

Q_SIGNALS:
    void changed(); ///< By this program.
};

} // namespace quorvane
