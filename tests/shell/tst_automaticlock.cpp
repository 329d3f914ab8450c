#include "shell/delegateworld.h"
#include "shell/sessionguard.h"
#include "support/fakesessionevents.h"

#include <QTest>

#include <limits>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr double noTimer = 0;

/// The program with documents whose windows are doubles.
struct Shell final : DelegateWorld
{
    Shell() { world.defaults.setObject(settings::autolocBackgroundEnabled.name, true); }

    std::unique_ptr<NSDocument> make() override
    {
        MyDocumentSurroundings surroundings = world.surroundings();
        surroundings.loadNib = [this](MyDocument &made) {
            auto controller = std::make_unique<Outlets>(world.queue);
            controller->connectTo(made);
            outlets << controller.get();
            return controller;
        };
        return std::make_unique<MyDocument>(surroundings);
    }

    /// An open document with a password, edited since its last save.
    MyDocument &openDocument(const QString &path, const QString &password = u"password"_s)
    {
        documents.newDocument();
        auto *document = static_cast<MyDocument *>(documents.documents().back());
        world.queue.runAll();
        document->setPlainPassword(password);
        outlets.last()->window.endSheet(outlets.last()->mandatorySheet, 0);
        if (!path.isEmpty()) {
            document->setFileURL(path);
        }
        document->setMyTextViewData("body");
        document->updateChangeCount(NSDocumentChangeType::Done);
        return *document;
    }

    void setInterval(qint64 seconds)
    {
        world.defaults.setObject(settings::autolocBackgroundInterval.name, seconds);
    }

    QList<Outlets *> outlets;
    FakeSessionEvents events;
    SessionGuard guard {events, world.defaults, documents, world.queue, delegate};
};

} // namespace

class TestAutomaticLock : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDelayFollowsTheSetting_data();
    void theDelayFollowsTheSetting();
    void theSettingsAreReadOnResigningOnly();
    void comingBackInTimeCancelsTheLock();
    void goingAwayAgainStartsTheDelayAnew();
    void thereIsOneLockASpellInTheBackground();
    void eachDocumentDecidesForItself();
    void sheetsAreEndedAndTheLockComesAfter();
    void aLockedScreenSavesAndLocksWhereItIsWanted_data();
    void aLockedScreenSavesAndLocksWhereItIsWanted();
    void aMomentThatIsToldTwiceLocksOnce();
    void theMachineSleepsWhenAllIsLocked_data();
    void theMachineSleepsWhenAllIsLocked();
};

void TestAutomaticLock::theDelayFollowsTheSetting_data()
{
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<qint64>("interval");
    QTest::addColumn<double>("delay");
    QTest::newRow("switched off") << false << qint64(120) << noTimer;
    QTest::newRow("the registered value") << true << qint64(120) << 120.0;
    QTest::newRow("none at zero") << true << qint64(0) << noTimer;
    QTest::newRow("none below zero") << true << qint64(-5) << noTimer;
    QTest::newRow("never less than half a minute") << true << qint64(1) << 30.0;
    QTest::newRow("half a minute") << true << qint64(30) << 30.0;
    QTest::newRow("a second more") << true << qint64(31) << 31.0;
    QTest::newRow("the low 32 bits count: 45") << true << (qint64(7) << 32) + 45 << 45.0;
    QTest::newRow("the low 32 bits count: none") << true << (qint64(1) << 32) << noTimer;
    QTest::newRow("the low 32 bits count: negative") << true << (qint64(1) << 31) << noTimer;
    const double most = std::numeric_limits<qint32>::max();
    QTest::newRow("the longest") << true << (qint64(1) << 31) - 1 << most;
}

void TestAutomaticLock::theDelayFollowsTheSetting()
{
    QFETCH(bool, isEnabled);
    QFETCH(qint64, interval);
    QFETCH(double, delay);
    Shell shell;
    shell.world.defaults.setObject(settings::autolocBackgroundEnabled.name, isEnabled);
    shell.setInterval(interval);
    shell.delegate.applicationDidResignActive();
    QCOMPARE(shell.timers.scheduledCount(), delay > 0 ? 1 : 0);
    QCOMPARE(shell.delegate.repeatingAutomaticLockTimer() != nullptr, delay > 0);
    QCOMPARE(shell.timers.lastSeconds(), delay);
}

void TestAutomaticLock::theSettingsAreReadOnResigningOnly()
{
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    shell.setInterval(60);
    shell.delegate.applicationDidResignActive();
    // Neither does a later change count, nor does a resign with the setting off touch the timer.
    shell.setInterval(600);
    shell.world.defaults.setObject(settings::autolocBackgroundEnabled.name, false);
    shell.delegate.applicationDidResignActive();
    shell.timers.advance(59);
    shell.world.queue.runAll();
    QVERIFY(!document.isEncrypted());
    shell.timers.advance(1);
    shell.world.queue.runAll();
    QVERIFY(document.isEncrypted());
}

void TestAutomaticLock::comingBackInTimeCancelsTheLock()
{
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    shell.delegate.applicationDidResignActive();
    shell.timers.advance(119);
    shell.world.defaults.setObject(settings::autolocBackgroundEnabled.name, false);
    shell.delegate.applicationDidBecomeActive();
    QVERIFY(!shell.delegate.repeatingAutomaticLockTimer());
    shell.timers.advance(1000);
    shell.world.queue.runAll();
    QVERIFY(!document.isEncrypted());
}

void TestAutomaticLock::goingAwayAgainStartsTheDelayAnew()
{
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    shell.delegate.applicationDidResignActive();
    shell.timers.advance(100);
    shell.delegate.applicationDidResignActive();
    QCOMPARE(shell.timers.scheduledCount(), 1);
    shell.timers.advance(119);
    shell.world.queue.runAll();
    QVERIFY(!document.isEncrypted());
    shell.timers.advance(1);
    shell.world.queue.runAll();
    QVERIFY(document.isEncrypted());
}

void TestAutomaticLock::thereIsOneLockASpellInTheBackground()
{
    Shell shell;
    shell.openDocument(u"/documents/a.quorvane"_s);
    shell.delegate.applicationDidResignActive();
    shell.timers.advance(120);
    shell.world.queue.runAll();
    QVERIFY(shell.delegate.repeatingAutomaticLockTimer()); // the stale one
    MyDocument &later = shell.openDocument(u"/documents/b.quorvane"_s);
    shell.timers.advance(10000);
    shell.world.queue.runAll();
    QVERIFY(!later.isEncrypted());
    shell.delegate.applicationDidBecomeActive();
    shell.delegate.applicationDidResignActive();
    shell.timers.advance(120);
    shell.world.queue.runAll();
    QVERIFY(later.isEncrypted());
}

void TestAutomaticLock::eachDocumentDecidesForItself()
{
    Shell shell;
    MyDocument &edited = shell.openDocument(u"/documents/a.quorvane"_s);
    MyDocument &untitled = shell.openDocument(u""_s);
    MyDocument &unprotected = shell.openDocument(u"/documents/b.quorvane"_s, u""_s);
    MyDocument &locked = shell.openDocument(u"/documents/c.quorvane"_s);
    locked.doLockDocument();
    shell.world.queue.runAll();
    const auto sizes = shell.outlets.last()->window.frames.size();
    MyDocument &last = shell.openDocument(u"/documents/d.quorvane"_s);
    QList<const MyDocument *> order;
    for (MyDocument *each : {&edited, &last}) {
        connect(each, &MyDocument::isEncryptedChanged, this, [&order, each] { order << each; });
    }
    shell.delegate.AutomaticLockAllOpenedDocuments();
    QVERIFY(!edited.isEncrypted()); // on a later turn only
    shell.world.queue.runAll();
    QCOMPARE(order, (QList<const MyDocument *> {&edited, &last}));
    QVERIFY(!untitled.isEncrypted() && !unprotected.isEncrypted());
    QCOMPARE(shell.outlets[3]->window.frames.size(), sizes);
}

void TestAutomaticLock::sheetsAreEndedAndTheLockComesAfter()
{
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    ScriptedWindow &window = shell.outlets.last()->window;
    ScriptedSheet sheets[3];
    QList<int> codes;
    const auto ended = [&](int code) {
        QVERIFY(!document.isEncrypted());
        codes.append(code);
    };
    window.beginSheet(sheets[0], [&](int code) {
        ended(code);
        window.beginSheet(sheets[2], ended);
    });
    window.beginSheet(sheets[1], ended);
    shell.world.queue.runAll();
    QCOMPARE(window.attachedSheet(), &sheets[0]);
    document.lockAutomatically();
    shell.world.queue.runAll();
    QCOMPARE(codes, QList<int>(3, modalResponseStop));
    QVERIFY(document.isEncrypted());
    QCOMPARE(sheets[1].begun, 0);
    QVERIFY(!window.attachedSheet());
}

void TestAutomaticLock::aLockedScreenSavesAndLocksWhereItIsWanted_data()
{
    QTest::addColumn<bool>("isEnabled");
    QTest::newRow("the automatic lock is on: saved and locked") << true;
    QTest::newRow("it is off: saved") << false;
}

void TestAutomaticLock::aLockedScreenSavesAndLocksWhereItIsWanted()
{
    QFETCH(bool, isEnabled);
    Shell shell;
    const QString path = u"/documents/a.quorvane"_s;
    MyDocument &document = shell.openDocument(path);
    shell.world.defaults.setObject(settings::autolocBackgroundEnabled.name, isEnabled);
    Q_EMIT shell.events.screenLocked();
    shell.world.queue.runAll();
    QCOMPARE(document.isEncrypted(), isEnabled);
    QVERIFY(!document.isDocumentEdited());
    MyDocument again(shell.world.surroundings());
    QVERIFY(again.readFromData(shell.world.files.files.value(path)));
    again.setPlainPassword(u"password"_s);
    QCOMPARE(again.Decript(), 0);
    QCOMPARE(again.myTextViewData(), std::optional<QByteArray>("body"));
}

void TestAutomaticLock::aMomentThatIsToldTwiceLocksOnce()
{
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    Q_EMIT shell.events.screenLocked();
    Q_EMIT shell.events.screenLocked();
    shell.world.queue.runAll();
    QVERIFY(document.isEncrypted());
    QVERIFY(document.makeToolbarVisibleAtDecrypt()); // the second lock would have found it hidden
    MyDocument &later = shell.openDocument(u"/documents/b.quorvane"_s);
    Q_EMIT shell.events.screenLocked();
    shell.world.queue.runAll();
    QVERIFY(later.isEncrypted());
}

void TestAutomaticLock::theMachineSleepsWhenAllIsLocked_data()
{
    aLockedScreenSavesAndLocksWhereItIsWanted_data();
}

void TestAutomaticLock::theMachineSleepsWhenAllIsLocked()
{
    QFETCH(bool, isEnabled);
    Shell shell;
    MyDocument &document = shell.openDocument(u"/documents/a.quorvane"_s);
    // What cannot be saved before the lock is tried once more after it.
    shell.world.files.replaceError = FileError {ENOSPC, u"writing"_s, u"/documents/a.quorvane"_s};
    shell.world.defaults.setObject(settings::autolocBackgroundEnabled.name, isEnabled);
    Q_EMIT shell.events.aboutToSleep();
    shell.world.files.replaceError.reset();
    QVERIFY(shell.world.queue.size() > 0);
    while (shell.events.timesReady == 0) {
        QVERIFY(shell.world.queue.runOne());
    }
    QCOMPARE(document.isEncrypted(), isEnabled);
    QCOMPARE(document.isDocumentEdited(), !isEnabled);
    shell.world.queue.runAll();
    QCOMPARE(shell.events.timesReady, 1);
}

QTEST_GUILESS_MAIN(TestAutomaticLock)
#include "tst_automaticlock.moc"
