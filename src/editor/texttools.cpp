#include "editor/texttools.h"

#include "editor/adaptivecolours.h"
#include "editor/characterstyles.h"
#include "editor/documentwindow.h"
#include "editor/editorsurroundings.h"
#include "editor/editorview.h"
#include "editor/finding.h"
#include "editor/spellchecking.h"
#include "editor/statusbar.h"
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
        , spelling(
              {editor, commands, marks, contextMenu, with.view, with.sheets, with.world.spelling})
        , finding(with.window, marks)
        , status(*new StatusBar(editor, commands))
    {
        with.window.addBelowText(&status);
        with.view.switches.adaptiveColours = [this](bool adapts) {
            colours.setEnabled(adapts);
        };
    }

    TextEditor &editor;
    TextCommands &commands;
    VisibleMarks marks {editor};
    AdaptiveColours colours {editor, marks};
    TextContextMenu contextMenu {editor, commands};
    SpellChecking spelling;
    CharacterStyles characters {editor, commands};
    Finding finding;
    ViewZoom zoom {editor, commands};
    StatusBar &status; // the window's
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
