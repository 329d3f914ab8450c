#include "editor/texteditor.h"

#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qint64 typingPause = 2000; // milliseconds
constexpr int longStep = 80; // characters

/// Plain characters, which the toolkit would insert as they are.
bool isTyping(const QString &text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar c) { return c.isPrint() || c.isSurrogate(); });
}

bool isTyping(const QKeyEvent &event)
{
    const bool isShortcut = event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier);
    return !isShortcut && event.text().size() == 1 && isTyping(event.text());
}

QString stepOf(const QKeyEvent &event)
{
    if (event.matches(QKeySequence::Cut)) {
        return u"Cut"_s;
    }
    if (event.matches(QKeySequence::Paste)) {
        return {}; // inserting names it
    }
    const bool erases = event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete;
    return erases ? u"Delete"_s : u"Typing"_s;
}

bool insertsText(const QString &text)
{
    return !text.isEmpty() && (text.at(0).isPrint() || text.at(0) == u'\r' || text.at(0) == u'\t');
}

} // namespace

void TextEditor::keyPressEvent(QKeyEvent *event)
{
    m_unsettled.reset();
    if (!isReadOnly() && insertsText(event->text()) && !hasRoomFor(2 * cursorRect().height())) {
        refuse();
        return;
    }
    const bool undoes = event->matches(QKeySequence::Undo);
    if (!isReadOnly() && (undoes || event->matches(QKeySequence::Redo))) {
        m_typed = 0;
        undoes ? undo() : redo();
        return;
    }
    const UndoNames::Scope scope(m_undoNames, stepOf(*event));
    if (isReadOnly() || !insertsText(event->text())) {
        m_typed = 0;
        QTextEdit::keyPressEvent(event);
        return;
    }
    const bool isTyped = isTyping(*event);
    m_typed = isTyped ? m_typed : 0;
    handleTyped([this, event, isTyped] {
        if (isTyped && beginsStep(event->text())) {
            type(event->text(), true);
        } else {
            QTextEdit::keyPressEvent(event);
        }
    });
}

// The toolkit makes one step of all that is typed in a row: an hour's work would go at once.
bool TextEditor::beginsStep(const QString &text)
{
    const bool paused = m_sinceTyping.isValid() && m_sinceTyping.hasExpired(typingPause);
    const bool beginsWord = text.size() > 1 // an input method has made one
        || (!text.at(0).isSpace()
            && document()->characterAt(textCursor().position() - 1).isSpace());
    m_sinceTyping.start();
    m_typed += int(text.size());
    if (!paused && !(beginsWord && m_typed > longStep)) {
        return false;
    }
    m_typed = int(text.size());
    return true;
}

// What stands in an edit block of its own is not joined with what was typed before.
void TextEditor::type(const QString &text, bool asNewStep)
{
    QTextCursor cursor = textCursor();
    if (asNewStep) {
        cursor.beginEditBlock();
    }
    cursor.insertText(text);
    if (asNewStep) {
        cursor.endEditBlock();
    }
    setTextCursor(cursor);
    ensureCursorVisible();
}

void TextEditor::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) { // the toolkit would insert it, as the caret can be moved
        event->ignore();
        return;
    }
    const QString text = event->commitString();
    if (insertsText(text) && !hasRoomFor(2 * cursorRect().height())) {
        refuse();
        return;
    }
    if (text.isEmpty()) {
        QTextEdit::inputMethodEvent(event);
        return;
    }
    handleTyped([this, event, &text] {
        const bool isElsewhere = event->replacementStart() != 0 || event->replacementLength() > 0;
        if (isElsewhere || !isTyping(text)) {
            QTextEdit::inputMethodEvent(event);
            return;
        }
        // The toolkit would make a step of each of these, down to a single letter.
        QInputMethodEvent composed;
        QTextEdit::inputMethodEvent(&composed);
        type(text, beginsStep(text));
        QInputMethodEvent rest(event->preeditString(), event->attributes());
        QTextEdit::inputMethodEvent(&rest);
    });
}

} // namespace quorvane
