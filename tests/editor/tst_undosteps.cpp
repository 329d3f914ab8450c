#include "editor/texteditor.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>
#include <QTextLayout>

using namespace Qt::StringLiterals;
using namespace quorvane;

class TestUndoSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyStepHasItsName();
    void namesFollowUndoAndRedo();
    void longTypingGoesInParts();
    void anInputMethodTypesLikeKeys();
    void theViewStaysWhereTheChangeIsSeen();

private:
    /// Takes everything back; the names of the steps, and the text after each.
    QStringList taken();

    std::unique_ptr<TextEditor> m_editor;
};

void TestUndoSteps::init()
{
    m_editor = std::make_unique<TextEditor>();
    m_editor->resize(600, 400);
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
}

QStringList TestUndoSteps::taken()
{
    QStringList steps;
    while (m_editor->content()->isUndoAvailable()) {
        const QString name = m_editor->undoNames().undoName();
        m_editor->undo();
        steps << name + u": "_s + m_editor->toPlainText();
    }
    return steps;
}

void TestUndoSteps::everyStepHasItsName()
{
    TextEditor &editor = *m_editor;
    QTest::keyClicks(&editor, u"words"_s);
    QTest::keyClick(&editor, Qt::Key_Backspace);
    QTextCharFormat bold;
    bold.setFontWeight(QFont::Bold);
    editor.selectAll();
    QVERIFY(editor.applyCharFormat(bold, u"Bold"_s));
    QTest::keyClick(&editor, Qt::Key_X, Qt::ControlModifier);
    auto data = std::make_unique<QMimeData>();
    data->setText(u"pasted"_s);
    QGuiApplication::clipboard()->setMimeData(data.release());
    QTest::keyClick(&editor, Qt::Key_V, Qt::ControlModifier);
    QVERIFY(editor.edit(u"Two Things"_s, [](QTextCursor &cursor) {
        cursor.insertText(u"one"_s);
        cursor.insertBlock();
        cursor.insertText(u"two"_s);
    }));
    QCOMPARE(editor.toPlainText(), u"pastedone\ntwo"_s);
    QCOMPARE(taken(),
             (QStringList {u"Two Things: pasted"_s, u"Paste: "_s, u"Cut: word"_s, u"Bold: word"_s,
                           u"Delete: words"_s, u"Typing: "_s}));
    QCOMPARE(editor.undoNames().redoName(), u"Typing"_s);
    editor.setReadOnly(true);
    QVERIFY(!editor.edit(u"Nothing"_s, [](QTextCursor &cursor) { cursor.insertText(u"x"_s); }));
    QCOMPARE(editor.toPlainText(), QString());
}

void TestUndoSteps::namesFollowUndoAndRedo()
{
    TextEditor &editor = *m_editor;
    const auto insert = [&editor](const QString &name) {
        QVERIFY(editor.edit(name, [&name](QTextCursor &cursor) { cursor.insertText(name); }));
    };
    insert(u"a"_s);
    insert(u"b"_s);
    editor.undo();
    QCOMPARE(editor.undoNames().undoName(), u"a"_s);
    QCOMPARE(editor.undoNames().redoName(), u"b"_s);
    insert(u"c"_s); // what could be redone is gone
    QCOMPARE(editor.undoNames().undoName(), u"c"_s);
    QCOMPARE(editor.undoNames().redoName(), QString());
    editor.undo();
    editor.redo();
    QCOMPARE(editor.undoNames().undoName(), u"c"_s);
    editor.setContentHidden(true);
    editor.setContentHidden(false);
    QCOMPARE(editor.undoNames().undoName(), u"c"_s);
    QCOMPARE(editor.showDocument(std::make_unique<QTextDocument>()), TextEditor::ShowResult::Shown);
    QCOMPARE(editor.undoNames().undoName(), QString());
}

void TestUndoSteps::longTypingGoesInParts()
{
    const QString text = u"some words of a long sentence "_s.repeated(10);
    QTest::keyClicks(m_editor.get(), text);
    QCOMPARE(m_editor->toPlainText(), text);
    const QStringList steps = taken();
    QVERIFY2(steps.size() > 2 && steps.size() < 8, qPrintable(QString::number(steps.size())));
    for (const QString &step : steps) { // never in the middle of a word
        QVERIFY2(step.endsWith(u' '), qPrintable(step));
    }
}

void TestUndoSteps::anInputMethodTypesLikeKeys()
{
    TextEditor &editor = *m_editor;
    const auto compose = [&editor](const QString &shown, const QString &committed) {
        QInputMethodEvent showing(shown, {});
        QCoreApplication::sendEvent(&editor, &showing);
        QInputMethodEvent commit;
        commit.setCommitString(committed);
        QCoreApplication::sendEvent(&editor, &commit);
    };
    QTest::keyClicks(&editor, u"caf"_s);
    compose(u"´"_s, u"é"_s);
    QTest::keyClicks(&editor, u"s"_s);
    QCOMPARE(taken(), QStringList(u"Typing: "_s));
    QTest::keyClicks(&editor, u"ab"_s);
    QInputMethodEvent before;
    before.setCommitString(u"x"_s, -1);
    QCoreApplication::sendEvent(&editor, &before);
    QCOMPARE(editor.toPlainText(), u"axb"_s);
    taken();
    const QString word = u"日本語"_s;
    for (int i = 0; i < 60; ++i) {
        compose(u"にほんご"_s, word);
    }
    QCOMPARE(editor.toPlainText(), word.repeated(60));
    QVERIFY(editor.textCursor().block().layout()->preeditAreaText().isEmpty());
    const QStringList steps = taken();
    QVERIFY2(steps.size() > 1 && steps.size() < 5, qPrintable(QString::number(steps.size())));
    for (const QString &step : steps) { // never in the middle of a word
        QCOMPARE((step.size() - "Typing: "_L1.size()) % word.size(), 0);
    }
}

void TestUndoSteps::theViewStaysWhereTheChangeIsSeen()
{
    TextEditor &editor = *m_editor;
    auto text = std::make_unique<QTextDocument>(u"words\n"_s.repeated(300));
    QCOMPARE(editor.showDocument(std::move(text)), TextEditor::ShowResult::Shown);
    QScrollBar &bar = *editor.verticalScrollBar();
    editor.moveCursor(QTextCursor::End);
    QTest::keyClicks(&editor, u"x"_s);
    const int end = bar.value();
    bar.setValue(end / 2);
    editor.selectAll();
    QVERIFY(
        editor.changeLooks(u"Bold"_s, [](QTextCharFormat &look) { look.setFontUnderline(true); }));
    QCOMPARE(bar.value(), end / 2);
    QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
    QCOMPARE(editor.undoNames().redoName(), u"Bold"_s);
    QCOMPARE(bar.value(), end / 2);
    editor.redo();
    editor.undo();
    QCOMPARE(bar.value(), end / 2);
    editor.undo();
    QCOMPARE(bar.value(), end);
}

QTEST_MAIN(TestUndoSteps)
#include "tst_undosteps.moc"
