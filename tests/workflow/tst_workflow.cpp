#include "document/documentfile.h"
#include "editor/formattoolbar.h"
#include "workflow/realprogram.h"

#include <QTextBlock>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QString path = u"/documents/letter.quorvane"_s;

} // namespace

class TestWorkflow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDocumentIsBornProtectedSavedClosedAndOpenedAgain();
    void theMandatorySheetLeadsWhereItsTableSays_data();
    void theMandatorySheetLeadsWhereItsTableSays();
    void aLockedWindowShowsNoWordAndOffersNothing();
    void aBodyThatNobodyEditedGoesBackAsItCame_data();
    void aBodyThatNobodyEditedGoesBackAsItCame();
    void undoAndCaretSurviveALock();
    void theCloseButtonSavesWhatHasAFile_data();
    void theCloseButtonSavesWhatHasAFile();
    void anUntitledDocumentAsksBeforeItCloses();
    void aReadOnlyDocumentCannotBeTypedInto();
    void anEmptyPasswordIsNoTryAndASealedDocumentClosesAtOnce();
    void theChangeSheetChangesThePasswordFromTheNextSaveOn();
    void whatWasTypedBeforeALockIsInTheFile_data();
    void whatWasTypedBeforeALockIsInTheFile();

private:
    static bool protect(RealProgram &program);
    static bool unlock(RealProgram &program, const QString &with);
    static QByteArray savedFile(const QByteArray &body, bool isEditable = true);
};

bool TestWorkflow::protect(RealProgram &program)
{
    program.documents.newDocument();
    return QTest::qWaitFor([] { return RealProgram::dialog() != nullptr; })
        && RealProgram::type(*RealProgram::dialog(), u"Password"_s, password)
        && RealProgram::type(*RealProgram::dialog(), u"Retype Password"_s, password)
        && RealProgram::press(u"Set Password"_s) && QTest::qWaitFor([] {
               return RealProgram::dialogText().contains(u"Password accepted"_s);
           })
        && RealProgram::press(u"OK"_s)
        && QTest::qWaitFor([] { return RealProgram::dialog() == nullptr; });
}

bool TestWorkflow::unlock(RealProgram &program, const QString &with)
{
    LockedPage &page = program.window().lockedPage();
    if (!RealProgram::type(page, u"Master Password"_s, with)) {
        return false;
    }
    QTest::keyClick(RealProgram::field(page, u"Master Password"_s), Qt::Key_Return);
    return !program.document()->isEncrypted();
}

QByteArray TestWorkflow::savedFile(const QByteArray &body, bool isEditable)
{
    return RealProgram().fileOf(body, password, isEditable);
}

void TestWorkflow::aDocumentIsBornProtectedSavedClosedAndOpenedAgain()
{
    RealProgram program;
    QVERIFY(protect(program));
    QTest::keyClicks(&program.editor(), u"plain "_s);
    program.menuItem(u"Bold"_s)->trigger();
    QTest::keyClicks(&program.editor(), u"bold"_s);
    QVERIFY(program.window().isWindowModified());
    program.menuItem(u"Save"_s)->trigger();
    QVERIFY(QTest::qWaitFor([&program] { return program.panels.answerSave(path); }));
    QTRY_VERIFY(program.files.files.contains(path));
    QVERIFY(!program.window().isWindowModified());
    QVERIFY(!program.files.files.value(path).contains("bold"));
    program.menuItem(u"Close"_s)->trigger();
    QTRY_VERIFY(!program.document());

    program.documents.openDocumentWithContentsOfURL(path);
    QCoreApplication::processEvents(); // the locked frame comes on a later turn
    QTRY_COMPARE(program.window().size(), program.window().minimumSize());
    QVERIFY(program.window().showsLockedAppearance());
    QVERIFY(program.document()->isEncrypted());
    QVERIFY(!unlock(program, u"wrong horse"_s));
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Wrong Password"_s));
    RealProgram::press(u"OK"_s);
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(unlock(program, password));
    QCOMPARE(program.editor().toPlainText(), u"plain bold"_s);
    QTextCursor cursor(program.editor().content());
    cursor.setPosition(9);
    QCOMPARE(cursor.charFormat().fontWeight(), int(QFont::Bold));
    cursor.setPosition(3);
    QVERIFY(cursor.charFormat().fontWeight() != QFont::Bold);
    QTRY_VERIFY(program.window().height() > program.window().minimumHeight());
    QVERIFY(!program.window().formatToolbar().isHidden());
}

void TestWorkflow::theMandatorySheetLeadsWhereItsTableSays_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<QString>("button");
    QTest::addColumn<QString>("told");
    QTest::addColumn<QString>("state");
    const QString accept = u"Set Password"_s;
    QTest::newRow("unequal: told, and asked again")
        << u"abcdef"_s << u"abcdeg"_s << accept
        << u"Password inserted in the two fields doesn't match"_s << u"asking"_s;
    QTest::newRow("too short: told, and asked again")
        << u"abcde"_s << u"abcde"_s << accept << u"Password too short"_s << u"asking"_s;
    QTest::newRow("good: told, and open")
        << u"abcdef"_s << u"abcdef"_s << accept << u"Password accepted"_s << u"open"_s;
    QTest::newRow("declined: closed")
        << u"abcdef"_s << u"abcdef"_s << u"Close Document"_s << u""_s << u"closed"_s;
}

void TestWorkflow::theMandatorySheetLeadsWhereItsTableSays()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QString, button);
    QFETCH(QString, told);
    QFETCH(QString, state);
    RealProgram program;
    program.documents.newDocument();
    QTRY_VERIFY(RealProgram::dialog());
    QVERIFY(RealProgram::type(*RealProgram::dialog(), u"Password"_s, first));
    QVERIFY(RealProgram::type(*RealProgram::dialog(), u"Retype Password"_s, second));
    QVERIFY(RealProgram::press(button));
    if (!told.isEmpty()) {
        QTRY_VERIFY(RealProgram::dialogText().contains(told));
        QVERIFY(RealProgram::press(state == u"asking"_s ? u"Retry"_s : u"OK"_s));
    }
    if (state == u"asking"_s) {
        QTRY_VERIFY(RealProgram::dialog() && RealProgram::dialog()->findChild<QLineEdit *>());
        QCOMPARE(RealProgram::field(*RealProgram::dialog(), u"Password"_s)->text(), first);
        QCOMPARE(RealProgram::field(*RealProgram::dialog(), u"Retype Password"_s)->text(), second);
        QVERIFY(program.document()->plainPassword().isEmpty());
        RealProgram::press(u"Close Document"_s);
        QTRY_VERIFY(!program.document());
    } else if (state == u"open"_s) {
        QTRY_VERIFY(!RealProgram::dialog());
        QCOMPARE(program.document()->plainPassword(), first);
        QVERIFY(program.window().isWindowModified());
        program.document()->close();
    } else {
        QTRY_VERIFY(!program.document());
    }
    QCOMPARE(program.files.replaces, 0);
}

void TestWorkflow::aLockedWindowShowsNoWordAndOffersNothing()
{
    RealProgram program;
    program.files.files.insert(path, savedFile("a secret sentence"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QVERIFY(program.menuItem(u"Lock Document…"_s)->isEnabled());
    program.menuItem(u"Lock Document…"_s)->trigger();
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Lock Document back to the crypted state?"_s));
    RealProgram::press(u"OK"_s);
    QTRY_VERIFY(program.document()->isEncrypted());
    QTRY_COMPARE(program.window().size(), program.window().minimumSize());
    QVERIFY(program.window().formatToolbar().isHidden());
    const auto edits = program.window().findChildren<QTextEdit *>();
    for (const QTextEdit *edit : edits) {
        QVERIFY(!edit->toPlainText().contains(u"secret"_s));
    }
    for (const QString &title :
         {u"Save"_s, u"Save As…"_s, u"Document Password…"_s, u"Lock Document…"_s, u"Undo"_s,
          u"Copy"_s, u"Select All"_s, u"Bold"_s}) {
        QVERIFY2(!program.menuItem(title)->isEnabled(), qPrintable(title));
    }
    QVERIFY(program.menuItem(u"Open…"_s)->isEnabled());
    QVERIFY(unlock(program, password));
    QCOMPARE(program.editor().toPlainText(), u"a secret sentence"_s);
}

void TestWorkflow::aBodyThatNobodyEditedGoesBackAsItCame_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("warns");
    QTest::newRow("plain text with a strange end") << QByteArray("one\r\ntwo\n\n") << false;
    QTest::newRow("bytes that are no UTF-8") << QByteArray("caf\xe9 \x80") << false;
    QTest::newRow("RTF with words that nobody knows")
        << QByteArray("{\\rtf1\\ansi\\unheardof3{\\*\\mystery 12 ab}{\\b bold} rest}") << false;
    QTest::newRow("RTF with styles that are switched off or only listed")
        << QByteArray("{\\rtf1{\\stylesheet{\\s1\\super raised;}}\\strike0\\cb1\\up0 plain}")
        << false;
    QTest::newRow("RTF with a footnote, which an edit would make plain text")
        << QByteArray("{\\rtf1 text{\\footnote note} rest}") << true;
    QTest::newRow("RTF with a struck word and a table, which an edit keeps")
        << QByteArray("{\\rtf1 {\\strike struck}\\par\\trowd\\cellx900 a\\cell\\row}") << false;
    QTest::newRow("nothing") << QByteArray() << false;
    QTest::newRow("a flattened RTFD cut short")
        << QByteArray("rtfd\0\0\0\0\3\0\0\0\1\0\0\0", 16) << false;
}

void TestWorkflow::aBodyThatNobodyEditedGoesBackAsItCame()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, warns);
    RealProgram program;
    program.files.files.insert(path, savedFile(body));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QCOMPARE(RealProgram::dialogText().contains(u"holds more than can be shown"_s), warns);
    QCOMPARE(RealProgram::press(u"OK"_s), warns);
    QTRY_VERIFY(!RealProgram::dialog());
    program.menuItem(u"Save"_s)->trigger();
    QTRY_COMPARE(program.files.replaces, 1);
    QCOMPARE(program.document()->myTextViewData(), std::optional(body));
    QTest::keyClicks(&program.editor(), u"x"_s);
    QVERIFY(program.document()->myTextViewData() != body);
    QVERIFY(program.document()->myTextViewData()->startsWith("rtfd"));
    program.document()->close();
}

void TestWorkflow::undoAndCaretSurviveALock()
{
    RealProgram program;
    program.files.files.insert(path, savedFile("first line\nsecond line"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QTextCursor cursor = program.editor().textCursor();
    cursor.setPosition(11);
    program.editor().setTextCursor(cursor);
    QTest::keyClicks(&program.editor(), u"the "_s);
    program.document()->doLockDocument();
    QVERIFY(unlock(program, password));
    QCOMPARE(program.editor().toPlainText(), u"first line\nthe second line"_s);
    QCOMPARE(program.editor().textCursor().position(), 15);
    QVERIFY(program.menuItem(u"Undo"_s)->isEnabled());
    program.menuItem(u"Undo"_s)->trigger();
    QCOMPARE(program.editor().toPlainText(), u"first line\nsecond line"_s);
    program.document()->close();
}

void TestWorkflow::theCloseButtonSavesWhatHasAFile_data()
{
    QTest::addColumn<bool>("edits");
    QTest::addColumn<bool>("locks");
    QTest::addColumn<int>("saves");
    QTest::newRow("untouched") << false << false << 0;
    QTest::newRow("edited") << true << false << 1;
    QTest::newRow("edited and locked") << true << true << 1;
}

void TestWorkflow::theCloseButtonSavesWhatHasAFile()
{
    QFETCH(bool, edits);
    QFETCH(bool, locks);
    QFETCH(int, saves);
    RealProgram program;
    program.files.files.insert(path, savedFile("text"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    if (edits) {
        QTest::keyClicks(&program.editor(), u"more"_s);
    }
    if (locks) {
        program.document()->doLockDocument();
    }
    program.window().close();
    QTRY_VERIFY(!program.document());
    QVERIFY(!RealProgram::dialog());
    QCOMPARE(program.files.replaces, saves);
}

void TestWorkflow::anUntitledDocumentAsksBeforeItCloses()
{
    RealProgram program;
    QVERIFY(protect(program));
    QTest::keyClicks(&program.editor(), u"text"_s);
    QVERIFY(!program.window().close());
    QTRY_VERIFY(RealProgram::dialogText().contains(u"save the changes"_s));
    RealProgram::press(u"Cancel"_s);
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(program.document() && program.window().isVisible());
    program.window().close();
    QTRY_VERIFY(RealProgram::dialog());
    RealProgram::press(u"Save"_s);
    QVERIFY(QTest::qWaitFor([&program] { return program.panels.answerSave(path); }));
    QTRY_VERIFY(!program.document());
    QVERIFY(program.files.files.contains(path));
}

void TestWorkflow::aReadOnlyDocumentCannotBeTypedInto()
{
    RealProgram program;
    program.files.files.insert(path, savedFile("text", false));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QTest::keyClicks(&program.editor(), u"more"_s);
    QCOMPARE(program.editor().toPlainText(), u"text"_s);
    QVERIFY(!program.menuItem(u"Paste"_s)->isEnabled()
            && !program.menuItem(u"Bold"_s)->isEnabled());
    QVERIFY(program.menuItem(u"Select All"_s)->isEnabled());
}

void TestWorkflow::anEmptyPasswordIsNoTryAndASealedDocumentClosesAtOnce()
{
    RealProgram program;
    program.files.files.insert(path, savedFile("text"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(!unlock(program, u""_s));
    QCoreApplication::processEvents();
    QVERIFY(!RealProgram::dialog());
    QVERIFY(program.document()->plainPassword().isEmpty());
    QVERIFY(!program.menuItem(u"Save"_s)->isEnabled());
    program.menuItem(u"Close"_s)->trigger();
    QTRY_VERIFY(!program.document());
    QCOMPARE(program.files.replaces, 0);
}

void TestWorkflow::theChangeSheetChangesThePasswordFromTheNextSaveOn()
{
    const QString next = u"battery staple"_s;
    RealProgram program;
    program.files.files.insert(path, savedFile("text"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    program.menuItem(u"Document Password…"_s)->trigger();
    QTRY_VERIFY(RealProgram::dialog());
    const QDialog &sheet = *RealProgram::dialog();
    QVERIFY(RealProgram::type(sheet, u"Old Master Password"_s, u"not this"_s));
    QVERIFY(RealProgram::type(sheet, u"New Password"_s, next));
    QVERIFY(RealProgram::type(sheet, u"Retype New Password"_s, next));
    QVERIFY(RealProgram::press(u"Change Password"_s));
    QTRY_VERIFY(RealProgram::dialogText().contains(u"must be equal to the password previously"_s));
    QVERIFY(RealProgram::press(u"Retry"_s));
    QTRY_VERIFY(RealProgram::dialog() && RealProgram::dialog()->findChild<QLineEdit *>());
    QCOMPARE(RealProgram::field(sheet, u"New Password"_s)->text(), next);
    QVERIFY(RealProgram::type(sheet, u"Old Master Password"_s, password));
    QVERIFY(RealProgram::press(u"Change Password"_s));
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Password changed successfuly"_s));
    QVERIFY(RealProgram::press(u"OK"_s));
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(program.window().isWindowModified());
    program.menuItem(u"Save"_s)->trigger();
    QTRY_COMPARE(program.files.replaces, 1);
    program.document()->close();
    QTRY_VERIFY(!program.document());
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(!unlock(program, password));
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Wrong Password"_s));
    RealProgram::press(u"OK"_s);
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(unlock(program, next));
    QCOMPARE(program.editor().toPlainText(), u"text"_s);
}

void TestWorkflow::whatWasTypedBeforeALockIsInTheFile_data()
{
    QTest::addColumn<QString>("tried");
    QTest::addColumn<bool>("quits");
    QTest::newRow("closed while locked") << QString() << false;
    QTest::newRow("closed after a wrong password") << u"wrong horse"_s << false;
    QTest::newRow("closed after the right password") << password << false;
    QTest::newRow("the program is quit while it is locked") << QString() << true;
}

void TestWorkflow::whatWasTypedBeforeALockIsInTheFile()
{
    QFETCH(QString, tried);
    QFETCH(bool, quits);
    RealProgram program;
    program.files.files.insert(path, savedFile("text"));
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QTest::keyClicks(&program.editor(), u"more "_s);
    program.menuItem(u"Lock Document…"_s)->trigger();
    QTRY_VERIFY(RealProgram::dialogText().contains(u"you need to save it on disk"_s));
    RealProgram::press(u"OK"_s);
    QTRY_VERIFY(program.document()->isEncrypted());
    QTRY_COMPARE(program.files.replaces, 1);
    if (!tried.isEmpty()) {
        QCOMPARE(unlock(program, tried), tried == password);
        QVERIFY(tried == password || QTest::qWaitFor([] { return RealProgram::press(u"OK"_s); }));
        QTRY_VERIFY(!RealProgram::dialog());
    }
    program.menuItem(quits ? u"Quit Quorvane"_s : u"Close"_s)->trigger();
    QTRY_VERIFY(!program.document());
    QCOMPARE(program.files.replaces, 1);
    program.documents.openDocumentWithContentsOfURL(path);
    QVERIFY(unlock(program, password));
    QCOMPARE(program.editor().toPlainText(), u"more text"_s);
}

QTEST_MAIN(TestWorkflow)
#include "tst_workflow.moc"
