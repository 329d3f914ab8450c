#pragma once

#include <QObject>

namespace quorvane {

/// What the desktop's session and the machine announce to everyone who listens.
class SessionEvents : public QObject
{
    Q_OBJECT

public:
    /// Lets the machine sleep: it waits for this after aboutToSleep, though not for long.
    virtual void readyToSleep() = 0;

Q_SIGNALS:
    /// The session's screen has been locked, or is to be. May be told more than once.
    void screenLocked();
    void aboutToSleep();
};

} // namespace quorvane
