#pragma once

#include "editor/tableshape.h"

#include <QObject>

#include <functional>
#include <optional>

class QKeyEvent;
class QMenu;
class QTextCursor;
class QTextTable;

namespace quorvane {

class NSWindow;
class TextCommands;
class TextContextMenu;
class TextEditor;
enum class TextCommand;

/// The commands on tables, and the keys that go from cell to cell.
class TableEditing final : public QObject
{
public:
    /// What a command on cells is about: those selected, or the one with the caret.
    struct Target
    {
        QTextTable *table;
        TableArea area;
    };

    /// \a sheets is the window's.
    TableEditing(TextEditor &editor, TextCommands &commands, TextContextMenu &menu,
                 NSWindow &sheets);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    using Change = std::function<void(QTextCursor &cursor, const Target &target)>;
    using Condition = std::function<bool(const Target &target)>;

    void defineTable();
    void defineRows();
    void defineColumns();
    void defineCells();
    void define(
        TextCommand command, const QString &name, Change change,
        Condition condition = [](const Target &) { return true; });
    void askForTable();
    void askForProperties();
    void addToMenu(QMenu &menu, const QTextCursor &at);
    std::optional<Target> target() const;
    bool takesKey(const QKeyEvent &key);
    bool writeBeforeTable();
    bool goToCell(bool forward);
    bool typeTab();
    bool removeSelectedTable();
    void keepCellOutOfText();

    TextEditor &m_editor;
    TextCommands &m_commands;
    NSWindow &m_sheets;
};

} // namespace quorvane
