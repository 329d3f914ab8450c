#include "programfixture.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString path = u"/documents/letter.quorvane"_s;
const QString password = u"correct horse"_s;
const QByteArray typed("what has been typed");
const FileError diskFull {ENOSPC, filestep::writing, path};

const QStringList disks {u"works"_s, u"is full"_s, u"is full for a while"_s};
const QStringList ways {u"stays open"_s, u"is locked"_s, u"is locked, wrong password"_s,
                        u"is locked, right password"_s, u"is locked, wrong and right password"_s};
const QStringList ends {u"closed"_s, u"quit"_s, u"ended without review"_s, u"crashed"_s};

} // namespace

/// Every road from typed words to the end of the program: they are in the file, kept for recovery,
/// or still in a window that asks.
class TestDocumentRoads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noRoadLosesWhatWasTyped_data();
    void noRoadLosesWhatWasTyped();
    void whatTheUserDropsIsDropped_data();
    void whatTheUserDropsIsDropped();

private:
    static void go(World &world, ProgramRun &program, const QString &way);
    static void end(ProgramRun &program, const QString &how);
};

void TestDocumentRoads::noRoadLosesWhatWasTyped_data()
{
    QTest::addColumn<QString>("disk");
    QTest::addColumn<QString>("way");
    QTest::addColumn<QString>("how");
    for (const QString &disk : disks) {
        for (const QString &way : ways) {
            for (const QString &how : ends) {
                const QString row = u"the disk %1, the document %2, %3"_s.arg(disk, way, how);
                QTest::newRow(qPrintable(row)) << disk << way << how;
            }
        }
    }
}

void TestDocumentRoads::go(World &world, ProgramRun &program, const QString &way)
{
    if (way.contains(u"locked"_s)) {
        program.document()->doLockDocument();
        world.queue.runAll();
    }
    if (way.contains(u"wrong"_s)) {
        program.document()->submitPasswordToDecrypt(u"wrong horse"_s);
        world.queue.runAll();
        QVERIFY(!program.document()->isDocumentEdited());
    }
    if (way.contains(u"right"_s)) {
        program.document()->submitPasswordToDecrypt(password);
        world.queue.runAll();
        QVERIFY(!program.document()->isEncrypted() && !program.document()->isDocumentEdited());
    }
}

void TestDocumentRoads::end(ProgramRun &program, const QString &how)
{
    if (how == u"closed"_s) {
        program.document()->performClose();
    } else if (how == u"quit"_s) {
        program.controller.closeAllDocuments([](bool) {});
    } else if (how == u"ended without review"_s) {
        program.controller.closeWithoutReview();
    }
}

void TestDocumentRoads::noRoadLosesWhatWasTyped()
{
    QFETCH(QString, disk);
    QFETCH(QString, way);
    QFETCH(QString, how);
    World world;
    world.files.files.insert(path, knownFile("old", password));
    bool isAsked = false;
    {
        ProgramRun program(world);
        program.open(path);
        program.document()->submitPasswordToDecrypt(password);
        program.type(typed);
        if (disk != u"works"_s) {
            world.files.replaceError = diskFull;
        }
        if (disk == u"is full for a while"_s) {
            world.recovery.writeError = diskFull; // on the same disk
        }
        go(world, program, way);
        if (disk == u"is full for a while"_s) {
            world.timers.advance(31);
            world.files.replaceError.reset();
            world.recovery.writeError.reset();
        }
        if (how == u"crashed"_s) {
            world.timers.advance(31); // less are the seconds that nobody promises
        }
        end(program, how);
        world.queue.runAll();
        isAsked = how != u"crashed"_s && program.document() != nullptr;
        if (isAsked) {
            QCOMPARE(program.outlets().textView.body(), std::optional(typed));
            QVERIFY(program.document()->hasUnsavedChanges());
            while (program.answer(u"OK"_s)) { } // that autosave failed, or of the password
            QCOMPARE(program.window().alerts.last().buttons,
                     QStringList({u"Save As…"_s, u"Close Anyway"_s, u"Cancel"_s}));
            QVERIFY2(disk == u"is full"_s, "a disk that works asks nobody");
        }
    }
    const bool isInFile = bodyOf(world, world.files.files.value(path), password) == typed;
    const QList<QByteArray> kept = world.recovery.kept.values();
    if (disk == u"is full"_s) {
        QVERIFY(!isInFile);
        QVERIFY(isAsked || (kept.size() == 1 && bodyOf(world, kept.first(), password) == typed));
    } else {
        QVERIFY(isInFile && kept.isEmpty());
    }
}

void TestDocumentRoads::whatTheUserDropsIsDropped_data()
{
    QTest::addColumn<bool>("hasFile");
    QTest::addColumn<QString>("button");
    QTest::newRow("a document whose disk is full, closed anyway") << true << u"Close Anyway"_s;
    QTest::newRow("an untitled document that is not saved") << false << u"Don't Save"_s;
}

void TestDocumentRoads::whatTheUserDropsIsDropped()
{
    QFETCH(bool, hasFile);
    QFETCH(QString, button);
    World world;
    const QByteArray old = knownFile("old", password);
    world.files.files.insert(path, old);
    ProgramRun program(world);
    if (hasFile) {
        program.open(path);
        program.document()->submitPasswordToDecrypt(password);
    } else {
        program.newDocument(password);
    }
    world.files.replaceError = diskFull;
    program.type(typed);
    world.timers.advance(31);
    world.queue.runAll();
    while (program.answer(u"OK"_s)) { }
    QCOMPARE(world.recovery.kept.size(), 1);
    program.document()->performClose();
    QVERIFY(program.answer(u"Cancel"_s));
    QVERIFY(program.document());
    program.document()->performClose();
    QVERIFY(program.answer(button));
    QVERIFY(!program.document());
    QVERIFY(world.recovery.kept.isEmpty());
    QCOMPARE(world.files.files.value(path), old);
}

QTEST_GUILESS_MAIN(TestDocumentRoads)
#include "tst_documentroads.moc"
