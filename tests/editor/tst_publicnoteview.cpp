#include "editor/publicnoteview.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

class Note final : public QWidget
{
public:
    PublicNoteView view {this};
    QWidget other {this};

    Note()
    {
        other.setFocusPolicy(Qt::StrongFocus);
        show();
        activateWindow();
        view.setFocus();
    }
};

} // namespace

class TestPublicNoteView : public QObject
{
    Q_OBJECT

private slots:

    void everyCharacterComesBack_data()
    {
        QTest::addColumn<QString>("note");
        QTest::newRow("nothing") << u""_s;
        QTest::newRow("the line ends of others") << u"one\r\ntwo\r\n\r\nthree"_s;
        QTest::newRow("line ends of all kinds") << u"\r\na\rb\nc\u2029d\u2028e\r\r\n\n"_s;
        QTest::newRow("blanks that do not break") << u"10\u00a0km\u202f!"_s;
        QTest::newRow("what the toolkit uses for itself") << u"a\ufdd0b\ufdd1c\ufffcd\ufffd"_s;
        QTest::newRow("no text at all") << u"a\0b"_s + QChar(0xd800) + u"\u200d"_s;
    }

    void everyCharacterComesBack()
    {
        QFETCH(QString, note);
        Note window;
        PublicNoteView &view = window.view;
        QSignalSpy edited(&view, &PublicNoteView::edited);
        view.setText(note);
        QCOMPARE(view.text(), note);
        QCOMPARE(edited.count(), 0);
        view.moveCursor(QTextCursor::End);
        QTest::keyClicks(&view, u"xy"_s);
        QCOMPARE(view.text(), note + u"xy"_s);
        QCOMPARE(edited.count(), 2);
        view.selectAll();
        QTest::keyClick(&view, Qt::Key_Delete);
        QCOMPARE(view.text(), QString());
        view.undo();
        view.undo();
        QCOMPARE(view.text(), note);
    }

    void aNewLineEndsAsItsNeighboursDo()
    {
        Note window;
        window.view.setText(u"one\r\ntwo"_s);
        window.view.moveCursor(QTextCursor::EndOfLine);
        QTest::keyClick(&window.view, Qt::Key_Return);
        QCOMPARE(window.view.text(), u"one\r\n\r\ntwo"_s);
        window.view.setText(u"plain"_s);
        window.view.moveCursor(QTextCursor::End);
        QTest::keyClick(&window.view, Qt::Key_Return);
        QCOMPARE(window.view.text(), u"plain\n"_s);
    }

    void pastedTextIsPlainAndTabMovesOn()
    {
        Note window;
        auto rich = std::make_unique<QMimeData>();
        rich->setHtml(u"<b>bold</b>"_s);
        rich->setText(u"10\u00a0km"_s);
        QGuiApplication::clipboard()->setMimeData(rich.release());
        window.view.paste();
        QCOMPARE(window.view.text(), u"10\u00a0km"_s);
        QVERIFY(window.view.textCursor().charFormat().fontWeight() != QFont::Bold);
        QTRY_VERIFY(window.view.hasFocus());
        QTest::keyClick(&window.view, Qt::Key_Tab);
        QVERIFY(!window.view.hasFocus());
        QCOMPARE(window.view.text(), u"10\u00a0km"_s);
    }

    void theEndOfEditingIsToldOnlyAfterAnEdit()
    {
        Note window;
        QSignalSpy edited(&window.view, &PublicNoteView::edited);
        QSignalSpy ended(&window.view, &PublicNoteView::editingEnded);
        QTRY_VERIFY(window.view.hasFocus());
        QFont font(u"DejaVu Serif"_s, 21);
        window.view.setNoteFont(font);
        QCOMPARE(window.view.document()->defaultFont().pointSize(), 21);
        window.other.setFocus();
        QCOMPARE(edited.count() + ended.count(), 0);
        window.view.setFocus();
        QTest::keyClicks(&window.view, u"a"_s);
        window.other.setFocus();
        QCOMPARE(ended.count(), 1);
    }

    void aNoteForReadingIsSelectedByKeyboardAndNotChanged()
    {
        Note window;
        window.view.setText(u"see https://example.org"_s);
        window.view.setForReading();
        QTest::keyClicks(&window.view, u"typed"_s);
        QInputMethodEvent composed;
        composed.setCommitString(u"composed"_s);
        QCoreApplication::sendEvent(&window.view, &composed);
        QTest::keyClick(&window.view, Qt::Key_End, Qt::ShiftModifier);
        QCOMPARE(window.view.textCursor().selectedText(), u"see https://example.org"_s);
        QVERIFY(!(window.view.textInteractionFlags() & Qt::LinksAccessibleByMouse));
        QCOMPARE(window.view.text(), u"see https://example.org"_s);
    }
};

QTEST_MAIN(TestPublicNoteView)
#include "tst_publicnoteview.moc"
