#include "editor/tableediting.h"

#include "editor/tablelook.h"
#include "editor/tablepropertiessheet.h"
#include "editor/tablesheet.h"
#include "editor/textcommands.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "richtext/textproperties.h"

#include <QKeyEvent>
#include <QMenu>
#include <QPointer>
#include <QTextBlock>
#include <QTextTable>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

using Command = TextCommand;

/// What stands in a table alone is no part of what is typed into it; nor are borders.
constexpr int cellProperties[] = {
    QTextFormat::BackgroundBrush,      QTextFormat::TextVerticalAlignment,
    QTextFormat::TableCellTopPadding,  QTextFormat::TableCellBottomPadding,
    QTextFormat::TableCellLeftPadding, QTextFormat::TableCellRightPadding,
};

/// A row of the header has a look of its own, that others are not to have.
int rowLike(const QTextTable &table, int neighbour, int at)
{
    const int headers = table.format().headerRowCount();
    return neighbour < headers && at >= headers && headers < table.rows() ? headers : neighbour;
}

void enterCell(QTextCursor &cursor, const QTextTableCell &cell)
{
    cursor.setPosition(cell.firstPosition());
}

} // namespace

TableEditing::TableEditing(TextEditor &editor, TextCommands &commands, TextContextMenu &menu,
                           NSWindow &sheets)
    : m_editor(editor)
    , m_commands(commands)
    , m_sheets(sheets)
{
    defineTable();
    defineRows();
    defineColumns();
    defineCells();
    menu.addSection([this](QMenu &shown, const QTextCursor &at) { addToMenu(shown, at); });
    connect(&editor, &QTextEdit::cursorPositionChanged, this, &TableEditing::keepCellOutOfText);
    editor.installEventFilter(this);
}

void TableEditing::defineTable()
{
    m_commands.define(
        Command::InsertTable, [this] { askForTable(); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly()
                                      && tableDepthAt(m_editor.textCursor()) < deepestTable,
                                  {},
                                  {}};
        });
    m_commands.define(
        Command::TableProperties, [this] { askForProperties(); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly() && target(), {}, {}};
        });
    define(Command::DeleteTable, u"Delete Table"_s,
           [](QTextCursor &cursor, const Target &target) { removeTable(cursor, *target.table); });
}

void TableEditing::defineRows()
{
    const auto mayGrow = [](const Target &target) {
        return target.table->rows() + target.area.rows <= mostTableRows;
    };
    const auto insert = [](QTextCursor &cursor, const Target &target, int at, int neighbour) {
        insertTableRows(*target.table, at, target.area.rows, rowLike(*target.table, neighbour, at));
        enterCell(cursor, target.table->cellAt(at, target.area.column));
    };
    define(
        Command::InsertRowAbove, u"Insert Row"_s,
        [insert](QTextCursor &cursor, const Target &target) {
            insert(cursor, target, target.area.row, target.area.row);
        },
        mayGrow);
    define(
        Command::InsertRowBelow, u"Insert Row"_s,
        [insert](QTextCursor &cursor, const Target &target) {
            const int end = target.area.row + target.area.rows;
            insert(cursor, target, end, end - 1);
        },
        mayGrow);
    define(Command::DeleteRows, u"Delete Rows"_s, [](QTextCursor &cursor, const Target &target) {
        QTextTable &table = *target.table;
        if (target.area.rows == table.rows()) {
            removeTable(cursor, table);
            return;
        }
        removeTableRows(table, target.area.row, target.area.rows);
        enterCell(cursor,
                  table.cellAt(std::min(target.area.row, table.rows() - 1), target.area.column));
    });
}

void TableEditing::defineColumns()
{
    const auto mayGrow = [](const Target &target) {
        return target.table->columns() + target.area.columns <= mostTableColumns;
    };
    const auto insert = [](QTextCursor &cursor, const Target &target, int at, int like) {
        insertTableColumns(*target.table, at, target.area.columns, like);
        enterCell(cursor, target.table->cellAt(target.area.row, at));
    };
    define(
        Command::InsertColumnLeft, u"Insert Column"_s,
        [insert](QTextCursor &cursor, const Target &target) {
            insert(cursor, target, target.area.column, target.area.column);
        },
        mayGrow);
    define(
        Command::InsertColumnRight, u"Insert Column"_s,
        [insert](QTextCursor &cursor, const Target &target) {
            const int end = target.area.column + target.area.columns;
            insert(cursor, target, end, end - 1);
        },
        mayGrow);
    define(Command::DeleteColumns, u"Delete Columns"_s,
           [](QTextCursor &cursor, const Target &target) {
               QTextTable &table = *target.table;
               if (target.area.columns == table.columns()) {
                   removeTable(cursor, table);
                   return;
               }
               removeTableColumns(table, target.area.column, target.area.columns);
               enterCell(cursor,
                         table.cellAt(target.area.row,
                                      std::min(target.area.column, table.columns() - 1)));
           });
}

void TableEditing::defineCells()
{
    define(
        Command::MergeCells, u"Merge Cells"_s,
        [](QTextCursor &cursor, const Target &target) {
            mergeTableCells(*target.table, target.area);
            enterCell(cursor, target.table->cellAt(target.area.row, target.area.column));
        },
        [](const Target &target) {
            const TableArea &area = target.area;
            const QTextTableCell cell = target.table->cellAt(area.row, area.column);
            return area.rows > cell.rowSpan() || area.columns > cell.columnSpan();
        });
    define(
        Command::SplitCell, u"Split Cell"_s,
        [](QTextCursor &cursor, const Target &target) {
            splitTableCell(*target.table, target.area.row, target.area.column);
            enterCell(cursor, target.table->cellAt(target.area.row, target.area.column));
        },
        [](const Target &target) {
            const TableArea &area = target.area;
            const QTextTableCell cell = target.table->cellAt(area.row, area.column);
            return area.rows == cell.rowSpan() && area.columns == cell.columnSpan()
                && area.rows * area.columns > 1;
        });
}

void TableEditing::define(TextCommand command, const QString &name, Change change,
                          Condition condition)
{
    m_commands.define(
        command,
        [this, name, change = std::move(change)] {
            m_editor.edit(name, [&](QTextCursor &cursor) {
                if (const auto found = target()) {
                    change(cursor, *found);
                }
            });
            m_editor.setFocus();
        },
        [this, condition = std::move(condition)] {
            const auto found = m_editor.isReadOnly() ? std::nullopt : target();
            return MenuItemState {found && condition(*found), {}, {}};
        });
}

void TableEditing::askForTable()
{
    auto *sheet = new TableSheet(m_editor.window());
    sheet->begin(m_sheets, this, [this, sheet] {
        m_editor.edit(u"Insert Table"_s, [sheet](QTextCursor &cursor) {
            insertTable(cursor, sheet->rows(), sheet->columns(), sheet->hasHeader());
        });
        m_editor.setFocus();
    });
}

void TableEditing::askForProperties()
{
    const auto found = target();
    if (!found) {
        return;
    }
    const TableArea whole {0, 0, found->table->rows(), found->table->columns()};
    auto *sheet = new TablePropertiesSheet(
        lookOfTable(*found->table), lookOfCells(*found->table, found->area),
        lookOfCells(*found->table, whole), found->area.column, m_editor.window());
    const auto apply = [this, sheet, area = found->area, whole, table = QPointer(found->table)] {
        if (!table || table->rows() != whole.rows || table->columns() != whole.columns) {
            return; // undone or replaced meanwhile
        }
        m_editor.edit(u"Table Properties"_s, [&](QTextCursor &) {
            applyLook(*table, sheet->table());
            applyLook(*table, sheet->isForAllCells() ? whole : area, sheet->cells());
        });
        keepCellOutOfText();
        m_editor.setFocus();
    };
    sheet->begin(m_sheets, this, apply);
}

void TableEditing::addToMenu(QMenu &menu, const QTextCursor &at)
{
    if (!at.currentTable() || m_editor.isReadOnly()) {
        return;
    }
    QMenu *table = menu.addMenu(u"&Table"_s);
    const std::initializer_list<std::initializer_list<Command>> groups = {
        {Command::InsertRowAbove, Command::InsertRowBelow, Command::InsertColumnLeft,
         Command::InsertColumnRight},
        {Command::DeleteRows, Command::DeleteColumns, Command::DeleteTable},
        {Command::MergeCells, Command::SplitCell},
        {Command::TableProperties},
    };
    for (const auto &group : groups) {
        for (const Command command : group) {
            table->addAction(&m_commands.action(command));
        }
        table->addSeparator();
    }
}

std::optional<TableEditing::Target> TableEditing::target() const
{
    const QTextCursor cursor = m_editor.textCursor();
    QTextTable *const table = cursor.currentTable();
    if (!table) {
        return std::nullopt;
    }
    const QTextTableCell cell = table->cellAt(cursor);
    TableArea area {cell.row(), cell.column(), cell.rowSpan(), cell.columnSpan()};
    if (cursor.hasComplexSelection()) {
        cursor.selectedTableCells(&area.row, &area.rows, &area.column, &area.columns);
    }
    return Target {table, withWholeCells(*table, area)};
}

bool TableEditing::eventFilter(QObject *watched, QEvent *event)
{
    const bool isKey = watched == &m_editor && event->type() == QEvent::KeyPress;
    return (isKey && takesKey(*static_cast<QKeyEvent *>(event)))
        || QObject::eventFilter(watched, event);
}

bool TableEditing::takesKey(const QKeyEvent &key)
{
    const bool isReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (isReturn && (key.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier) {
        return writeBeforeTable();
    }
    const bool isTab = key.key() == Qt::Key_Tab || key.key() == Qt::Key_Backtab;
    const bool isDeletion = key.key() == Qt::Key_Backspace || key.key() == Qt::Key_Delete;
    if ((!isTab && !isDeletion) || m_editor.isContentHidden()
        || !m_editor.textCursor().currentTable()) {
        return false;
    }
    if (isDeletion) {
        return removeSelectedTable();
    }
    if (key.modifiers().testFlag(Qt::ControlModifier)) {
        return typeTab();
    }
    const bool isBack = key.key() == Qt::Key_Backtab || key.modifiers().testFlag(Qt::ShiftModifier);
    return goToCell(!isBack);
}

// The paragraph that the toolkit wants before a table cannot be seen: one to write in comes first.
bool TableEditing::writeBeforeTable()
{
    const QTextCursor caret = m_editor.textCursor();
    const bool isThere = !caret.hasSelection() && caret.block().length() == 1
        && caret.blockFormat().boolProperty(BeforeTable);
    if (!isThere || m_editor.isReadOnly() || m_editor.isContentHidden()
        || !m_editor.hasRoomFor(2 * m_editor.cursorRect().height())) {
        return false;
    }
    return m_editor.edit(u"Typing"_s, [](QTextCursor &cursor) {
        cursor.insertBlock();
        cursor.movePosition(QTextCursor::PreviousBlock);
        QTextBlockFormat format = cursor.blockFormat();
        format.clearProperty(BeforeTable);
        cursor.setBlockFormat(format);
    });
}

bool TableEditing::goToCell(bool forward)
{
    QTextCursor cursor = m_editor.textCursor();
    QTextTable &table = *cursor.currentTable();
    const QTextTableCell here = table.cellAt(cursor);
    const int position = forward ? here.lastPosition() + 1 : here.firstPosition() - 1;
    const QTextTableCell there = table.cellAt(position);
    if (there.isValid() && there != here) {
        cursor.setPosition(there.firstPosition());
        cursor.setPosition(there.lastPosition(), QTextCursor::KeepAnchor);
        m_editor.setTextCursor(cursor);
        return true;
    }
    if (forward && table.rows() < mostTableRows) {
        m_editor.edit(u"Insert Row"_s, [&table](QTextCursor &added) {
            const int end = table.rows();
            insertTableRows(table, end, 1, rowLike(table, end - 1, end));
            enterCell(added, table.cellAt(end, 0));
        });
    }
    return true;
}

bool TableEditing::typeTab()
{
    if (!m_editor.isReadOnly()) {
        m_editor.insertText(u"\t"_s, u"Typing"_s);
    }
    return true;
}

// The toolkit would only empty the cells.
bool TableEditing::removeSelectedTable()
{
    const QTextCursor selection = m_editor.textCursor();
    QTextTable &table = *selection.currentTable();
    const TableArea whole {0, 0, table.rows(), table.columns()};
    TableArea area {}; // without the cells that lie beside merged ones: they would be lost
    selection.selectedTableCells(&area.row, &area.rows, &area.column, &area.columns);
    if (!selection.hasComplexSelection() || area != whole) {
        return false;
    }
    m_editor.edit(u"Delete Table"_s, [&table](QTextCursor &cursor) { removeTable(cursor, table); });
    return true;
}

// The look of an empty cell is the look of what is typed there, and that has no padding, borders or
// shade of its own.
void TableEditing::keepCellOutOfText()
{
    const QTextCursor cursor = m_editor.textCursor();
    if (cursor.block().length() > 1 || cursor.hasSelection() || m_editor.isReadOnly()
        || !cursor.charFormat().hasProperty(QTextFormat::TableCellLeftPadding)) {
        return;
    }
    QTextCharFormat format = m_editor.currentCharFormat();
    for (const int property : cellProperties) {
        format.clearProperty(property);
    }
    clearCellBorders(format);
    m_editor.setCurrentCharFormat(format);
}

} // namespace quorvane
