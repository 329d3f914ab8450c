#pragma once

#include "editor/documentwindow.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "richtext/body.h"
#include "richtext/listmarks.h"
#include "support/manualqueue.h"
#include "support/scriptedwindow.h"

#include <QAction>
#include <QStringList>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

namespace quorvane {

using namespace Qt::StringLiterals;

/// The paragraphs with the marks of their lists, four spaces in for each level.
inline QStringList outlineOf(const QTextDocument &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextList *list = block.textList();
        const int level = list ? list->format().indent() : 0;
        const QString mark = listMarkOf(block);
        lines << QString(4 * qMax(0, level - 1), u' ') + mark
                + QString(mark.isEmpty() ? 0 : 1, u' ') + block.text();
    }
    return lines;
}

/// What is read again when the document was saved.
inline std::unique_ptr<QTextDocument> savedAndRead(const QTextDocument &document)
{
    auto read = std::make_unique<QTextDocument>();
    read->setDefaultFont(document.defaultFont());
    readBody(bodyFromDocument(document), *read);
    return read;
}

inline void showText(TextEditor &editor, std::unique_ptr<QTextDocument> document)
{
    if (editor.showDocument(std::move(document)) != TextEditor::ShowResult::Shown) {
        qFatal("the text does not fit");
    }
}

inline void showText(TextEditor &editor, const QString &text)
{
    auto document = std::make_unique<QTextDocument>();
    document->setPlainText(text);
    showText(editor, std::move(document));
}

inline void selectText(TextEditor &editor, int from, int to)
{
    QTextCursor cursor = editor.textCursor();
    cursor.setPosition(from);
    cursor.setPosition(to, QTextCursor::KeepAnchor);
    editor.setTextCursor(cursor);
}

/// Shows the window, whose commands run while it is not locked, and gives it the keyboard.
inline void bringUp(DocumentWindow &window)
{
    window.commands().setGate([&window] { return !window.showsLockedAppearance(); });
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) {
        qFatal("the window does not come up");
    }
}

/// An editor by itself, with what a tool for paragraphs needs.
struct WrittenPage
{
    explicit WrittenPage(const QString &text)
    {
        editor.resize(500, 400);
        editor.show();
        editor.setTypingFont(NSFont {u"DejaVu Sans"_s, 12});
        if (!text.isEmpty()) {
            editor.insertText(text);
        }
    }

    void run(TextCommand command)
    {
        commands.validate();
        commands.action(command).trigger();
    }

    void select(int from, int to) { selectText(editor, from, to); }

    TextEditor editor;
    TextCommands commands;
    ManualQueue queue;
    ScriptedWindow window {queue};
};

/// Types, with '\b' for Backspace, '\v' for Shift+Tab, '<' and '>' for Home and End, '^' for Up and
/// '~' for undo.
inline void typeKeys(TextEditor &editor, const QString &keys)
{
    for (const QChar key : keys) {
        switch (key.unicode()) {
        case u'\n':
            QTest::keyClick(&editor, Qt::Key_Return);
            break;
        case u'\t':
            QTest::keyClick(&editor, Qt::Key_Tab);
            break;
        case u'\b':
            QTest::keyClick(&editor, Qt::Key_Backspace);
            break;
        case u'\v':
            QTest::keyClick(&editor, Qt::Key_Backtab, Qt::ShiftModifier);
            break;
        case u'<':
            QTest::keyClick(&editor, Qt::Key_Home);
            break;
        case u'>':
            QTest::keyClick(&editor, Qt::Key_End);
            break;
        case u'^':
            QTest::keyClick(&editor, Qt::Key_Up);
            break;
        case u'~':
            QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
            break;
        default:
            QTest::keyClicks(&editor, QString(key));
        }
    }
}

} // namespace quorvane
