#include "document/documentfile.h"
#include "editor/formattoolbar.h"
#include "editor/publicnoteview.h"
#include "richtext/body.h"
#include "workflow/openeddocument.h"

namespace {

PublicNoteView *noteIn(const QWidget &parent)
{
    return parent.findChild<PublicNoteView *>();
}

} // namespace

class TestNoteAndEditing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theNoteIsEditedAsItGoes_data();
    void theNoteIsEditedAsItGoes();
    void aLookAtTheNoteIsNoEdit();
    void theLockedPageShowsTheNoteForReading();
    void theSwitchClosesAllWaysIntoTheText();
    void theConvertedTextIsTheOneThatIsSaved();
    void aWrongPasswordStaysSelectedForTheNextTry();
};

void TestNoteAndEditing::theNoteIsEditedAsItGoes_data()
{
    QTest::addColumn<bool>("byEscape");
    QTest::newRow("Escape keeps it") << true;
    QTest::newRow("the button keeps it") << false;
}

void TestNoteAndEditing::theNoteIsEditedAsItGoes()
{
    QFETCH(bool, byEscape);
    Opened opened;
    opened.document().setReadOnly(); // the note does not look at it
    opened.document().editPublicNote();
    QTRY_VERIFY(RealProgram::dialog());
    PublicNoteView *note = noteIn(*RealProgram::dialog());
    QTRY_VERIFY(note->hasFocus());
    note->moveCursor(QTextCursor::End);
    QTest::keyClicks(note, u"!"_s);
    QCOMPARE(opened.document().myPublicTextData(), std::optional(u"ring the bell twice!"_s));
    QVERIFY(opened.program.window().isWindowModified());
    QTest::keyClick(note, Qt::Key_Backspace); // back to what it was is an edit as well
    QVERIFY(opened.program.window().isWindowModified());
    QTest::keyClick(note, Qt::Key_Return);
    if (byEscape) {
        QTest::keyClick(note, Qt::Key_Escape);
    } else {
        RealProgram::press(u"Close"_s);
    }
    QTRY_VERIFY(!RealProgram::dialog());
    opened.document().saveDocument();
    const auto file = DocumentFile::fromData(opened.program.files.files.value(path));
    QCOMPARE(file->publicTextData, std::optional(u"ring the bell twice\n"_s));
}

void TestNoteAndEditing::aLookAtTheNoteIsNoEdit()
{
    Opened opened;
    opened.document().editPublicNote();
    QTRY_VERIFY(RealProgram::dialog());
    PublicNoteView *note = noteIn(*RealProgram::dialog());
    opened.program.defaults.setObject("PublicNoteFontBold"_L1, true);
    opened.program.defaults.setObject("PublicNoteFontSize"_L1, 31.5);
    QVERIFY(note->document()->defaultFont().bold());
    QCOMPARE(note->document()->defaultFont().pointSizeF(), 31.5);
    QTest::keyClick(note, Qt::Key_Escape);
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(!opened.document().isDocumentEdited());
}

void TestNoteAndEditing::theLockedPageShowsTheNoteForReading()
{
    Opened opened;
    opened.document().setMyPublicTextData(u"ring twice"_s);
    opened.document().doLockDocument();
    PublicNoteView *note = noteIn(opened.program.window().lockedPage());
    QVERIFY(note->isVisible());
    QCOMPARE(note->text(), u"ring twice"_s);
    opened.program.defaults.setObject("PublicNoteFontItalic"_L1, true);
    QVERIFY(note->document()->defaultFont().italic());
    QTest::keyClicks(note, u"typed"_s);
    QCOMPARE(note->text(), u"ring twice"_s);
    QCOMPARE(opened.document().myPublicTextData(), std::optional(u"ring twice"_s));
}

void TestNoteAndEditing::theSwitchClosesAllWaysIntoTheText()
{
    Opened opened;
    TextEditor &editor = opened.program.editor();
    opened.document().switchReadAndWrite();
    QVERIFY(!opened.program.window().commands().action(TextCommand::Bold).isEnabled());
    QTest::keyClicks(&editor, u"typed"_s);
    QTest::keyClick(&editor, Qt::Key_Delete);
    QGuiApplication::clipboard()->setText(u"pasted"_s);
    editor.paste();
    editor.selectAll();
    editor.cut();
    QInputMethodEvent composed(u"compos"_s, {});
    composed.setCommitString(u"composed"_s);
    QCoreApplication::sendEvent(&editor, &composed);
    QMimeData dropped;
    dropped.setText(u"dropped"_s);
    QDropEvent drop(QPointF(20, 20), Qt::CopyAction, &dropped, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor.viewport(), &drop);
    QCOMPARE(editor.toPlainText(), u"text"_s);
    editor.moveCursor(QTextCursor::Start);
    QTest::keyClick(&editor, Qt::Key_Right, Qt::ShiftModifier);
    QCOMPARE(editor.textCursor().selectedText(), u"t"_s); // it can still be read with the keyboard
    QVERIFY(!opened.document().isDocumentEdited());
    opened.document().switchReadAndWrite();
    QVERIFY(opened.program.window().commands().action(TextCommand::Bold).isEnabled());
    QTest::keyClicks(&editor, u"T"_s);
    QCOMPARE(editor.toPlainText(), u"Text"_s);
}

void TestNoteAndEditing::theConvertedTextIsTheOneThatIsSaved()
{
    Opened opened("{\\rtf1\\ansi {\\b bold} and \\ul lined\\par\\qc centred}");
    opened.document().makePlainText();
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Converting all the content"_s));
    QVERIFY(RealProgram::press(u"OK"_s));
    QTRY_VERIFY(!RealProgram::dialog());
    QVERIFY(!opened.document().isDocumentEdited());
    QVERIFY(!opened.program.menuItem(u"Undo"_s)->isEnabled());
    opened.document().doLockDocument();
    opened.unlock();
    opened.document().saveDocument();
    opened.document().close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    opened.program.documents.openDocumentWithContentsOfURL(path);
    opened.unlock();
    QCOMPARE(opened.program.editor().toPlainText(), u"bold and lined\ncentred"_s);
    const QByteArray body = opened.document().myTextViewData().value_or(QByteArray());
    QVERIFY(!body.contains("\\b ") && !body.contains("\\ul") && !body.contains("\\qc"));
    QVERIFY(!bodyHoldsSurplus(body));
}

void TestNoteAndEditing::aWrongPasswordStaysSelectedForTheNextTry()
{
    Opened opened;
    opened.document().doLockDocument();
    RealProgram::type(opened.program.window().lockedPage(), u"Master Password"_s, u"wrong"_s);
    QTest::keyClick(opened.passwordField(), Qt::Key_Return);
    QTRY_VERIFY(RealProgram::dialogText().contains(u"Wrong Password"_s));
    RealProgram::press(u"OK"_s);
    QTRY_VERIFY(!RealProgram::dialog());
    QCOMPARE(opened.program.window().focusWidget(), opened.passwordField());
    QCOMPARE(opened.passwordField()->selectedText().size(), 5);
    QTest::keyClicks(opened.passwordField(), password); // over what is selected
    QTest::keyClick(opened.passwordField(), Qt::Key_Return);
    QVERIFY(!opened.document().isEncrypted());
    QCOMPARE(opened.program.window().focusWidget(), &opened.program.editor());
}

QTEST_MAIN(TestNoteAndEditing)
#include "tst_noteandediting.moc"
