#include "product/settings.h"
#include "support/inmemorydefaults.h"
#include "support/recordingworkspace.h"
#include "support/scriptedalerts.h"
#include "update/qvphonehome.h"

#include <QMap>
#include <QTest>

#include <deque>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QStringList endpoints {u"http://a/p"_s, u"http://b/p"_s, u"http://c/p"_s, u"http://d/p"_s};

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

struct Net final : URLLoader
{
    std::optional<QByteArray> contentsOfURL(const QString &url) override
    {
        asked << url;
        const auto found = answers.constFind(url);
        return found == answers.constEnd() ? std::nullopt : std::optional(*found);
    }

    QMap<QString, QByteArray> answers;
    QStringList asked;
};

struct Background final : BackgroundQueue
{
    void addOperation(std::function<void()> work, std::function<void()> done) override
    {
        waiting.push_back([work = std::move(work), done = std::move(done)] {
            work();
            done();
        });
    }

    void runAll()
    {
        while (!waiting.empty()) {
            const auto next = waiting.front();
            waiting.pop_front();
            next();
        }
    }

    std::deque<std::function<void()>> waiting;
};

struct World
{
    World()
    {
        defaults.registerDefaults(settings::registeredDefaults());
        phone.SetValueAppRelease(20601, u"Quorvane"_s, endpoints[0], endpoints[1], endpoints[2],
                                 endpoints[3]);
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
    Net net;
    Background background;
    QDateTime now {QDate(2026, 3, 7), QTime(0, 1)};
    QVPhoneHome phone {{defaults, alerts, workspace, net, background, [this] {
                            return now;
                        }}};
};

const QString available = u"There is an update available for Quorvane"_s;
const QString upToDate = u"Quorvane is up to date"_s;
const QString failed = u"Quorvane was not able to connect to the Mirando server"_s;
const QString invitation =
    u"Would you like that Quorvane informs you now for any available update?"_s;

} // namespace

class TestQVPhoneHome : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aCheckTellsWhatItFinds_data();
    void aCheckTellsWhatItFinds();
    void theFirstEndpointThatAnswersIsTaken();
    void theLaunchChecksOnceADay_data();
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
    QTest::newRow("no property list")
        << QByteArray("<html>404</html>") << failed << nothing << false;
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
        for (const QString &endpoint : endpoints) {
            if (!answer.isEmpty()) {
                world.net.answers[endpoint] = answer;
            }
        }
        if (isByHand) {
            world.phone.checkForLastReleaseAvailableWithNotify();
        } else {
            world.phone.startupProcedure();
        }
        QVERIFY(world.phone.isChekingUpdateSystem());
        world.background.runAll();
        const QString told = isByHand ? byHand : byItself;
        QCOMPARE(world.told(), told.isEmpty() ? QStringList() : QStringList {told});
        QCOMPARE(world.lastCheck().isValid(), dateIsWritten);
        QCOMPARE(world.phone.isChekingUpdateSystem(), !told.isEmpty());
        world.alerts.answer(AlertAnswer::Third);
        QVERIFY(!world.phone.isChekingUpdateSystem());
        QVERIFY(world.workspace.opened.isEmpty());
    }
}

void TestQVPhoneHome::theFirstEndpointThatAnswersIsTaken()
{
    World world;
    world.net.answers = {{endpoints[0], "rubbish"}, {endpoints[2], newer}, {endpoints[3], older}};
    world.phone.checkForLastReleaseAvailableWithNotify();
    world.background.runAll();
    QCOMPARE(world.net.asked, endpoints.first(3));
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

void TestQVPhoneHome::theLaunchChecksOnceADay_data()
{
    QTest::addColumn<QDateTime>("last");
    QTest::addColumn<bool>("checks");
    QTest::newRow("never checked") << QDateTime() << true;
    QTest::newRow("a minute ago, the day before")
        << QDateTime(QDate(2026, 3, 6), QTime(23, 59)) << true;
    QTest::newRow("today") << QDateTime(QDate(2026, 3, 7), QTime(0, 0)) << false;
    QTest::newRow("the clock was set back") << QDateTime(QDate(2026, 3, 8), QTime(0, 1)) << true;
}

void TestQVPhoneHome::theLaunchChecksOnceADay()
{
    QFETCH(const QDateTime, last);
    QFETCH(const bool, checks);
    for (const bool notifies : {true, false}) {
        World world;
        world.defaults.setObject(settings::notifyUpdate.name, notifies);
        if (last.isValid()) {
            world.defaults.setObject("lastCheckDateForUpdate"_L1, last);
        }
        world.phone.startupProcedure();
        QCOMPARE(!world.background.waiting.empty(), checks);
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
    World world;
    world.defaults.setObject(settings::notifyUpdate.name, false);
    if (msecsAgo >= 0) {
        world.defaults.setObject("lastCheckDateForUpdate"_L1, world.now.addMSecs(-msecsAgo));
    }
    bool launched = false;
    world.phone.startupProcedure([&launched] { launched = true; });
    QCOMPARE(world.told(), message.isEmpty() ? QStringList() : QStringList {message});
    QCOMPARE(launched, message.isEmpty()); // the launch waits for the answer
    if (!message.isEmpty()) {
        QCOMPARE(world.alerts.shown[0].buttons,
                 (QStringList {u"OK"_s, u"Mirando Site"_s, u"Cancel"_s}));
        // The silent check of this launch is still running: it holds the one asked for back.
        world.alerts.answer(AlertAnswer::First);
        QCOMPARE(world.background.waiting.size(), std::size_t(1));
        QVERIFY(launched && !world.phone.isChekingUpdateSystem());
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
    world.phone.notifyAboutUpdateAvailable({20700, {}, url});
    world.alerts.answer(AlertAnswer::Second);
    QCOMPARE(world.workspace.opened.size(), opens ? 1 : 0);
}

void TestQVPhoneHome::aSecondRequestIsDroppedWhileOneRuns()
{
    World world;
    world.phone.silentCheckForLastReleaseAvailable();
    world.phone.checkForLastReleaseAvailableWithNotify();
    QCOMPARE(world.background.waiting.size(), std::size_t(1));
    world.background.runAll();
    world.phone.checkForLastReleaseAvailableWithNotify();
    QCOMPARE(world.background.waiting.size(), std::size_t(1));
}

QTEST_GUILESS_MAIN(TestQVPhoneHome)
#include "tst_qvphonehome.moc"
