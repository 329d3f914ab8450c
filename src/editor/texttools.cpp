#include "editor/texttools.h"

#include "editor/characterstyles.h"
#include "editor/documentwindow.h"
#include "editor/headings.h"
#include "editor/listediting.h"
#include "editor/paragraphbreaks.h"
#include "editor/paragraphstyles.h"
#include "editor/ruler.h"
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
        , paragraphs(editor, commands, with.sheets)
    {
        with.window.addAboveText(new Ruler(editor, commands, with.view, with.sheets));
    }

    TextEditor &editor;
    TextCommands &commands;
    VisibleMarks marks {editor};
    TextContextMenu contextMenu {editor, commands};
    CharacterStyles characters {editor, commands};
    ParagraphStyles paragraphs;
    Headings headings {editor, commands};
    ParagraphBreaks breaks {editor, commands};
    ListEditing lists {editor, commands};
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
