#include "editor/selectedtext.h"
#include "editor/texteditor.h"

#include <QTextDocument>

namespace quorvane {

const QList<QTextCharFormat> &TextEditor::looks()
{
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        m_looksKey = {};
        m_looks = {lookOfTyped(cursor)};
        return m_looks;
    }
    const LooksKey key {document(), document()->revision(), cursor.anchor(), cursor.position()};
    if (key != m_looksKey) {
        m_looks = selectedLooks(cursor);
        m_looksKey = key;
    }
    return m_looks;
}

bool TextEditor::changeLooks(const QString &name,
                             const std::function<void(QTextCharFormat &look)> &change)
{
    if (textCursor().hasSelection()) {
        return edit(name, [&](QTextCursor &cursor) { quorvane::changeLooks(cursor, change); });
    }
    if (isReadOnly() || isContentHidden()) {
        return false;
    }
    QTextCharFormat look = lookOfTyped(textCursor());
    change(look);
    setCurrentCharFormat(look);
    return true;
}

// What is typed takes the look of the character before it, which may be more than a look.
void TextEditor::leaveForeignLook()
{
    const QTextCharFormat look = lookOfTyped(textCursor());
    if (look != currentCharFormat()) {
        setCurrentCharFormat(look);
    }
}

void TextEditor::handleTyped(const std::function<void()> &insert)
{
    QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        leaveForeignLook();
        insert();
        return;
    }
    const QTextCharFormat look = lookOfTyped(cursor);
    if (look == currentCharFormat()) {
        insert();
        return;
    }
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    setCurrentCharFormat(look); // now that it is no longer the selection's
    insert();
    cursor.endEditBlock();
}

} // namespace quorvane
