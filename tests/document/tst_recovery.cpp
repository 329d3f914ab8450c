#include "programfixture.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString path = u"/documents/letter.quorvane"_s;
const QString password = u"correct horse"_s;

} // namespace

/// An untitled document, from a crash to the next start.
class TestRecovery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUntitledDocumentIsKeptWhileItIsEdited();
    void aDocumentWithoutAPasswordIsNeverWritten();
    void theNextStartOpensWhatWasKept();
    void aTitledDocumentComesBackUnderItsName();
    void aRecoveredDocumentGoesWhereItsEndSays_data();
    void aRecoveredDocumentGoesWhereItsEndSays();
    void anEndWithoutReviewKeepsWhatHasNoFile();
    void whatIsDamagedIsToldOfAndLeft();
    void thatNothingCanBeKeptIsToldOnce();
};

void TestRecovery::anUntitledDocumentIsKeptWhileItIsEdited()
{
    World world;
    ProgramRun program(world);
    program.newDocument(password);
    program.type("first");
    world.timers.advance(5);
    QCOMPARE(world.recovery.kept.size(), 1);
    QVERIFY(!world.recovery.kept.first().contains("first"));
    QVERIFY(program.document()->isDocumentEdited());
    const int writes = world.recovery.writes;
    world.timers.advance(100);
    QCOMPARE(world.recovery.writes, writes);
    program.type("second");
    program.controller.autosaveDocuments();
    QCOMPARE(bodyOf(world, world.recovery.kept.first(), password),
             std::optional(QByteArray("second")));
    program.document()->saveDocument();
    QVERIFY(world.panels.answerSave(path));
    QVERIFY(world.recovery.kept.isEmpty());
    QVERIFY(!program.document()->hasUnsavedChanges());
}

void TestRecovery::aDocumentWithoutAPasswordIsNeverWritten()
{
    World world;
    ProgramRun program(world);
    program.controller.newDocument();
    program.type("a word in the clear");
    world.timers.advance(100);
    program.controller.autosaveDocuments();
    program.controller.closeWithoutReview();
    QCOMPARE(world.recovery.writes + world.files.replaces, 0);
}

void TestRecovery::theNextStartOpensWhatWasKept()
{
    World world;
    {
        ProgramRun crashed(world);
        crashed.newDocument(password);
        crashed.type("text");
        world.timers.advance(5);
        crashed.newDocument(password);
        world.timers.advance(5);
        ProgramRun second(world);
        second.controller.restoreRecoveredDocuments();
        QVERIFY2(!second.document(), "what a living program keeps is its own");
    }
    ProgramRun program(world);
    program.controller.restoreRecoveredDocuments();
    world.queue.runAll();
    QCOMPARE(program.controller.documents().size(), std::size_t(2));
    QCOMPARE(program.document()->displayName(), u"Untitled 2 (Recovered)"_s);
    const auto first = static_cast<MyDocument *>(program.controller.documents().front());
    QCOMPARE(first->displayName(), u"Untitled (Recovered)"_s);
    QVERIFY(first->isEncrypted() && !first->fileURL() && !first->isDocumentEdited());
    first->submitPasswordToDecrypt(u"wrong horse"_s);
    QVERIFY(first->isEncrypted() && !first->isDocumentEdited());
    first->submitPasswordToDecrypt(password);
    QVERIFY(first->isDocumentEdited());
    QCOMPARE(first->myTextViewData(), std::optional(QByteArray("text")));
}

void TestRecovery::aTitledDocumentComesBackUnderItsName()
{
    World world;
    for (int run = 0; run < 2; ++run) {
        world.files.files.insert(path, knownFile("text", password));
        ProgramRun crashed(world);
        crashed.open(path);
        crashed.document()->submitPasswordToDecrypt(password);
        world.files.replaceError = FileError {EROFS, filestep::makingNewFile, path};
        crashed.type("more");
        world.timers.advance(5);
        world.files.replaceError.reset();
    }
    ProgramRun program(world);
    program.controller.restoreRecoveredDocuments();
    QStringList names;
    QList<double> places;
    world.queue.runAll();
    for (NSDocument *document : program.controller.documents()) {
        names << document->displayName();
        places << document->windowForSheet()->frame().x;
    }
    QCOMPARE(names, (QStringList {u"letter (Recovered)"_s, u"letter 2 (Recovered)"_s}));
    QVERIFY2(places[1] > places[0], "no title hides another");
}

void TestRecovery::aRecoveredDocumentGoesWhereItsEndSays_data()
{
    QTest::addColumn<bool>("unlocks");
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("closed while sealed: kept for the next start") << false << QString() << true;
    QTest::newRow("discarded: gone") << true << u"Don't Save"_s << false;
    QTest::newRow("saved: gone") << true << u"Save"_s << false;
    QTest::newRow("the close is cancelled: kept") << true << u"Cancel"_s << true;
}

void TestRecovery::aRecoveredDocumentGoesWhereItsEndSays()
{
    QFETCH(bool, unlocks);
    QFETCH(QString, button);
    QFETCH(bool, isKept);
    World world;
    world.recovery.kept.insert(7, knownFile("text", password));
    ProgramRun program(world);
    program.controller.restoreRecoveredDocuments();
    if (unlocks) {
        program.document()->submitPasswordToDecrypt(password);
    }
    program.document()->performClose();
    QCOMPARE(program.answer(button), unlocks);
    if (button == u"Save"_s) {
        QVERIFY(world.panels.answerSave(path));
        QCOMPARE(bodyOf(world, world.files.files.value(path), password),
                 std::optional(QByteArray("text")));
    }
    world.queue.runAll();
    QCOMPARE(program.document() == nullptr, button != u"Cancel"_s);
    QCOMPARE(world.recovery.kept.contains(7), isKept);
}

void TestRecovery::anEndWithoutReviewKeepsWhatHasNoFile()
{
    World world;
    ProgramRun program(world);
    program.newDocument(password);
    program.type("text");
    program.controller.closeWithoutReview();
    QVERIFY(!program.document());
    QCOMPARE(bodyOf(world, world.recovery.kept.first(), password),
             std::optional(QByteArray("text")));
    QVERIFY(world.alerts.shown.isEmpty() && program.window().alerts.isEmpty());
}

void TestRecovery::whatIsDamagedIsToldOfAndLeft()
{
    World world;
    world.recovery.kept.insert(7, "damaged");
    ProgramRun program(world);
    program.controller.restoreRecoveredDocuments();
    QVERIFY(!program.document());
    QVERIFY(world.alerts.shown.first().informativeText.contains(u"/state/7"_s));
    QCOMPARE(world.recovery.kept.value(7), QByteArray("damaged"));
}

void TestRecovery::thatNothingCanBeKeptIsToldOnce()
{
    World world;
    world.recovery.writeError = FileError {ENOSPC, filestep::writing, u"/state"_s};
    ProgramRun program(world);
    program.newDocument(password);
    program.type("text");
    world.timers.advance(5);
    QVERIFY(program.answer(u"OK"_s));
    world.timers.advance(100);
    QCOMPARE(program.window().alerts.size(), 1);
    world.recovery.writeError.reset();
    world.timers.advance(30);
    QCOMPARE(world.recovery.kept.size(), 1);
}

QTEST_GUILESS_MAIN(TestRecovery)
#include "tst_recovery.moc"
