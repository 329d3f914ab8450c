#include "platform_qt/dbussessionevents.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString busService = u"org.freedesktop.DBus"_s;
const QString loginService = u"org.freedesktop.login1"_s;
const QString loginPath = u"/org/freedesktop/login1"_s;
const QString managerInterface = u"org.freedesktop.login1.Manager"_s;
const QString sessionInterface = u"org.freedesktop.login1.Session"_s;
const QString anyService;
const QString anyPath;

// The interface of each is called like its service.
const QStringList screenSavers {
    u"org.freedesktop.ScreenSaver"_s, u"org.gnome.ScreenSaver"_s,    u"org.xfce.ScreenSaver"_s,
    u"org.mate.ScreenSaver"_s,        u"org.cinnamon.ScreenSaver"_s,
};

QDBusMessage loginCall(const QString &path, const QString &interface, const QString &method,
                       const QVariantList &arguments)
{
    QDBusMessage call = QDBusMessage::createMethodCall(loginService, path, interface, method);
    call.setArguments(arguments);
    call.setAutoStartService(false);
    return call;
}

/// Hands the reply to \a then, unless \a context is gone by then.
void callAsync(const QDBusConnection &bus, const QDBusMessage &call, QObject &context,
               std::function<void(const QDBusPendingCall &)> then)
{
    auto *watcher = new QDBusPendingCallWatcher(bus.asyncCall(call), &context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &context,
                     [then = std::move(then)](QDBusPendingCallWatcher *finished) {
                         finished->deleteLater();
                         then(*finished);
                     });
}

} // namespace

DBusSessionEvents::DBusSessionEvents(BusConnector &sessionBus, BusConnector &systemBus)
    : m_sessionBus(sessionBus)
    , m_systemBus(systemBus)
{
    const auto onceFinished = [this](BusConnector &connector, const auto &listen) {
        connect(&connector, &BusConnector::finished, this, listen);
        if (connector.isFinished()) {
            QMetaObject::invokeMethod(this, listen, Qt::QueuedConnection);
        }
    };
    onceFinished(sessionBus, [this] { listenToScreenSavers(); });
    onceFinished(systemBus, [this] { listenToLogin(); });
}

void DBusSessionEvents::listenToScreenSavers()
{
    QDBusConnection bus = m_sessionBus.bus();
    for (const QString &screenSaver : screenSavers) {
        // By interface: to name the service would make the library wait for its owner.
        bus.connect(anyService, anyPath, screenSaver, u"ActiveChanged"_s, this,
                    SLOT(screenSaverActiveChanged(bool, QDBusMessage)));
    }
}

void DBusSessionEvents::screenSaverActiveChanged(bool isActive, const QDBusMessage &signal)
{
    if (isActive) {
        ifSentBy(signal.interface(), signal, m_sessionBus.bus(), [this] { Q_EMIT screenLocked(); });
    }
}

void DBusSessionEvents::listenToLogin()
{
    QDBusConnection bus = m_systemBus.bus();
    bus.connect(anyService, loginPath, managerInterface, u"PrepareForSleep"_s, this,
                SLOT(prepareForSleep(bool, QDBusMessage)));
    m_loginWatcher.setConnection(bus);
    m_loginWatcher.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    m_loginWatcher.addWatchedService(loginService);
    connect(&m_loginWatcher, &QDBusServiceWatcher::serviceRegistered, this,
            &DBusSessionEvents::meetLogin);
    meetLogin();
}

void DBusSessionEvents::meetLogin()
{
    m_mayDelaySleep = true;
    delaySleep();
    findOwnSession();
}

void DBusSessionEvents::delaySleep()
{
    const QDBusMessage call = loginCall(
        loginPath, managerInterface, u"Inhibit"_s,
        {u"sleep"_s, u"Quorvane"_s, u"Documents are being saved and locked"_s, u"delay"_s});
    callAsync(m_systemBus.bus(), call, *this, [this](const QDBusPendingCall &finished) {
        const QDBusPendingReply<QDBusUnixFileDescriptor> reply = finished;
        // One that comes when the sleep has begun would hold it up for nothing.
        if (reply.isValid() && m_mayDelaySleep) {
            m_sleepDelay = reply.value();
        }
    });
}

void DBusSessionEvents::prepareForSleep(bool begins, const QDBusMessage &signal)
{
    ifSentBy(loginService, signal, m_systemBus.bus(), [this, begins] {
        m_mayDelaySleep = !begins;
        if (begins) {
            Q_EMIT aboutToSleep();
        } else {
            delaySleep();
        }
    });
}

void DBusSessionEvents::readyToSleep()
{
    if (!m_mayDelaySleep) { // It may have woken up by now.
        m_sleepDelay = QDBusUnixFileDescriptor();
    }
}

// An own session is asked for by the name "auto": a process need not run in one, and what the
// environment says of it may be another's.
void DBusSessionEvents::findOwnSession()
{
    getSession(u"auto"_s, [this] { askForSessionId(); });
}

void DBusSessionEvents::getSession(const QString &id, const std::function<void()> &orElse)
{
    callAsync(m_systemBus.bus(), loginCall(loginPath, managerInterface, u"GetSession"_s, {id}),
              *this, [this, orElse](const QDBusPendingCall &finished) {
                  const QDBusPendingReply<QDBusObjectPath> reply = finished;
                  if (reply.isValid()) {
                      takeOwnSession(reply.value().path());
                  } else if (orElse) {
                      orElse();
                  }
              });
}

// Older ones know "auto" as an object only.
void DBusSessionEvents::askForSessionId()
{
    const QDBusMessage call =
        loginCall(loginPath + u"/session/auto"_s, u"org.freedesktop.DBus.Properties"_s, u"Get"_s,
                  {sessionInterface, u"Id"_s});
    callAsync(m_systemBus.bus(), call, *this, [this](const QDBusPendingCall &finished) {
        const QDBusPendingReply<QDBusVariant> reply = finished;
        if (reply.isValid()) {
            getSession(reply.value().variant().toString(), {});
        }
    });
}

void DBusSessionEvents::takeOwnSession(const QString &path)
{
    QDBusConnection bus = m_systemBus.bus();
    const auto lock = u"Lock"_s;
    if (!m_ownSession.isEmpty()) {
        bus.disconnect(anyService, m_ownSession, sessionInterface, lock, this,
                       SLOT(sessionLock(QDBusMessage)));
    }
    m_ownSession = path;
    bus.connect(anyService, m_ownSession, sessionInterface, lock, this,
                SLOT(sessionLock(QDBusMessage)));
}

void DBusSessionEvents::sessionLock(const QDBusMessage &signal)
{
    ifSentBy(loginService, signal, m_systemBus.bus(), [this] { Q_EMIT screenLocked(); });
}

void DBusSessionEvents::ifSentBy(const QString &service, const QDBusMessage &signal,
                                 const QDBusConnection &bus, std::function<void()> then)
{
    QDBusMessage call = QDBusMessage::createMethodCall(busService, u"/org/freedesktop/DBus"_s,
                                                       busService, u"GetNameOwner"_s);
    call << service;
    callAsync(
        bus, call, *this,
        [sender = signal.service(), then = std::move(then)](const QDBusPendingCall &finished) {
            const QDBusPendingReply<QString> reply = finished;
            if (reply.isValid() && reply.value() == sender) {
                then();
            }
        });
}

} // namespace quorvane
