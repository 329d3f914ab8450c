#pragma once

#include "editor/tableediting.h"
#include "editor/textcontextmenu.h"
#include "support/describedtext.h"
#include "support/writtentext.h"

#include <memory>

namespace quorvane {

/// Tests in a window with the commands on tables.
class TableTest : public QObject
{
protected:
    void makeWindow()
    {
        m_tables.reset();
        m_sheets = std::make_unique<ScriptedWindow>(m_queue);
        m_window = std::make_unique<DocumentWindow>();
        m_menu = std::make_unique<TextContextMenu>(editor(), m_window->commands());
        m_tables =
            std::make_unique<TableEditing>(editor(), m_window->commands(), *m_menu, *m_sheets);
    }

    TextEditor &editor() { return m_window->editor(); }

    QTextDocument &content() { return *editor().content(); }

    QTextTable &table()
    {
        return *qobject_cast<QTextTable *>(content().rootFrame()->childFrames().at(0));
    }

    void run(TextCommand command)
    {
        m_window->commands().validate();
        m_window->commands().action(command).trigger();
        m_queue.runAll();
    }

    QString savedAndReadAgain() { return DescribedText::of(*savedAndRead(content())); }

    ManualQueue m_queue;
    std::unique_ptr<ScriptedWindow> m_sheets;
    std::unique_ptr<DocumentWindow> m_window;
    std::unique_ptr<TextContextMenu> m_menu;
    std::unique_ptr<TableEditing> m_tables;
};

} // namespace quorvane
