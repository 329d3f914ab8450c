#include "editor/textcontextmenu.h"

#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QAction>
#include <QMenu>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

TextContextMenu::TextContextMenu(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
    , m_commands(commands)
{
    connect(&editor, &TextEditor::contextMenuAsked, this, &TextContextMenu::open);
}

void TextContextMenu::addSection(Section section)
{
    m_sections.push_back(std::move(section));
}

void TextContextMenu::open(const QPoint &place, const QPoint &screenPlace)
{
    auto *menu = new QMenu(&m_editor);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    // What it offers is about the text as it is now.
    connect(&m_editor, &TextEditor::contentHiddenChanged, menu, &QMenu::close);
    connect(&m_editor, &TextEditor::contentReplaced, menu, &QMenu::close);
    const QTextCursor at = m_editor.cursorForPosition(place);
    const QTextCursor caret = m_editor.textCursor();
    if (at.position() < caret.selectionStart() || at.position() > caret.selectionEnd()) {
        m_editor.setTextCursor(at);
    }
    m_commands.validate();
    for (const Section &section : m_sections) {
        section(*menu, at);
        menu->addSeparator(); // two of them in a row show as one
    }
    addUsual(*menu);
    menu->popup(screenPlace);
}

void TextContextMenu::addUsual(QMenu &menu)
{
    const bool writes = !m_editor.isReadOnly();
    const bool selected = m_editor.textCursor().hasSelection();
    const auto add = [&](const QString &title, QKeySequence::StandardKey key, bool enabled,
                         void (QTextEdit::*run)()) {
        QAction *action = menu.addAction(title);
        action->setShortcut(key); // to be read: the menu is gone before anybody presses it
        action->setEnabled(enabled);
        connect(action, &QAction::triggered, &m_editor, run);
    };
    add(u"Cu&t"_s, QKeySequence::Cut, writes && selected, &QTextEdit::cut);
    add(u"&Copy"_s, QKeySequence::Copy, selected, &QTextEdit::copy);
    add(u"&Paste"_s, QKeySequence::Paste, m_editor.isPasteOffered(), &QTextEdit::paste);
    menu.addAction(&m_commands.action(TextCommand::PasteAndMatchStyle));
    menu.addSeparator();
    add(u"Select &All"_s, QKeySequence::SelectAll, true, &QTextEdit::selectAll);
}

} // namespace quorvane
