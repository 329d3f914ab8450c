#include "editor/findbar.h"
#include "editor/finding.h"
#include "editor/visiblemarks.h"
#include "richtext/textproperties.h"
#include "support/writtentext.h"

#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTextTable>
#include <QToolButton>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

void type(QWidget &field, const QString &text)
{
    for (const QChar c : text) {
        QTest::sendKeyEvent(QTest::Click, &field, Qt::Key_unknown, QString(c), Qt::NoModifier);
    }
}

/// A window with the bar, its commands at hand as a menu would have them.
struct Window
{
    Window()
    {
        for (const TextCommand command :
             {TextCommand::Find, TextCommand::FindAndReplace, TextCommand::FindNext,
              TextCommand::FindPrevious, TextCommand::FindSelection}) {
            window.addAction(&window.commands().action(command));
        }
        bringUp(window);
        window.commands().validate();
    }

    template <typename Text> void show(Text text) { showText(editor(), std::move(text)); }

    TextEditor &editor() { return window.editor(); }

    FindBar &bar() { return *window.findChild<FindBar *>(); }

    template <typename Widget> Widget &part(const QString &name)
    {
        for (Widget *widget : bar().findChildren<Widget *>()) {
            if (widget->accessibleName() == name || widget->objectName() == name) {
                return *widget;
            }
        }
        qFatal("no such part of the bar");
    }

    template <typename Button> void click(const QString &text)
    {
        for (Button *button : bar().findChildren<Button *>()) {
            if (button->text() == text) {
                QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
                return;
            }
        }
        qFatal("no such button");
    }

    QLineEdit &words() { return part<QLineEdit>(u"Find"_s); }

    QLineEdit &replacement() { return part<QLineEdit>(u"Replace With"_s); }

    QString standing() { return part<QLabel>(u"standing"_s).text(); }

    QString message() { return part<QLabel>(u"message"_s).text(); }

    bool comesToStand(const QString &text)
    {
        return QTest::qWaitFor([&] { return standing() == text; });
    }

    void run(const QKeySequence &keys) { QTest::keySequence(window.focusWidget(), keys); }

    void select(int from, int to) { selectText(editor(), from, to); }

    QString selected() { return editor().textCursor().selectedText(); }

    QStringList marked()
    {
        QStringList words;
        for (const QTextEdit::ExtraSelection &mark : editor().extraSelections()) {
            words << mark.cursor.selectedText();
        }
        return words;
    }

    DocumentWindow window;
    VisibleMarks marks {window.editor()};
    Finding finding {window, marks};
};

} // namespace

class TestFinding : public QObject
{
    Q_OBJECT

private slots:

    void theBarFindsByItsOptions_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("standing");
        QTest::addColumn<QString>("selected");
        QTest::newRow("as it is typed")
            << u"one two one"_s << u"one"_s << u""_s << u"1 of 2"_s << u"one"_s;
        QTest::newRow("case is of no matter")
            << u"Straße STRASSE"_s << u"strasse"_s << u""_s << u"1 of 1"_s << u"STRASSE"_s;
        QTest::newRow("case matters where asked")
            << u"One one"_s << u"one"_s << u"c"_s << u"1 of 1"_s << u"one"_s;
        QTest::newRow("whole words")
            << u"cat concat cat's über cats"_s << u"cat"_s << u"w"_s << u"1 of 2"_s << u"cat"_s;
        QTest::newRow("a letter of any script ends no word")
            << u"überall über"_s << u"über"_s << u"w"_s << u"1 of 1"_s << u"über"_s;
        QTest::newRow("signs of expressions are signs")
            << u"1+1 (a.b) axb"_s << u"a.b"_s << u""_s << u"1 of 1"_s << u"a.b"_s;
        QTest::newRow("a space finds one that never breaks")
            << u"10\u00a0km"_s << u"10 km"_s << u""_s << u"1 of 1"_s << u"10\u00a0km"_s;
        QTest::newRow("an expression") << u"2024-01-31, 2025-02-28"_s << u"\\d+-(\\d+)"_s << u"r"_s
                                       << u"1 of 2"_s << u"2024-01"_s;
        QTest::newRow("each line of a paragraph has its end")
            << u"first\u2028second"_s << u"^s\\w+$"_s << u"r"_s << u"1 of 1"_s << u"second"_s;
        QTest::newRow("a match never leaves its paragraph")
            << u"one\ntwo"_s << u"one\\s*two"_s << u"r"_s << u"No matches"_s << u""_s;
        QTest::newRow("what is empty is no match")
            << u"abc"_s << u"x*"_s << u"r"_s << u"No matches"_s << u""_s;
        QTest::newRow("half of a pair does no harm")
            << u"a\xd83d"_s + u"b \U0001F600b"_s << u"b"_s << u"r"_s << u"1 of 2"_s << u"b"_s;
    }

    void theBarFindsByItsOptions()
    {
        QFETCH(QString, text);
        QFETCH(QString, words);
        QFETCH(QString, options);
        QFETCH(QString, selected);
        Window window;
        window.show(text);
        window.run(QKeySequence::Find);
        const std::pair<QChar, QString> all[] = {
            {u'c', u"Match Case"_s}, {u'w', u"Whole Words"_s}, {u'r', u"Regular Expression"_s}};
        for (const auto &[letter, name] : all) {
            if (options.contains(letter)) {
                window.part<QToolButton>(name).click();
            }
        }
        QVERIFY(window.words().hasFocus());
        type(window.words(), words);
        QTEST(window.standing(), "standing");
        QCOMPARE(window.selected(), selected);
    }

    void enterGoesRoundAndSaysSo()
    {
        Window window;
        window.show(u"a1 b a2"_s);
        window.run(QKeySequence::Find);
        type(window.words(), u"a"_s);
        QCOMPARE(window.standing(), u"1 of 2"_s);
        QTest::keyClick(&window.words(), Qt::Key_Return);
        QCOMPARE(window.standing(), u"2 of 2"_s);
        QTest::keyClick(&window.words(), Qt::Key_Return);
        QCOMPARE(window.standing(), u"1 of 2, wrapped"_s);
        QTest::keyClick(&window.words(), Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(window.standing(), u"2 of 2, wrapped"_s);
        QTest::keyClick(&window.words(), Qt::Key_Escape);
        QVERIFY(window.bar().isHidden());
        QVERIFY(window.editor().hasFocus());
        QCOMPARE(window.editor().textCursor().selectionStart(), 5);
        window.run(Qt::Key_F3); // with the last words
        QCOMPARE(window.editor().textCursor().selectionStart(), 0);
        window.run(Qt::SHIFT | Qt::Key_F3);
        QCOMPARE(window.editor().textCursor().selectionStart(), 5);
        QVERIFY(window.bar().isHidden());
    }

    void theSelectionIsWhatIsFound()
    {
        Window window;
        window.show(u"cat dog cat\ncat"_s);
        window.select(0, 3);
        window.run(QKeySequence::Find);
        QCOMPARE(window.words().text(), u"cat"_s);
        QCOMPARE(window.words().selectedText(), u"cat"_s);
        QCOMPARE(window.standing(), u"1 of 3"_s);
        QTest::keyClick(&window.words(), Qt::Key_Escape);
        window.select(4, 7);
        window.run(Qt::CTRL | Qt::Key_F3);
        QCOMPARE(window.words().text(), u"dog"_s);
        QCOMPARE(window.selected(), u"dog"_s);
        window.show(u"nothing of the kind"_s);
        window.run(Qt::Key_F3);
        QVERIFY2(!window.bar().isHidden(), "that there is nothing must be said somewhere");
        QCOMPARE(window.standing(), u"No matches"_s);
    }

    void everyMatchInViewIsMarked()
    {
        Window window;
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        cursor.insertText(u"one t"_s);
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        cursor.insertText(u"wo"_s, bold);
        QTextTable *table = cursor.insertTable(1, 2);
        table->cellAt(0, 1).firstCursorPosition().insertText(u"two"_s);
        cursor.movePosition(QTextCursor::End);
        cursor.createList(QTextListFormat::ListDecimal);
        cursor.insertText(u"item two"_s + QString(3000, u'\n') + u"two"_s);
        window.show(std::move(document));
        window.run(QKeySequence::Find);
        type(window.words(), u"two"_s);
        QVERIFY(window.comesToStand(u"1 of 4"_s));
        QTRY_COMPARE(window.marked(), QStringList({u"two"_s, u"two"_s, u"two"_s}));
        window.select(0, 0);
        window.editor().setFocus();
        type(window.editor(), u"two "_s); // found when there is a moment
        QTRY_COMPARE(window.marked().size(), 4);
        QTest::keyClick(&window.editor(), Qt::Key_Escape);
        QTRY_COMPARE(window.marked(), QStringList());
    }

    void replacingAllIsOneStep_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("with");
        QTest::addColumn<bool>("expression");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("message");
        QTest::newRow("words") << u"a cat, a cat"_s << u"cat"_s << u"\\1$1"_s << false
                               << u"a \\1$1, a \\1$1"_s << u"Replaced 2 matches."_s;
        QTest::newRow("by nothing")
            << u"xaxb"_s << u"x"_s << u""_s << false << u"ab"_s << u"Replaced 2 matches."_s;
        QTest::newRow("what comes in is not looked through")
            << u"aa"_s << u"a"_s << u"aa"_s << false << u"aaaa"_s << u"Replaced 2 matches."_s;
        QTest::newRow("groups") << u"31.12.2025"_s << u"(\\d+)\\.(\\d+)\\.(\\d+)"_s
                                << u"\\3-$2-\\1 (\\0) $$1"_s << true
                                << u"2025-12-31 (31.12.2025) $1"_s << u"Replaced 1 match."_s;
        QTest::newRow("a group that took no part")
            << u"ac"_s << u"a(b)?c"_s << u"[\\1\\9]"_s << true << u"[]"_s << u"Replaced 1 match."_s;
        QTest::newRow("paragraphs and tabs") << u"a,b"_s << u","_s << u"\\n\\t\\\\"_s << true
                                             << u"a\n\t\\b"_s << u"Replaced 1 match."_s;
        QTest::newRow("what lies before decides")
            << u"ab aab"_s << u"(?<=a)b"_s << u"<\\0>"_s << true << u"a<b> aa<b>"_s
            << u"Replaced 2 matches."_s;
        QTest::newRow("what only leads to a match stays")
            << u"foobar"_s << u"foo\\Kbar"_s << u"<\\0>"_s << true << u"foo<bar>"_s
            << u"Replaced 1 match."_s;
        QTest::newRow("the beginning of a line") << u"foo foo\nfoo"_s << u"^foo"_s << u"a"_s << true
                                                 << u"a foo\na"_s << u"Replaced 2 matches."_s;
        QTest::newRow("the end of a line") << u"foo foo\nfoo"_s << u"foo$"_s << u"a"_s << true
                                           << u"foo a\na"_s << u"Replaced 2 matches."_s;
        QTest::newRow("nothing") << u"ab"_s << u"c"_s << u"d"_s << false << u"ab"_s
                                 << u"No matches."_s;
    }

    void replacingAllIsOneStep()
    {
        QFETCH(QString, text);
        QFETCH(QString, words);
        QFETCH(QString, with);
        QFETCH(bool, expression);
        QFETCH(QString, result);
        Window window;
        window.show(text);
        window.run(Qt::CTRL | Qt::Key_H);
        window.part<QToolButton>(u"Regular Expression"_s).setChecked(expression);
        type(window.words(), words);
        type(window.replacement(), with);
        window.click<QPushButton>(u"Replace All"_s);
        QCOMPARE(window.editor().toPlainText(), result);
        QTEST(window.message(), "message");
        if (result != text) {
            QCOMPARE(window.editor().undoNames().undoName(), u"Replace All"_s);
            window.editor().undo();
        }
        QCOMPARE(window.editor().toPlainText(), text);
    }

    void replacingGoesFromMatchToMatch()
    {
        Window window;
        window.show(u"cat dog cat"_s);
        window.run(Qt::CTRL | Qt::Key_H);
        type(window.words(), u"cat"_s);
        type(window.replacement(), u"concat"_s);
        QTest::keyClick(&window.replacement(), Qt::Key_Return);
        QCOMPARE(window.editor().toPlainText(), u"concat dog cat"_s);
        QCOMPARE(window.editor().undoNames().undoName(), u"Replace"_s);
        QCOMPARE(window.editor().textCursor().selectionStart(), 11);
        window.click<QPushButton>(u"Replace"_s);
        QCOMPARE(window.editor().toPlainText(), u"concat dog concat"_s);
        window.editor().undo();
        QCOMPARE(window.editor().toPlainText(), u"concat dog cat"_s);
    }

    void onlyTheSelectionIsReplacedWhereItIsMoreThanAWord()
    {
        Window window;
        window.show(u"a a\na a\na a"_s);
        window.select(2, 7);
        window.run(Qt::CTRL | Qt::Key_H);
        QCOMPARE(window.words().text(), QString());
        QVERIFY(window.bar().findChild<QCheckBox *>()->isChecked());
        type(window.words(), u"a"_s);
        QCOMPARE(window.standing(), u"1 of 3"_s);
        type(window.replacement(), u"long"_s);
        window.click<QPushButton>(u"Replace All"_s);
        QCOMPARE(window.editor().toPlainText(), u"a long\nlong long\na a"_s);
        window.click<QCheckBox>(u"In selection"_s);
        window.click<QPushButton>(u"Replace All"_s);
        QCOMPARE(window.message(), u"Replaced 3 matches."_s);
    }

    void aReplacementLooksAsTheMatchBegan()
    {
        Window window;
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        cursor.insertText(u"plain "_s);
        cursor.insertText(u"bo"_s, bold);
        cursor.insertText(u"ld"_s, QTextCharFormat());
        window.show(std::move(document));
        window.run(Qt::CTRL | Qt::Key_H);
        type(window.words(), u"bold"_s);
        type(window.replacement(), u"strong"_s);
        window.click<QPushButton>(u"Replace All"_s);
        cursor = QTextCursor(window.editor().content());
        for (const auto &[position, weight] : {std::pair(6, 400), {7, 700}, {12, 700}}) {
            cursor.setPosition(position);
            QCOMPARE(cursor.charFormat().font().weight(), weight);
        }
    }

    void noAttachmentIsReplaced()
    {
        Window window;
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        QTextCharFormat attachment;
        attachment.setObjectType(attachmentObjectType);
        attachment.setProperty(AttachmentName, u"plan.txt"_s);
        cursor.insertText(u"a"_s);
        cursor.insertText(QString(QChar::ObjectReplacementCharacter), attachment);
        cursor.insertText(u"b ab"_s, QTextCharFormat());
        window.show(std::move(document));
        const QString before = window.editor().toPlainText();
        window.run(Qt::CTRL | Qt::Key_H);
        window.part<QToolButton>(u"Regular Expression"_s).click();
        type(window.words(), u"a.?b"_s);
        window.click<QPushButton>(u"Replace"_s);
        QCOMPARE(window.message(), u"The match holds a picture or a file and was left as it is."_s);
        window.click<QPushButton>(u"Replace All"_s);
        QCOMPARE(window.message(),
                 u"Replaced 1 match. 1 match holds a picture or a file and was left as it is."_s);
        QCOMPARE(window.editor().toPlainText(), before.left(4));
    }

    void aBadExpressionSaysWhatIsWrongAndWhere_data()
    {
        QTest::addColumn<QString>("expression");
        QTest::addColumn<QString>("message");
        QTest::newRow("a group that is not closed")
            << u"a(b"_s << u"Missing closing parenthesis, at the end."_s;
        QTest::newRow("nothing to repeat")
            << u"ab+**"_s << u"Quantifier does not follow a repeatable item, at character 4."_s;
        QTest::newRow("no end of a paragraph is found")
            << u"a\\nb"_s
            << u"\\n is a line break within a paragraph here: matches never go beyond the end of one."_s;
        QTest::newRow("one that would take years")
            << u"(a+)+$x"_s << u"This expression takes too long to look for in this text."_s;
    }

    void aBadExpressionSaysWhatIsWrongAndWhere()
    {
        QFETCH(QString, expression);
        QFETCH(QString, message);
        Window window;
        window.show(QString(5000, u'a') + u'b');
        window.run(QKeySequence::Find);
        window.part<QToolButton>(u"Regular Expression"_s).click();
        window.part<QToolButton>(u"Whole Words"_s).click();
        type(window.words(), expression);
        QTRY_COMPARE(window.message(), message);
        QVERIFY(window.part<QLabel>(u"message"_s).isVisible());
        window.words().selectAll();
        type(window.words(), u"b$"_s);
        QVERIFY(!window.part<QLabel>(u"message"_s).isVisible());
    }

    void aLockedWindowGivesNoWordAway()
    {
        Window window;
        window.show(u"the secret"_s);
        window.select(4, 10);
        window.run(Qt::CTRL | Qt::Key_H);
        type(window.replacement(), u"hidden"_s);
        window.words().selectAll();
        window.words().copy();
        window.window.showLockedAppearance();
        QVERIFY(window.bar().isHidden());
        for (QLineEdit *field : {&window.words(), &window.replacement()}) {
            QCOMPARE(field->text(), QString());
            field->undo();
            QCOMPARE(field->text(), QString());
        }
        QCOMPARE(window.standing() + window.message(), QString());
        QVERIFY(!QGuiApplication::clipboard()->text().contains(u"secret"_s));
        window.run(QKeySequence::Find);
        QVERIFY(window.bar().isHidden());
        window.window.showEditorAppearance();
        window.select(0, 0); // or it would be what is found
        window.run(Qt::Key_F3);
        QCOMPARE(window.words().text(), QString());
    }

    void aReadOnlyTextIsOnlyFoundIn()
    {
        Window window;
        window.show(u"cat"_s);
        window.run(Qt::CTRL | Qt::Key_H);
        type(window.words(), u"cat"_s);
        window.window.setReadOnly(true);
        QVERIFY(!window.bar().isReplacing());
        QVERIFY(!window.window.commands().action(TextCommand::FindAndReplace).isEnabled());
        emit window.bar().replaceAllAsked();
        QCOMPARE(window.editor().toPlainText(), u"cat"_s);
        window.run(Qt::Key_F3);
        QCOMPARE(window.selected(), u"cat"_s);
    }
};

QTEST_MAIN(TestFinding)
#include "tst_finding.moc"
