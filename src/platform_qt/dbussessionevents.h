#pragma once

#include "platform/sessionevents.h"
#include "platform_qt/busconnector.h"

#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusUnixFileDescriptor>

#include <functional>

namespace quorvane {

/// The session's events from the screen savers of the common desktops and from logind.
///
/// Nothing here waits for a bus or a service; where one is missing there is silence, and a service
/// that comes later is heard. A signal counts if its sender owns the name that it should come from.
class DBusSessionEvents final : public SessionEvents
{
    Q_OBJECT

public:
    /// Both must outlive this.
    DBusSessionEvents(BusConnector &sessionBus, BusConnector &systemBus);

    void readyToSleep() override;

private Q_SLOTS:
    void screenSaverActiveChanged(bool isActive, const QDBusMessage &signal);
    void prepareForSleep(bool begins, const QDBusMessage &signal);
    void sessionLock(const QDBusMessage &signal);

private:
    void listenToScreenSavers();
    void listenToLogin();
    void meetLogin();
    void delaySleep();
    void findOwnSession();
    void askForSessionId();
    void getSession(const QString &id, const std::function<void()> &orElse);
    void takeOwnSession(const QString &path);
    /// Calls \a then where the signal comes from the owner of that name.
    void ifSentBy(const QString &service, const QDBusMessage &signal, const QDBusConnection &bus,
                  std::function<void()> then);

    BusConnector &m_sessionBus;
    BusConnector &m_systemBus;
    QDBusServiceWatcher m_loginWatcher;
    QDBusUnixFileDescriptor m_sleepDelay; ///< The machine waits with its sleep while it is valid.
    bool m_mayDelaySleep = true; ///< No sleep has been announced since the last waking.
    QString m_ownSession; ///< Its object path; empty where none is known.
};

} // namespace quorvane
