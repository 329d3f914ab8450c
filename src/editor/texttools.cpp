#include "editor/texttools.h"

#include "editor/adaptivecolours.h"
#include "editor/characterstyles.h"
#include "editor/documentwindow.h"
#include "editor/editorsurroundings.h"
#include "editor/editorview.h"
#include "editor/headings.h"
#include "editor/listediting.h"
#include "editor/paragraphbreaks.h"
#include "editor/paragraphstyles.h"
#include "editor/statusbar.h"
#include "editor/styletransfer.h"
#include "editor/textcolours.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "editor/viewzoom.h"
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
        , paragraphs(editor, commands, with.sheets)
        , status(*new StatusBar(editor, commands))
    {
        with.window.addBelowText(&status);
        with.view.switches.adaptiveColours = [this](bool adapts) {
            readable.setEnabled(adapts);
        };
    }

    TextEditor &editor;
    TextCommands &commands;
    VisibleMarks marks {editor};
    AdaptiveColours readable {editor, marks};
    TextContextMenu contextMenu {editor, commands};
    CharacterStyles characters {editor, commands};
    TextColours colours;
    StyleTransfer styles;
    ParagraphStyles paragraphs;
    Headings headings {editor, commands};
    ParagraphBreaks breaks {editor, commands};
    ListEditing lists {editor, commands};
    ViewZoom zoom {editor, commands};
    StatusBar &status; // the window's
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
