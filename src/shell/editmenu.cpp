#include "shell/editmenu.h"

#include "editor/texteditor.h"
#include "shell/menuitems.h"

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QPlainTextEdit>
#include <QTextEdit>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

bool isText(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QTextEdit *>(widget)
        || qobject_cast<const QPlainTextEdit *>(widget);
}

EditMenu::Abilities abilitiesOf(const QLineEdit &field)
{
    const bool canWrite = !field.isReadOnly();
    const bool mayTell = field.hasSelectedText() && field.echoMode() == QLineEdit::Normal;
    return {canWrite && field.isUndoAvailable(),
            canWrite && field.isRedoAvailable(),
            canWrite && mayTell,
            mayTell,
            canWrite,
            canWrite && field.hasSelectedText(),
            !field.text().isEmpty()};
}

template <typename TextEdit> EditMenu::Abilities abilitiesOf(const TextEdit &edit)
{
    const bool canWrite = !edit.isReadOnly();
    const bool hasSelection = edit.textCursor().hasSelection();
    return {canWrite && edit.document()->isUndoAvailable(),
            canWrite && edit.document()->isRedoAvailable(),
            canWrite && hasSelection,
            hasSelection,
            canWrite,
            canWrite && hasSelection,
            true};
}

} // namespace

EditMenu::EditMenu(QMenu &menu, QMainWindow &window, MenuItems &items)
    : QObject(&menu)
    , m_window(window)
{
    const auto add = [&](const QString &title, const QKeySequence &shortcut, const char *operation,
                         bool Abilities::*ability) {
        items.add(
            menu, title, shortcut,
            [this, operation] { QMetaObject::invokeMethod(text(), operation); },
            [this, ability] {
                return MenuItemState {abilities().*ability, {}, {}};
            });
    };
    const auto addStep = [&](const QString &title, const QKeySequence &shortcut,
                             const char *operation, bool Abilities::*ability,
                             QString (UndoNames::*nameOf)() const) {
        items.add(
            menu, title, shortcut,
            [this, operation] { QMetaObject::invokeMethod(text(), operation); },
            [this, title, ability, nameOf] {
                const auto *editor = qobject_cast<TextEditor *>(text());
                const QString name =
                    editor && !editor->isReadOnly() ? (editor->undoNames().*nameOf)() : QString();
                return MenuItemState {
                    abilities().*ability, u"%1 %2"_s.arg(title, name).trimmed(), {}};
            });
    };
    addStep(u"&Undo"_s, QKeySequence::Undo, "undo", &Abilities::undo, &UndoNames::undoName);
    addStep(u"&Redo"_s, QKeySequence::Redo, "redo", &Abilities::redo, &UndoNames::redoName);
    menu.addSeparator();
    add(u"Cu&t"_s, QKeySequence::Cut, "cut", &Abilities::cut);
    add(u"&Copy"_s, QKeySequence::Copy, "copy", &Abilities::copy);
    add(u"&Paste"_s, QKeySequence::Paste, "paste", &Abilities::paste);
    items.add(
        menu, u"&Delete"_s, QKeySequence::Delete, [this] { deleteSelection(); },
        [this] {
            return MenuItemState {abilities().remove, {}, {}};
        });
    menu.addSeparator();
    add(u"Select &All"_s, QKeySequence::SelectAll, "selectAll", &Abilities::selectAll);
    // An open menu has the keyboard itself.
    connect(qApp, &QApplication::focusChanged, this, [this](const QWidget *, QWidget *focused) {
        if (isText(focused) && focused->window() == &m_window) {
            m_last = focused;
        }
    });
}

QWidget *EditMenu::text() const
{
    QWidget *focused = m_window.focusWidget();
    QWidget *text = isText(focused) ? focused : m_last.data();
    return text && text->isVisibleTo(&m_window) ? text : nullptr;
}

EditMenu::Abilities EditMenu::abilities() const
{
    QWidget *edited = text();
    if (const auto *field = qobject_cast<const QLineEdit *>(edited)) {
        return abilitiesOf(*field);
    }
    if (const auto *plain = qobject_cast<const QPlainTextEdit *>(edited)) {
        return abilitiesOf(*plain);
    }
    const auto *rich = qobject_cast<const QTextEdit *>(edited);
    Abilities abilities = rich ? abilitiesOf(*rich) : Abilities();
    if (auto *editor = qobject_cast<TextEditor *>(edited)) {
        abilities.paste = editor->isPasteOffered();
    }
    return abilities;
}

void EditMenu::deleteSelection()
{
    QWidget *edited = text();
    if (auto *field = qobject_cast<QLineEdit *>(edited)) {
        field->del();
    } else if (const auto *plain = qobject_cast<const QPlainTextEdit *>(edited)) {
        plain->textCursor().removeSelectedText();
    } else if (auto *editor = qobject_cast<TextEditor *>(edited)) {
        editor->edit(u"Delete"_s, [](QTextCursor &cursor) { cursor.removeSelectedText(); });
    } else if (const auto *rich = qobject_cast<const QTextEdit *>(edited)) {
        rich->textCursor().removeSelectedText();
    }
}

} // namespace quorvane
