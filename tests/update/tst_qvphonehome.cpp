#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qturlloader.h"
#include "product/settings.h"
#include "support/inmemorydefaults.h"
#include "support/recordingworkspace.h"
#include "support/scriptedalerts.h"
#include "update/qvphonehome.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

QByteArray recordOf(const QByteArray &lra)
{
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + lra
        + R"(<key>GFU</key><string>https://host.example/get</string>)"
          R"(<key>DPU</key><string>http://host.example/page</string></dict></plist>)";
}

const QByteArray newer = recordOf("<key>LRA</key><integer>20700</integer>");
const QByteArray equal = recordOf("<key>LRA</key><integer>20601</integer>");
const QByteArray older = recordOf("<key>LRA</key><integer>20600</integer>");
const QByteArray withoutRelease = recordOf({});

/// The four endpoints, on the loopback: each has a path and an answer of its own.
class Mirrors final : public QTcpServer
{
public:
    Mirrors()
    {
        listen(QHostAddress::LocalHost);
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket *socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [this, socket] { answer(*socket); });
        });
    }

    QString url(int number) const
    {
        return u"http://127.0.0.1:%1/%2/mac/quorvane.plist"_s.arg(serverPort()).arg(number);
    }

    void answerAll(const QByteArray &body) { bodies = {body, body, body, body}; }

    QByteArrayList bodies {{}, {}, {}, {}}; ///< Empty: the line is cut without an answer.
    QByteArrayList requests;

private:
    void answer(QTcpSocket &socket)
    {
        const QByteArray request = socket.readAll();
        requests << request;
        const QByteArray body = bodies.value(request.mid(5, 1).toInt() - 1);
        if (body.startsWith("HTTP")) {
            socket.write(body);
        } else if (!body.isEmpty()) {
            socket.write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: "
                         + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        }
        socket.disconnectFromHost();
    }
};

/// The program's own queue, which also tells whether it is at work.
struct Background final : BackgroundQueue
{
    void addOperation(std::function<void()> work, std::function<void()> done) override
    {
        ++begun;
        queue.addOperation(std::move(work), [this, done = std::move(done)] {
            ++ended;
            done();
        });
    }

    void finish()
    {
        QVERIFY(QTest::qWaitFor([this] { return ended == begun; }, 30'000));
    }

    QtOperationQueue main;
    QtBackgroundQueue queue {main};
    int begun = 0;
    int ended = 0;
};

struct World
{
    World() { defaults.registerDefaults(settings::registeredDefaults()); }

    ~World() { background.finish(); }

    Q_DISABLE_COPY_MOVE(World)

    void launch(const std::function<void()> &launched = {})
    {
        renew();
        phone->startupProcedure(launched);
    }

    void renew()
    {
        phone = std::make_unique<QVPhoneHome>(
            QVPhoneHome::Surroundings {defaults, alerts, workspace, loader, background, [this] {
                                           return now;
                                       }});
        phone->setAsks([this](bool isAsking) { asks << isAsking; });
        phone->SetValueAppRelease(20601, u"Quorvane"_s, net.url(1), net.url(2), net.url(3),
                                  net.url(4));
    }

    QDateTime lastCheck() const
    {
        return defaults.objectForKey("lastCheckDateForUpdate"_L1).toDateTime();
    }

    QStringList told() const
    {
        QStringList messages;
        for (const NSAlert &alert : alerts.shown) {
            messages << alert.messageText;
        }
        return messages;
    }

    InMemoryDefaults defaults;
    ScriptedAlerts alerts;
    RecordingWorkspace workspace;
    Mirrors net;
    QtURLLoader loader;
    Background background;
    QList<bool> asks;
    QDateTime now {QDate(2026, 3, 7), QTime(0, 1)};
    std::unique_ptr<QVPhoneHome> phone;
};

const QString available = u"There is an update available for Quorvane"_s;
const QString upToDate = u"Quorvane is up to date"_s;
const QString failed = u"Quorvane was not able to connect to the Mirando server"_s;
const QString invitation =
    u"Would you like that Quorvane informs you now for any available update?"_s;

} // namespace

/// Against a real server; the calendar and the clock are stepped.
class TestQVPhoneHome : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCheckTellsWhatItFinds_data();
    void aCheckTellsWhatItFinds();
    void theFirstEndpointThatAnswersIsTaken();
    void theLaunchChecksOnceADay();
    void theInvitationComesAfterNinetyDays_data();
    void theInvitationComesAfterNinetyDays();
    void whatIsOpenedIsAWebAddress_data();
    void whatIsOpenedIsAWebAddress();
    void aSecondRequestIsDroppedWhileOneRuns();
};

void TestQVPhoneHome::aCheckTellsWhatItFinds_data()
{
    QTest::addColumn<QByteArray>("answer");
    QTest::addColumn<QString>("byHand");
    QTest::addColumn<QString>("byItself");
    QTest::addColumn<bool>("dateIsWritten");
    const QString nothing;
    QTest::newRow("a newer release") << newer << available << available << true;
    QTest::newRow("this release") << equal << upToDate << nothing << true;
    QTest::newRow("an older release") << older << upToDate << nothing << true;
    QTest::newRow("a record without a release") << withoutRelease << nothing << nothing << true;
    QTest::newRow("no answer at all") << QByteArray() << failed << nothing << false;
    QTest::newRow("a bad status with a good record")
        << QByteArray("HTTP/1.1 404 Not Found\r\nContent-Length: "
                      + QByteArray::number(newer.size()) + "\r\n\r\n" + newer)
        << failed << nothing << false;
    QTest::newRow("no property list")
        << QByteArray("<html>welcome</html>") << failed << nothing << false;
    QTest::newRow("half a property list")
        << newer.first(newer.size() / 2) << failed << nothing << false;
    QTest::newRow("a root that is no dictionary")
        << QByteArray("<plist version=\"1.0\"><array/></plist>") << failed << nothing << false;
}

void TestQVPhoneHome::aCheckTellsWhatItFinds()
{
    QFETCH(const QByteArray, answer);
    QFETCH(const QString, byHand);
    QFETCH(const QString, byItself);
    QFETCH(const bool, dateIsWritten);
    for (const bool isByHand : {true, false}) {
        World world;
        world.net.answerAll(answer);
        if (isByHand) {
            world.renew();
            world.phone->checkForLastReleaseAvailableWithNotify();
        } else {
            world.launch();
        }
        QVERIFY(world.phone->isChekingUpdateSystem());
        world.background.finish();
        const QString told = isByHand ? byHand : byItself;
        QCOMPARE(world.told(), told.isEmpty() ? QStringList() : QStringList {told});
        QCOMPARE(world.asks, (QList<bool> {true, false}));
        QCOMPARE(world.lastCheck(), dateIsWritten ? world.now : QDateTime());
        QCOMPARE(world.phone->isChekingUpdateSystem(), !told.isEmpty());
        world.alerts.answer(AlertAnswer::Third);
        QVERIFY(!world.phone->isChekingUpdateSystem());
        QVERIFY(world.workspace.opened.isEmpty());
    }
}

void TestQVPhoneHome::theFirstEndpointThatAnswersIsTaken()
{
    World world;
    world.net.bodies = {"rubbish", "HTTP/1.1 500 Oops\r\nContent-Length: 0\r\n\r\n", newer, older};
    world.renew();
    world.phone->checkForLastReleaseAvailableWithNotify();
    world.background.finish();
    QCOMPARE(world.net.requests.size(), 3);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(world.net.requests[i].startsWith("GET /" + QByteArray::number(i + 1) + "/mac/"));
        QVERIFY(!world.net.requests[i].contains("Cookie"));
    }
    const NSAlert expected {
        available,
        u"You are using release: 2.6.1\nLatest available release is: 2.7\n"
        "Mirando recommends to use always the latest release"_s,
        {u"Download Update"_s, u"Download Page"_s, u"Later"_s},
    };
    QCOMPARE(world.alerts.shown.value(0), expected);
    world.alerts.answer(AlertAnswer::First);
    QCOMPARE(world.workspace.opened, QList<QUrl> {QUrl(u"https://host.example/get"_s)});
}

void TestQVPhoneHome::theLaunchChecksOnceADay()
{
    const QDate day(2026, 3, 7);

    struct Launch
    {
        const char *when;
        QDateTime now;
        bool isUp;
        bool checks;
    };

    const Launch launches[] = {
        {"nothing answers", {day, QTime(9, 0)}, false, true},
        {"tried again on the same day", {day, QTime(10, 0)}, true, true},
        {"checked today", {day, QTime(23, 59)}, true, false},
        {"two minutes later, on the next day", {day.addDays(1), QTime(0, 1)}, true, true},
        {"the clock was set back a day", {day, QTime(12, 0)}, true, true},
    };
    for (const bool notifies : {true, false}) {
        World world;
        world.defaults.setObject(settings::notifyUpdate.name, notifies);
        for (const auto &[when, now, isUp, checks] : launches) {
            world.net.answerAll(isUp ? newer : QByteArray());
            world.now = now;
            world.alerts.shown.clear();
            const int before = world.background.begun;
            const QDateTime last = world.lastCheck();
            world.launch();
            QVERIFY2((world.background.begun > before) == checks, when);
            world.background.finish();
            QVERIFY2(world.told().contains(available) == (notifies && isUp && checks), when);
            QCOMPARE(world.lastCheck(), isUp && checks ? now : last);
        }
    }
}

void TestQVPhoneHome::theInvitationComesAfterNinetyDays_data()
{
    QTest::addColumn<qint64>("msecsAgo");
    QTest::addColumn<QString>("message");
    const QString afterDays =
        u"It is more then 90 days this app doesn't report to you for updates.\n"_s + invitation;
    QTest::newRow("never checked") << qint64(-1) << invitation;
    QTest::newRow("90 days exactly") << qint64(7'776'000'000) << QString();
    QTest::newRow("a moment longer") << qint64(7'776'000'001) << afterDays;
}

void TestQVPhoneHome::theInvitationComesAfterNinetyDays()
{
    QFETCH(const qint64, msecsAgo);
    QFETCH(const QString, message);
    for (const AlertAnswer answer : {AlertAnswer::First, AlertAnswer::Second, AlertAnswer::Third}) {
        World world;
        world.defaults.setObject(settings::notifyUpdate.name, false);
        if (msecsAgo >= 0) {
            world.defaults.setObject("lastCheckDateForUpdate"_L1, world.now.addMSecs(-msecsAgo));
        }
        bool launched = false;
        world.launch([&launched] { launched = true; });
        QCOMPARE(launched, message.isEmpty()); // the launch waits for the answer
        if (message.isEmpty()) {
            QVERIFY(world.alerts.shown.isEmpty());
            continue;
        }
        const NSAlert expected {message,
                                u"Suggested option is to have the update report enabled.\n"
                                "Use the Preference Dialog to enable this feature."_s,
                                {u"OK"_s, u"Mirando Site"_s, u"Cancel"_s}};
        QCOMPARE(world.alerts.shown, QList<NSAlert> {expected});
        // The silent check of this launch is still running: it holds the one asked for back.
        world.alerts.answer(answer);
        QCOMPARE(world.background.begun, 1);
        QVERIFY(launched && !world.phone->isChekingUpdateSystem());
        QCOMPARE(world.workspace.opened.size(), answer == AlertAnswer::Second ? 1 : 0);
    }
}

void TestQVPhoneHome::whatIsOpenedIsAWebAddress_data()
{
    QTest::addColumn<QString>("url");
    QTest::addColumn<bool>("opens");
    QTest::newRow("https") << u"https://host.example/x"_s << true;
    QTest::newRow("http") << u"http://host.example/x"_s << true;
    QTest::newRow("a file") << u"file:///etc/passwd"_s << false;
    QTest::newRow("a program") << u"javascript:alert(1)"_s << false;
    QTest::newRow("nothing") << QString() << false;
}

void TestQVPhoneHome::whatIsOpenedIsAWebAddress()
{
    QFETCH(const QString, url);
    QFETCH(const bool, opens);
    World world;
    world.renew();
    world.phone->notifyAboutUpdateAvailable({20700, {}, url});
    world.alerts.answer(AlertAnswer::Second);
    QCOMPARE(world.workspace.opened.size(), opens ? 1 : 0);
}

void TestQVPhoneHome::aSecondRequestIsDroppedWhileOneRuns()
{
    World world;
    world.net.answerAll(newer);
    world.renew();
    world.phone->silentCheckForLastReleaseAvailable();
    world.phone->checkForLastReleaseAvailableWithNotify();
    QCOMPARE(world.background.begun, 1);
    world.background.finish();
    QVERIFY(world.alerts.shown.isEmpty());
    world.phone->checkForLastReleaseAvailableWithNotify();
    QCOMPARE(world.background.begun, 2);
}

QTEST_GUILESS_MAIN(TestQVPhoneHome)
#include "tst_qvphonehome.moc"
