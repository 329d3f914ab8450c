#include "editor/texttools.h"

#include "editor/characterstyles.h"
#include "editor/columnresizing.h"
#include "editor/dateinsertion.h"
#include "editor/documentwindow.h"
#include "editor/editorsurroundings.h"
#include "editor/linkediting.h"
#include "editor/linkfollowing.h"
#include "editor/tableediting.h"
#include "editor/tablemarks.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "editor/visiblemarks.h"

namespace quorvane {

// In the order in which they speak in the context menu.
struct TextTools::Tools
{
    explicit Tools(const TextToolSurroundings &with)
        : editor(with.window.editor())
        , commands(with.window.commands())
        , sheets(with.sheets)
        , workspace(with.world.workspace)
    { }

    TextEditor &editor;
    TextCommands &commands;
    NSWindow &sheets;
    NSWorkspace &workspace;
    VisibleMarks marks {editor};
    TextContextMenu contextMenu {editor, commands};
    CharacterStyles characters {editor, commands};
    LinkFollowing linkFollowing {editor, commands, contextMenu, sheets, workspace};
    LinkEditing links {editor, commands, sheets};
    TableEditing tables {editor, commands, contextMenu, sheets};
    TableMarks tableMarks {editor};
    ColumnResizing columns {editor};
    DateInsertion dates {editor, commands};
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
