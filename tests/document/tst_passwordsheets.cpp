#include "documentfixture.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString notice =
    u"This password will be used when saving this document.\nData will be stored on disk encrypted "
    "using a secure algorithm.\n\nNext time, to open this document, this password will be "
    "required.\nStore your password in a safe place.\nThere is no way, even for %1, to open the "
    "document and decrypt the data without the right password."_s;

void fill(MyDocument &document, const QString &inserted, const QString &retype,
          const QString &previous = u""_s)
{
    document.setPlainPasswordPrevious(previous);
    document.setPlainPasswordInserted(inserted);
    document.setPlainPasswordInsertedRetype(retype);
}

} // namespace

class TestPasswordSheets : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewDocumentIsAskedOnceWhenItsOwnWindowBecomesKey();
    void whoHasAPasswordOrAFileIsNotAsked();
    void theMandatorySheetTellsWhatIsWrong_data();
    void theMandatorySheetTellsWhatIsWrong();
    void theTwoRetriesComeBackByTheirOwnWays();
    void theMandatorySheetAccepts();
    void decliningClosesOnALaterTurnAlsoWithText();
    void theChangeSheetTellsTheFirstThingThatIsWrong_data();
    void theChangeSheetTellsTheFirstThingThatIsWrong();
    void theChangeSheetChanges();
    void theInsertSheetSetsAPasswordAndRetriesWithTheChangeSheet();
    void aSheetThatIsUpDiesWithItsDocumentInSilence();
};

void TestPasswordSheets::aNewDocumentIsAskedOnceWhenItsOwnWindowBecomesKey()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    ScriptedWindow other(world.queue);
    fresh.document->windowDidBecomeKey(other);
    QVERIFY(fresh.document->requiresMandatoryPassword());
    fresh.document->windowDidBecomeKey(fresh.outlets->window);
    QVERIFY(!fresh.document->requiresMandatoryPassword());
    QCOMPARE(fresh.outlets->mandatorySheet.begun, 0);
    world.queue.runAll();
    QCOMPARE(fresh.outlets->mandatorySheet.begun, 1);
    fresh.document->windowDidBecomeKey(fresh.outlets->window);
    world.queue.runAll();
    QCOMPARE(fresh.outlets->mandatorySheet.begun, 1);
}

void TestPasswordSheets::whoHasAPasswordOrAFileIsNotAsked()
{
    World world;
    WindowedDocument opened(world, fileOf(world, "text", u"password"_s));
    opened.document->windowDidBecomeKey(opened.outlets->window);
    WindowedDocument given(world);
    given.show(world);
    given.document->setPlainPassword(u"password"_s);
    given.document->windowDidBecomeKey(given.outlets->window);
    world.queue.runAll();
    QCOMPARE(opened.outlets->mandatorySheet.begun + given.outlets->mandatorySheet.begun, 0);
    QVERIFY(!given.document->requiresMandatoryPassword());
}

void TestPasswordSheets::theMandatorySheetTellsWhatIsWrong_data()
{
    QTest::addColumn<std::optional<QString>>("inserted");
    QTest::addColumn<std::optional<QString>>("retype");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("information");
    const QString unequal = u"Password inserted in the two fields doesn't match"_s;
    const QString unequalWhy = u"You must insert exactly the same password in the two fields."_s;
    const QString tooShort = u"Password too short"_s;
    const QString tooShortWhy =
        u"You have to use a password which is at least six character long."_s;
    using Text = std::optional<QString>;
    QTest::newRow("five units are too few")
        << Text(u"abcde"_s) << Text(u"abcde"_s) << tooShort << tooShortWhy;
    QTest::newRow("two empty fields are too short")
        << Text(u""_s) << Text(u""_s) << tooShort << tooShortWhy;
    QTest::newRow("case counts") << Text(u"secret"_s) << Text(u"Secret"_s) << unequal << unequalWhy;
    QTest::newRow("nothing is trimmed")
        << Text(u"secret"_s) << Text(u"secret "_s) << unequal << unequalWhy;
    QTest::newRow("nothing is normalised")
        << Text(u"caf\u00e9--"_s) << Text(u"cafe\u0301--"_s) << unequal << unequalWhy;
    QTest::newRow("unequal goes before too short")
        << Text(u"a"_s) << Text(u"b"_s) << unequal << unequalWhy;
    QTest::newRow("absent fields equal nothing") << Text() << Text() << unequal << unequalWhy;
}

void TestPasswordSheets::theMandatorySheetTellsWhatIsWrong()
{
    QFETCH(std::optional<QString>, inserted);
    QFETCH(std::optional<QString>, retype);
    QFETCH(QString, message);
    QFETCH(QString, information);
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    fresh.document->documentPassword();
    QCOMPARE(fresh.outlets->mandatorySheet.begun, 1);
    fresh.document->setPlainPasswordInserted(inserted);
    fresh.document->setPlainPasswordInsertedRetype(retype);
    fresh.document->confirmMandatoryPasswordSheet(1000);
    world.queue.runAll();
    QCOMPARE(fresh.outlets->window.alerts, QList<NSAlert>({{message, information, {u"Retry"_s}}}));
    QVERIFY(fresh.document->plainPassword().isEmpty() && !fresh.document->isDocumentEdited());
    fresh.outlets->window.answer(AlertAnswer::First);
    world.queue.runAll();
    QCOMPARE(fresh.outlets->mandatorySheet.begun, 2);
    QCOMPARE(fresh.document->plainPasswordInserted(), inserted);
    QCOMPARE(fresh.document->plainPasswordInsertedRetype(), retype);
}

void TestPasswordSheets::theTwoRetriesComeBackByTheirOwnWays()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    const auto begunAfterOtherCode = [&](const QString &inserted, const QString &retype) {
        fresh.document->askMandatoryPasswordToProtectDocument();
        world.queue.runAll();
        fill(*fresh.document, inserted, retype);
        fresh.document->confirmMandatoryPasswordSheet(1000);
        world.queue.runAll();
        const int before = fresh.outlets->mandatorySheet.begun;
        fresh.outlets->window.answer(1001);
        world.queue.runAll();
        return fresh.outlets->mandatorySheet.begun - before;
    };
    QCOMPARE(begunAfterOtherCode(u"abcdef"_s, u"abcdeg"_s), 0);
    QCOMPARE(begunAfterOtherCode(u"abc"_s, u"abc"_s), 1);
}

void TestPasswordSheets::theMandatorySheetAccepts()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    fresh.document->askMandatoryPasswordToProtectDocument();
    // Three characters outside the basic plane are six units.
    const QString password = u"\U0001F600\U0001F601\U0001F602"_s;
    fill(*fresh.document, password, password, u"left alone"_s);
    fresh.document->confirmMandatoryPasswordSheet(1000);
    QVERIFY(fresh.document->isDocumentEdited());
    world.queue.runAll();
    QCOMPARE(fresh.outlets->window.alerts,
             QList<NSAlert>({{u"Password accepted"_s,
                              notice.arg(u"the developers of this application"_s),
                              {u"OK"_s}}}));
    QCOMPARE(fresh.document->plainPassword(), password);
    QCOMPARE(fresh.document->plainPasswordInserted(), std::optional(QString(u""_s)));
    QCOMPARE(fresh.document->plainPasswordInsertedRetype(), std::optional(QString(u""_s)));
    QCOMPARE(fresh.document->plainPasswordPrevious(), std::optional(QString(u"left alone"_s)));
    QCOMPARE(fresh.document->showClearPasswordInInsertPasswordSheet(), std::optional(true));
    QVERIFY(!fresh.document->fileURL() && !fresh.document->isEncrypted());
}

void TestPasswordSheets::decliningClosesOnALaterTurnAlsoWithText()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    fresh.outlets->textView.type("text");
    fresh.document->textDidChange();
    fresh.document->askMandatoryPasswordToProtectDocument();
    fill(*fresh.document, u"typed text"_s, u"typed text"_s);
    fresh.document->confirmMandatoryPasswordSheet(1001);
    QVERIFY(!fresh.document->isClosed());
    QCOMPARE(fresh.document->plainPasswordInserted(), std::optional(QString(u"typed text"_s)));
    world.queue.runAll();
    QVERIFY(fresh.document->isClosed());
    QCOMPARE(fresh.outlets->window.alerts.size(), 0);
    QCOMPARE(world.files.replaces, 0);
}

void TestPasswordSheets::theChangeSheetTellsTheFirstThingThatIsWrong_data()
{
    QTest::addColumn<QString>("previous");
    QTest::addColumn<QString>("inserted");
    QTest::addColumn<QString>("retype");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("information");
    const QString none = u"No changes were applied"_s;
    const QString old =
        u"Password inserted in the 'Old Master Password' field must be equal to the password "
        "previously used to protect this document."_s;
    QTest::newRow("the old password before all else")
        << u"wrong"_s << u"a"_s << u"b"_s << old << none;
    QTest::newRow("then the repeat")
        << u"password"_s << u"a"_s << u"b"_s
        << u"Passwords inserted in the two fields doesn't match"_s
        << u"You must insert exactly the same password in the two 'New Password' fields. No changes were applied"_s;
    QTest::newRow("then the length")
        << u"password"_s << u"abcde"_s << u"abcde"_s
        << u"Password Too Short. You have to use a password which is at least six character long."_s
        << none;
}

void TestPasswordSheets::theChangeSheetTellsTheFirstThingThatIsWrong()
{
    QFETCH(QString, previous);
    QFETCH(QString, inserted);
    QFETCH(QString, retype);
    QFETCH(QString, message);
    QFETCH(QString, information);
    World world;
    WindowedDocument windowed(world, fileOf(world, "text", u"password"_s));
    windowed.document->submitPasswordToDecrypt(u"password"_s);
    fill(*windowed.document, u"left over"_s, u"left over"_s, u"left over"_s);
    windowed.document->documentPassword();
    QCOMPARE(windowed.outlets->changeSheet.begun, 1);
    QCOMPARE(windowed.document->plainPasswordPrevious(), std::optional(QString(u""_s)));
    fill(*windowed.document, inserted, retype, previous);
    windowed.document->confirmChangePasswordSheet();
    QVERIFY2(!windowed.outlets->changeSheet.isUp(), "the sheet is gone before any test");
    world.queue.runAll();
    QCOMPARE(windowed.outlets->window.alerts,
             QList<NSAlert>({{message, information, {u"Retry"_s, u"Cancel"_s}}}));
    QVERIFY(!windowed.document->isDocumentEdited());
    windowed.outlets->window.answer(AlertAnswer::First);
    QCOMPARE(windowed.outlets->changeSheet.begun, 1);
    world.queue.runAll();
    QCOMPARE(windowed.outlets->changeSheet.begun, 2);
    QCOMPARE(windowed.document->plainPasswordInserted(), std::optional(inserted));
    windowed.document->cancelChangePasswordSheet();
    world.queue.runAll();
    QCOMPARE(windowed.document->plainPasswordPrevious(), std::optional(previous));
    QCOMPARE(windowed.document->plainPassword(), u"password"_s);
}

void TestPasswordSheets::theChangeSheetChanges()
{
    World world;
    const QByteArray file = fileOf(world, "text", u"password"_s);
    WindowedDocument windowed(world, file);
    windowed.document->setFileURL(u"/documents/a.quorvane"_s);
    windowed.document->submitPasswordToDecrypt(u"password"_s);
    windowed.document->documentPassword();
    fill(*windowed.document, u"another"_s, u"another"_s, u"password"_s);
    windowed.document->confirmChangePasswordSheet();
    world.queue.runAll();
    const NSAlert changed {
        u"Password changed successfuly"_s,
        u"This new password will be used when saving this document.\nData will be stored on disk "
        "encrypted using a secure algorithm.\n\nNext time, to open this document, this new "
        "password "
        "will be required.\nStore your new password in a safe place.\nThere is no way, even for "
        "the "
        "Orbelt, to open the document and decrypt the data without the right password."_s,
        {u"OK"_s}};
    QCOMPARE(windowed.outlets->window.alerts, QList<NSAlert>({changed}));
    QCOMPARE(windowed.document->plainPassword(), u"another"_s);
    QCOMPARE(windowed.document->plainPasswordPrevious(), std::optional(QString(u""_s)));
    QVERIFY(windowed.document->isDocumentEdited());
    windowed.document->saveDocument();
    for (const auto &[password, opens] :
         {std::pair(u"another"_s, true), std::pair(u"password"_s, false)}) {
        MyDocument reopened(world.surroundings());
        QVERIFY(reopened.readFromData(world.files.files.first()));
        reopened.setPlainPassword(password);
        QCOMPARE(reopened.Decript() == 0, opens);
    }
}

void TestPasswordSheets::theInsertSheetSetsAPasswordAndRetriesWithTheChangeSheet()
{
    World world;
    WindowedDocument windowed(world);
    windowed.show(world);
    ScriptedWindow &window = windowed.outlets->window;
    windowed.document->showInsertPasswordSheet(window);
    fill(*windowed.document, u"password"_s, u"password"_s, u"left alone"_s);
    windowed.document->cancelInsertPasswordSheet();
    QVERIFY(windowed.document->plainPassword().isEmpty());
    world.queue.runAll();
    windowed.document->showInsertPasswordSheet(window);
    fill(*windowed.document, u"abc"_s, u"abc"_s, u"left alone"_s);
    windowed.document->confirmInsertPasswordSheet();
    world.queue.runAll();
    window.answer(AlertAnswer::First);
    world.queue.runAll();
    QCOMPARE(windowed.outlets->changeSheet.begun, 1);
    windowed.document->cancelChangePasswordSheet();
    world.queue.runAll();
    windowed.document->showInsertPasswordSheet(window);
    fill(*windowed.document, u"password"_s, u"password"_s, u"left alone"_s);
    windowed.document->confirmInsertPasswordSheet();
    world.queue.runAll();
    QCOMPARE(window.alerts.last(),
             (NSAlert {u"Password accepted"_s, notice.arg(u"Orbelt"_s), {u"OK"_s}}));
    QCOMPARE(windowed.document->plainPassword(), u"password"_s);
    QCOMPARE(windowed.document->plainPasswordPrevious(), std::optional(QString(u"left alone"_s)));
    QVERIFY(windowed.document->isDocumentEdited());
}

void TestPasswordSheets::aSheetThatIsUpDiesWithItsDocumentInSilence()
{
    World world;
    WindowedDocument fresh(world);
    fresh.show(world);
    fresh.document->askMandatoryPasswordToProtectDocument();
    fill(*fresh.document, u"password"_s, u"password"_s);
    fresh.document->close();
    world.queue.runAll();
    QVERIFY(fresh.document->plainPassword().isEmpty());
    QCOMPARE(fresh.outlets->window.alerts.size(), 0);
}

QTEST_GUILESS_MAIN(TestPasswordSheets)
#include "tst_passwordsheets.moc"
