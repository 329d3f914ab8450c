#include "programfixture.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString path = u"/documents/letter.quorvane"_s;
const QString elsewhere = u"/documents/other.quorvane"_s;
const QString password = u"correct horse"_s;

/// A document with a file, open.
struct Scene
{
    Scene()
    {
        world.files.files.insert(path, knownFile("old", password));
        program.open(path);
        program.document()->submitPasswordToDecrypt(password);
        program.window().calls.clear();
    }

    std::optional<QByteArray> onDisk(const QString &file = path)
    {
        return bodyOf(world, world.files.files.value(file), password);
    }

    /// What another program does.
    void changeOutside() { world.files.files.insert(path, knownFile("theirs", password)); }

    QStringList asked() const
    {
        QStringList texts;
        for (const NSAlert &alert : program.window().alerts) {
            texts << alert.messageText;
        }
        return texts;
    }

    World world;
    ProgramRun program {world};
};

const QString changedText = u"“letter.quorvane” has been changed by another program."_s;
const QString missingText = u"“letter.quorvane” has been moved or deleted."_s;

} // namespace

/// What a document does by itself about its file, and what it asks.
class TestDocumentMachinery : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void changesAreSavedAfterAPauseAndAtTheLatest_data();
    void changesAreSavedAfterAPauseAndAtTheLatest();
    void anAutosaveDisturbsNobody();
    void aFailedAutosaveIsToldOnceAndTriedAgain();
    void aConflictLeadsWhereTheAnswerSays_data();
    void aConflictLeadsWhereTheAnswerSays();
    void aConflictIsAskedAboutOnceAndNothingIsOverwrittenMeanwhile();
    void aFileThatWasOnlyTouchedIsNotChanged();
    void aFileThatComesBackIsSavedTo();
    void anotherWindowsStateDecidesWhatAChangeMeans_data();
    void anotherWindowsStateDecidesWhatAChangeMeans();
    void aSaveOntoTheOwnFileThroughThePanelIsNoConflict();
    void aCloseAsksAboutAConflict();
    void anAutomaticLockAnswersNoQuestionOfTheMachinery();
    void revertReadsTheFileAsAtOpening();
    void revertThatCannotReadLeavesAllAsItIs();
    void revertOfADocumentWithoutAFileIsRefused();
    void filesThatAreUsedAreToldOf();
    void theSecondRouteSavesAndBringsForward_data();
    void theSecondRouteSavesAndBringsForward();
};

void TestDocumentMachinery::changesAreSavedAfterAPauseAndAtTheLatest_data()
{
    QTest::addColumn<int>("changes");
    QTest::addColumn<double>("pause");
    QTest::addColumn<bool>("isUndone");
    QTest::addColumn<double>("before");
    QTest::addColumn<int>("saves");
    QTest::newRow("five seconds after the last change") << 1 << 0.0 << false << 4.9 << 1;
    QTest::newRow("thirty seconds after the first") << 8 << 4.0 << false << 1.9 << 1;
    QTest::newRow("never what was undone") << 1 << 0.0 << true << 4.9 << 0;
}

void TestDocumentMachinery::changesAreSavedAfterAPauseAndAtTheLatest()
{
    QFETCH(int, changes);
    QFETCH(double, pause);
    QFETCH(bool, isUndone);
    QFETCH(double, before);
    QFETCH(int, saves);
    Scene scene;
    for (int i = 0; i < changes; ++i) {
        scene.world.timers.advance(i > 0 ? pause : 0);
        scene.program.type(QByteArray::number(i));
    }
    if (isUndone) {
        scene.program.outlets().textView.markUnedited();
        scene.program.document()->textDidChange();
    }
    scene.world.timers.advance(before);
    QCOMPARE(scene.world.files.replaces, 0);
    scene.world.timers.advance(0.2);
    QCOMPARE(scene.world.files.replaces, saves);
    scene.world.timers.advance(100);
    QCOMPARE(scene.world.files.replaces, saves);
    if (saves > 0) {
        QCOMPARE(scene.onDisk(), std::optional(QByteArray::number(changes - 1)));
        QVERIFY(!scene.program.document()->isDocumentEdited());
    }
}

void TestDocumentMachinery::anAutosaveDisturbsNobody()
{
    Scene scene;
    scene.program.type("new");
    const int focused = scene.program.outlets().textView.focused;
    const int bodiesSet = scene.program.outlets().textView.bodiesSet;
    scene.world.timers.advance(5);
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("new")));
    QCOMPARE(scene.program.window().calls, QStringList());
    QCOMPARE(scene.program.outlets().textView.focused, focused);
    QCOMPARE(scene.program.outlets().textView.bodiesSet, bodiesSet); // undo stays
    scene.program.type("more");
    scene.program.controller.autosaveDocuments();
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("more")));
}

void TestDocumentMachinery::aFailedAutosaveIsToldOnceAndTriedAgain()
{
    Scene scene;
    const auto breakDisk = [&scene] {
        scene.world.files.replaceError = FileError {ENOSPC, filestep::writing, path};
    };
    breakDisk();
    scene.program.type("new");
    scene.world.timers.advance(5);
    QVERIFY(scene.program.answer(u"OK"_s));
    scene.world.timers.advance(30);
    QCOMPARE(scene.world.files.replaces, 2);
    scene.world.files.replaceError.reset();
    scene.world.timers.advance(30);
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("new")));
    QCOMPARE(scene.asked().size(), 1);
    breakDisk();
    scene.program.type("newer");
    scene.world.timers.advance(5);
    QCOMPARE(scene.asked(), QStringList(2, u"“letter.quorvane” could not be saved."_s));
    QVERIFY(scene.program.document()->isDocumentEdited());
}

void TestDocumentMachinery::aConflictLeadsWhereTheAnswerSays_data()
{
    QTest::addColumn<bool>("isGone");
    QTest::addColumn<bool>("isSaved");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("result");
    for (const bool isGone : {false, true}) {
        for (const bool isSaved : {false, true}) {
            const auto row = [isGone, isSaved](const char *button, const char *result) {
                const QByteArray name = QByteArray(isGone ? "gone" : "changed")
                    + (isSaved ? ", found by a save: " : ", found by an autosave: ") + button;
                QTest::newRow(name.constData())
                    << isGone << isSaved << QString::fromUtf8(button) << QString::fromUtf8(result);
            };
            row("Save Anyway", "mine");
            row("Save As…", "mine elsewhere");
            row("Cancel", "untouched");
            if (!isGone) {
                row("Revert", "sealed");
            }
        }
    }
}

void TestDocumentMachinery::aConflictLeadsWhereTheAnswerSays()
{
    QFETCH(bool, isGone);
    QFETCH(bool, isSaved);
    QFETCH(QString, button);
    QFETCH(QString, result);
    Scene scene;
    if (isGone) {
        scene.world.files.files.remove(path);
    } else {
        scene.changeOutside();
    }
    const QByteArray before = scene.world.files.files.value(path);
    scene.program.type("mine");
    if (isSaved) {
        scene.program.document()->saveDocument();
    } else {
        scene.world.timers.advance(5);
    }
    scene.world.queue.runAll();
    QCOMPARE(scene.asked(), QStringList(isGone ? missingText : changedText));
    QCOMPARE(scene.program.window().alerts.last().buttons.last(), u"Cancel"_s);
    QVERIFY(scene.program.answer(button));
    if (result == u"mine elsewhere"_s) {
        QVERIFY(scene.world.panels.answerSave(elsewhere));
        QCOMPARE(scene.onDisk(elsewhere), std::optional(QByteArray("mine")));
        QCOMPARE(scene.program.document()->fileURL(), elsewhere);
    }
    QCOMPARE(scene.program.document()->isEncrypted(), result == u"sealed"_s);
    QCOMPARE(scene.program.document()->hasUnsavedChanges(), result == u"untouched"_s);
    if (result == u"mine"_s) {
        QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
    } else {
        QCOMPARE(scene.world.files.files.value(path), before);
    }
    QCOMPARE(scene.world.recovery.kept.isEmpty(), isSaved || result != u"untouched"_s);
}

void TestDocumentMachinery::aConflictIsAskedAboutOnceAndNothingIsOverwrittenMeanwhile()
{
    Scene scene;
    scene.changeOutside();
    scene.program.becomeKey();
    QCOMPARE(scene.asked(), QStringList(changedText));
    QVERIFY(scene.program.answer(u"Cancel"_s));
    scene.program.becomeKey();
    scene.program.type("mine");
    scene.world.timers.advance(100);
    scene.program.controller.autosaveDocuments();
    scene.world.queue.runAll();
    QCOMPARE(scene.asked().size(), 1);
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("theirs")));
    QCOMPARE(bodyOf(scene.world, scene.world.recovery.kept.first(), password),
             std::optional(QByteArray("mine")));
    // Another change is another question, also for who has agreed to lose the first one.
    scene.program.document()->saveDocument();
    scene.world.files.files.insert(path, knownFile("theirs again", password));
    QVERIFY(scene.program.answer(u"Save Anyway"_s));
    QCOMPARE(scene.asked().size(), 3);
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("theirs again")));
    QVERIFY(scene.program.answer(u"Save Anyway"_s));
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
    QVERIFY(scene.world.recovery.kept.isEmpty());
}

void TestDocumentMachinery::aFileThatWasOnlyTouchedIsNotChanged()
{
    Scene scene;
    scene.world.files.touches[path] = 1;
    scene.program.becomeKey();
    scene.world.files.stampError = FileError {ESTALE, filestep::lookingAtFile, path};
    scene.program.becomeKey(); // of a disk that is away for the moment nothing is known
    scene.world.files.stampError.reset();
    scene.program.type("mine");
    scene.world.files.touches[path] = 2;
    scene.world.timers.advance(5);
    QCOMPARE(scene.asked(), QStringList());
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
}

void TestDocumentMachinery::aFileThatComesBackIsSavedTo()
{
    Scene scene;
    const QByteArray file = scene.world.files.files.take(path);
    scene.program.type("mine");
    scene.world.timers.advance(5);
    scene.program.answer(u"Cancel"_s);
    scene.world.files.files.insert(path, file);
    scene.world.timers.advance(30);
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
    QCOMPARE(scene.asked().size(), 1);
}

void TestDocumentMachinery::anotherWindowsStateDecidesWhatAChangeMeans_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("isAsked");
    QTest::addColumn<QByteArray>("opensWith");
    QTest::newRow("sealed: read anew, nobody is asked")
        << u"sealed"_s << false << QByteArray("theirs");
    QTest::newRow("locked in this run: asked") << u"locked"_s << true << QByteArray("old");
    QTest::newRow("sealed, with a damaged file: as it was")
        << u"damaged"_s << false << QByteArray("old");
}

void TestDocumentMachinery::anotherWindowsStateDecidesWhatAChangeMeans()
{
    QFETCH(QString, state);
    QFETCH(bool, isAsked);
    QFETCH(QByteArray, opensWith);
    World world;
    world.files.files.insert(path, knownFile("old", password));
    ProgramRun program(world);
    program.open(path);
    if (state == u"locked"_s) {
        program.document()->submitPasswordToDecrypt(password);
        program.document()->doLockDocument();
    }
    world.files.files.insert(
        path, state == u"damaged"_s ? QByteArray("?") : knownFile("theirs", password));
    program.becomeKey();
    QCOMPARE(program.answer(u"Cancel"_s), isAsked);
    program.document()->submitPasswordToDecrypt(password);
    QCOMPARE(program.document()->myTextViewData(), std::optional(opensWith));
    QCOMPARE(world.files.replaces, 0);
}

void TestDocumentMachinery::aSaveOntoTheOwnFileThroughThePanelIsNoConflict()
{
    Scene scene;
    scene.changeOutside();
    scene.program.type("mine");
    scene.program.document()->saveDocumentAs();
    QVERIFY(scene.world.panels.answerSave(path)); // the panel has asked
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
    QCOMPARE(scene.asked(), QStringList());
}

void TestDocumentMachinery::aCloseAsksAboutAConflict()
{
    Scene scene;
    scene.changeOutside();
    scene.program.type("mine");
    bool isClosed = true;
    scene.program.controller.closeAllDocuments([&isClosed](bool closed) { isClosed = closed; });
    QCOMPARE(scene.program.window().alerts.last().buttons,
             QStringList({u"Save As…"_s, u"Save Anyway"_s, u"Close Anyway"_s, u"Cancel"_s}));
    QVERIFY(scene.program.answer(u"Cancel"_s));
    QVERIFY(!isClosed && scene.program.document());
    scene.program.document()->performClose();
    QVERIFY(scene.program.answer(u"Save Anyway"_s));
    QVERIFY(!scene.program.document());
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("mine")));
}

void TestDocumentMachinery::anAutomaticLockAnswersNoQuestionOfTheMachinery()
{
    Scene scene;
    scene.changeOutside();
    scene.program.type("mine");
    scene.program.document()->saveDocument();
    scene.program.document()->lockAutomatically(); // ends the question with a first button's code
    scene.world.queue.runAll();
    QVERIFY(scene.program.document()->isEncrypted());
    QCOMPARE(scene.onDisk(), std::optional(QByteArray("theirs")));
    QVERIFY(scene.program.document()->hasUnsavedChanges());
    scene.program.document()->lockAutomatically();
    QCOMPARE(scene.world.queue.size(), std::size_t(0)); // locked already

    Scene asked;
    asked.program.type("mine");
    asked.program.document()->revertDocumentToSaved();
    asked.program.document()->lockAutomatically();
    asked.world.queue.runAll();
    QVERIFY(asked.program.document()->isEncrypted());
    QCOMPARE(asked.onDisk(), std::optional(QByteArray("mine")));
}

void TestDocumentMachinery::revertReadsTheFileAsAtOpening()
{
    Scene scene;
    scene.program.type("mine");
    scene.program.document()->revertDocumentToSaved();
    QVERIFY(scene.asked().last().startsWith(
        u"Do you want to revert “letter” to the version saved on 1 January 1970 at "_s));
    QVERIFY(scene.program.answer(u"Cancel"_s));
    QVERIFY(!scene.program.document()->isEncrypted());
    scene.program.document()->revertDocumentToSaved();
    scene.program.window().currentFrame = {1, 2, 900, 700};
    scene.program.outlets().toolbar.visible = true;
    QVERIFY(scene.program.answer(u"Revert"_s));
    MyDocument &document = *scene.program.document();
    QVERIFY(document.isEncrypted() && !document.isDocumentEdited());
    QCOMPARE(document.plainPassword(), password);
    QCOMPARE(document.myTextViewData(), std::optional(QByteArray("mine")));
    QCOMPARE(scene.program.window().currentFrame, (NSRect {1, 2, 900, 700}));
    QVERIFY(scene.program.outlets().toolbar.visible);
    scene.world.timers.advance(100);
    document.doLockDocument(); // one that was queued before
    scene.world.queue.runAll();
    QCOMPARE(scene.world.files.replaces, 0);
    document.submitPasswordToDecrypt(password);
    QCOMPARE(document.myTextViewData(), std::optional(QByteArray("old")));
}

void TestDocumentMachinery::revertThatCannotReadLeavesAllAsItIs()
{
    Scene scene;
    scene.program.type("mine");
    scene.world.files.files.insert(path, "no document");
    scene.program.document()->revertDocumentToSaved();
    QVERIFY(scene.program.answer(u"Revert"_s));
    QCOMPARE(scene.asked().last(), u"“letter” could not be reverted."_s);
    QVERIFY(scene.program.document()->isDocumentEdited());
    QVERIFY(!scene.program.document()->isEncrypted());
    QCOMPARE(scene.program.document()->myTextViewData(), std::optional(QByteArray("mine")));
}

void TestDocumentMachinery::revertOfADocumentWithoutAFileIsRefused()
{
    World world;
    ProgramRun program(world);
    program.newDocument(password);
    program.document()->revertDocumentToSaved();
    QCOMPARE(program.window().alerts.last().messageText, u"“Untitled” has never been saved."_s);
    QVERIFY(program.answer(u"OK"_s));
    QVERIFY(!program.document()->isEncrypted());
}

void TestDocumentMachinery::filesThatAreUsedAreToldOf()
{
    World world;
    world.files.files.insert(path, knownFile("old", password));
    ProgramRun program(world);
    QStringList used;
    connect(&program.controller, &NSDocumentController::fileUsed, this,
            [&used](const QString &file) { used << file; });
    program.open(path);
    program.document()->submitPasswordToDecrypt(password);
    program.type("mine");
    world.timers.advance(5); // by itself: it is used already
    program.document()->saveDocument();
    program.document()->saveDocumentAs();
    world.panels.answerSave(elsewhere);
    QCOMPARE(used, QStringList({path, path, elsewhere}));
}

void TestDocumentMachinery::theSecondRouteSavesAndBringsForward_data()
{
    QTest::addColumn<int>("returnCode");
    QTest::addColumn<bool>("isEdited");
    QTest::addColumn<bool>("fails");
    QTest::addColumn<QStringList>("calls");
    const QStringList forward {u"makeKeyAndOrderFront"_s};
    QTest::newRow("declined: nothing") << 1001 << true << false << QStringList();
    QTest::newRow("edited: saved, then brought forward") << 1000 << true << false << forward;
    QTest::newRow("edited, and the save fails: stopped") << 1000 << true << true << QStringList();
    QTest::newRow("unedited: brought forward on a later turn") << 1000 << false << false << forward;
}

void TestDocumentMachinery::theSecondRouteSavesAndBringsForward()
{
    QFETCH(int, returnCode);
    QFETCH(bool, isEdited);
    QFETCH(bool, fails);
    QFETCH(QStringList, calls);
    Scene scene;
    if (isEdited) {
        scene.program.type("mine");
    }
    if (fails) {
        scene.world.files.replaceError = FileError {ENOSPC, filestep::writing, path};
    }
    scene.program.document()->didDismissLockDocument(returnCode);
    if (!isEdited) {
        QVERIFY(scene.program.window().calls.isEmpty());
    }
    scene.world.queue.runAll();
    QStringList seen = scene.program.window().calls;
    seen.removeAll(u"beginAlert"_s);
    QCOMPARE(seen, calls);
    QCOMPARE(scene.world.files.replaces, isEdited && returnCode == 1000 ? 1 : 0);
    QVERIFY(!scene.program.document()->isEncrypted());
}

QTEST_GUILESS_MAIN(TestDocumentMachinery)
#include "tst_documentmachinery.moc"
