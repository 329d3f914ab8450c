#include "editor/texttools.h"

#include "editor/characterstyles.h"
#include "editor/documentwindow.h"
#include "editor/editorsurroundings.h"
#include "editor/styletransfer.h"
#include "editor/textcolours.h"
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
        , colours(editor, commands,
                  {with.window.formatToolbar(), with.sheets, with.world.printing.sheetOf,
                   with.world.styles})
        , styles(editor, commands, with.world.styles)
    { }

    TextEditor &editor;
    TextCommands &commands;
    VisibleMarks marks {editor};
    TextContextMenu contextMenu {editor, commands};
    CharacterStyles characters {editor, commands};
    TextColours colours;
    StyleTransfer styles;
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
