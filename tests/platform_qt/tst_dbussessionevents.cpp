#include "platform_qt/dbussessionevents.h"
#include "support/privatebus.h"

#include <QDBusContext>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusUnixFileDescriptor>
#include <QDBusVariant>
#include <QSignalSpy>
#include <QTest>

#include <array>

#include <poll.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString loginService = u"org.freedesktop.login1"_s;
const QString loginPath = u"/org/freedesktop/login1"_s;
const QString managerInterface = u"org.freedesktop.login1.Manager"_s;
const QString sessionInterface = u"org.freedesktop.login1.Session"_s;
const QString ownSession = u"/org/freedesktop/login1/session/_32"_s;

QDBusMessage signalOf(const QString &path, const QString &interface, const QString &name,
                      const QVariantList &arguments = {})
{
    QDBusMessage signal = QDBusMessage::createSignal(path, interface, name);
    signal.setArguments(arguments);
    return signal;
}

// All that the connection has sent is on the bus, and all that was there for it has arrived.
void settle(const QDBusConnection &bus)
{
    bus.call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s,
                                            u"org.freedesktop.DBus.Peer"_s, u"Ping"_s));
    QCoreApplication::processEvents();
}

} // namespace

/// What of logind the program needs, on a connection of its own.
class Login final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Manager")

public:
    explicit Login(QDBusConnection bus)
        : m_bus(std::move(bus))
    { }

    ~Login() override { leave(); }

    bool come()
    {
        return m_bus.registerObject(loginPath, this, QDBusConnection::ExportScriptableSlots)
            && m_bus.registerService(loginService);
    }

    void leave()
    {
        m_bus.unregisterService(loginService);
        m_bus.unregisterObject(loginPath);
        closeEnd();
    }

    bool send(const QDBusMessage &signal) { return m_bus.send(signal); }

    bool announceSleep(bool begins)
    {
        return send(signalOf(loginPath, managerInterface, u"PrepareForSleep"_s, {begins}));
    }

    /// Whether the last inhibitor that was given out is still held.
    bool isDelayed() const
    {
        pollfd end {m_end, POLLIN, 0};
        return m_end >= 0 && poll(&end, 1, 0) == 0;
    }

    bool knowsAuto = true;
    QList<QStringList> inhibits;
    QStringList askedSessions;

public Q_SLOTS:

    Q_SCRIPTABLE QDBusUnixFileDescriptor Inhibit(const QString &what, const QString &who,
                                                 const QString &why, const QString &mode)
    {
        inhibits << QStringList {what, who, why, mode};
        closeEnd();
        std::array<int, 2> ends {};
        if (pipe(ends.data()) != 0) {
            return {};
        }
        m_end = ends[0];
        QDBusUnixFileDescriptor given;
        given.giveFileDescriptor(ends[1]);
        return given;
    }

    Q_SCRIPTABLE QDBusObjectPath GetSession(const QString &id)
    {
        askedSessions << id;
        if (id == "auto"_L1 && !knowsAuto) {
            sendErrorReply(u"org.freedesktop.login1.NoSuchSession"_s);
            return {};
        }
        return QDBusObjectPath(ownSession);
    }

private:
    void closeEnd()
    {
        if (m_end >= 0) {
            close(m_end);
        }
        m_end = -1;
    }

    QDBusConnection m_bus;
    int m_end = -1;
};

/// The object that stands for the caller's session, with its Id.
class AutoSession final : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.login1.Session")
    Q_PROPERTY(QString Id READ id)

public:
    QString id() const { return u"2"_s; }
};

class TestDBusSessionEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void aScreenSaverThatBecomesActiveIsTold_data();
    void aScreenSaverThatBecomesActiveIsTold();
    void onlyTheOwnerOfTheNameIsBelieved();
    void theMachineSleepsWhenWeAreReady();
    void theOwnSessionsLockIsTold_data();
    void theOwnSessionsLockIsTold();
    void aServiceThatComesLaterIsHeard();
    void aForgedSleepIsNotBelieved();

private:
    bool isListening();

    PrivateBus m_sessionDaemon;
    PrivateBus m_systemDaemon;
    std::optional<BusConnector> m_sessionBus;
    std::optional<BusConnector> m_systemBus;
    std::optional<DBusSessionEvents> m_events;
    std::optional<QSignalSpy> m_locked;
    std::optional<QSignalSpy> m_sleep;
};

void TestDBusSessionEvents::initTestCase()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_sessionDaemon.address());
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_systemDaemon.address());
    m_sessionBus.emplace(QDBusConnection::SessionBus);
    m_systemBus.emplace(QDBusConnection::SystemBus);
    QVERIFY(m_sessionBus->waitForFinished(QDeadlineTimer::Forever));
    QVERIFY(m_systemBus->waitForFinished(QDeadlineTimer::Forever));
    QVERIFY(m_sessionBus->bus().isConnected() && m_systemBus->bus().isConnected());
}

void TestDBusSessionEvents::init()
{
    m_events.emplace(*m_sessionBus, *m_systemBus);
    m_locked.emplace(&*m_events, &SessionEvents::screenLocked);
    m_sleep.emplace(&*m_events, &SessionEvents::aboutToSleep);
}

void TestDBusSessionEvents::cleanup()
{
    m_events.reset();
}

// Once a signal of a screen saver arrives that comes before any other, all matches are in place.
bool TestDBusSessionEvents::isListening()
{
    const QString name = u"org.freedesktop.ScreenSaver"_s;
    QDBusConnection probe = m_sessionDaemon.connectAs(u"probe"_s);
    if (!probe.registerService(name)) {
        return false;
    }
    const bool isHeard = QTest::qWaitFor([&] {
        probe.send(signalOf(u"/"_s, name, u"ActiveChanged"_s, {true}));
        QCoreApplication::processEvents();
        return !m_locked->isEmpty();
    });
    probe.unregisterService(name);
    QDBusConnection::disconnectFromBus(u"probe"_s);
    settle(m_sessionBus->bus()); // the other signals have come, too
    settle(m_sessionBus->bus()); // and the answers to what was asked about them
    return isHeard;
}

void TestDBusSessionEvents::aScreenSaverThatBecomesActiveIsTold_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");
    const std::pair<QString, QString> rows[] = {
        {u"org.freedesktop.ScreenSaver"_s, u"/org/freedesktop/ScreenSaver"_s},
        {u"org.freedesktop.ScreenSaver"_s, u"/ScreenSaver"_s},
        {u"org.gnome.ScreenSaver"_s, u"/org/gnome/ScreenSaver"_s},
        {u"org.xfce.ScreenSaver"_s, u"/org/xfce/ScreenSaver"_s},
        {u"org.mate.ScreenSaver"_s, u"/org/mate/ScreenSaver"_s},
        {u"org.cinnamon.ScreenSaver"_s, u"/org/cinnamon/ScreenSaver"_s},
    };
    for (const auto &[name, path] : rows) {
        QTest::addRow("%s at %s", qPrintable(name), qPrintable(path)) << name << path;
    }
}

void TestDBusSessionEvents::aScreenSaverThatBecomesActiveIsTold()
{
    QFETCH(QString, name);
    QFETCH(QString, path);
    QVERIFY(isListening());
    const auto before = m_locked->size();
    QDBusConnection screenSaver = m_sessionDaemon.connectAs(u"screen saver"_s);
    QVERIFY(screenSaver.registerService(name));
    for (const bool isActive : {false, true}) {
        QVERIFY(screenSaver.send(signalOf(path, name, u"ActiveChanged"_s, {isActive})));
    }
    QTRY_COMPARE(m_locked->size(), before + 1);
    screenSaver.unregisterService(name);
}

void TestDBusSessionEvents::onlyTheOwnerOfTheNameIsBelieved()
{
    const QString name = u"org.gnome.ScreenSaver"_s;
    QVERIFY(isListening());
    const auto before = m_locked->size();
    QDBusConnection owner = m_sessionDaemon.connectAs(u"screen saver"_s);
    QVERIFY(owner.registerService(name));
    QDBusConnection forger = m_sessionDaemon.connectAs(u"forger"_s);
    const QDBusMessage active =
        signalOf(u"/org/gnome/ScreenSaver"_s, name, u"ActiveChanged"_s, {true});
    QVERIFY(forger.send(active));
    settle(forger);
    QVERIFY(owner.send(active));
    settle(owner);
    settle(m_sessionBus->bus()); // the signals have come, and the questions about them are asked
    settle(m_sessionBus->bus()); // the answers, too
    QCOMPARE(m_locked->size(), before + 1);
    owner.unregisterService(name);
}

void TestDBusSessionEvents::theMachineSleepsWhenWeAreReady()
{
    Login login(m_systemDaemon.connectAs(u"login"_s));
    QVERIFY(login.come());
    QTRY_VERIFY(login.isDelayed());
    QCOMPARE(login.inhibits.last().first(), u"sleep"_s);
    QCOMPARE(login.inhibits.last().last(), u"delay"_s);
    for (int night = 1; night <= 2; ++night) {
        QVERIFY(login.announceSleep(true));
        QTRY_COMPARE(m_sleep->size(), night);
        QVERIFY(login.isDelayed());
        m_events->readyToSleep();
        QVERIFY(!login.isDelayed());
        QVERIFY(login.announceSleep(false));
        QTRY_VERIFY(login.isDelayed());
    }
    QCOMPARE(m_sleep->size(), 2);
}

void TestDBusSessionEvents::theOwnSessionsLockIsTold_data()
{
    QTest::addColumn<bool>("knowsAuto");
    QTest::addColumn<QStringList>("asked");
    QTest::newRow("the manager knows the session of the caller") << true << QStringList {u"auto"_s};
    QTest::newRow("only the object of that name does") << false << QStringList {u"auto"_s, u"2"_s};
}

void TestDBusSessionEvents::theOwnSessionsLockIsTold()
{
    QFETCH(bool, knowsAuto);
    QFETCH(QStringList, asked);
    qputenv("XDG_SESSION_ID", "17"); // another's, or an old one
    QDBusConnection bus = m_systemDaemon.connectAs(u"login"_s);
    AutoSession session;
    QVERIFY(bus.registerObject(loginPath + u"/session/auto"_s, &session,
                               QDBusConnection::ExportAllProperties));
    Login login(bus);
    login.knowsAuto = knowsAuto;
    QVERIFY(login.come());
    QTRY_COMPARE(login.askedSessions, asked);
    const auto lock = [&login](const QString &path) {
        return login.send(signalOf(path, sessionInterface, u"Lock"_s));
    };
    QVERIFY(QTest::qWaitFor([&] {
        lock(ownSession);
        QCoreApplication::processEvents();
        return !m_locked->isEmpty();
    }));
    // Another session's does not count: only the sleep behind it arrives.
    QVERIFY(login.announceSleep(true));
    QTRY_COMPARE(m_sleep->size(), 1);
    const auto before = m_locked->size();
    QVERIFY(lock(u"/org/freedesktop/login1/session/_317"_s));
    QVERIFY(login.announceSleep(true));
    QTRY_COMPARE(m_sleep->size(), 2);
    QCOMPARE(m_locked->size(), before);
    qunsetenv("XDG_SESSION_ID");
}

void TestDBusSessionEvents::aServiceThatComesLaterIsHeard()
{
    Login login(m_systemDaemon.connectAs(u"login"_s));
    for (int round = 1; round <= 2; ++round) { // late, and again after a restart
        QVERIFY(login.come());
        QTRY_COMPARE(login.inhibits.size(), round);
        QTRY_COMPARE(login.askedSessions.size(), round);
        QVERIFY(login.announceSleep(true));
        QTRY_COMPARE(m_sleep->size(), round);
        login.leave();
    }
}

void TestDBusSessionEvents::aForgedSleepIsNotBelieved()
{
    Login login(m_systemDaemon.connectAs(u"login"_s));
    QVERIFY(login.come());
    QTRY_VERIFY(login.isDelayed());
    QDBusConnection forger = m_systemDaemon.connectAs(u"system forger"_s);
    QVERIFY(forger.send(signalOf(loginPath, managerInterface, u"PrepareForSleep"_s, {true})));
    settle(forger);
    settle(m_systemBus->bus());
    settle(m_systemBus->bus());
    QVERIFY(m_sleep->isEmpty());
    QVERIFY(login.announceSleep(true));
    QTRY_COMPARE(m_sleep->size(), 1);
}

QTEST_GUILESS_MAIN(TestDBusSessionEvents)
#include "tst_dbussessionevents.moc"
