#include "editor/texttools.h"

#include "editor/adaptivecolours.h"
#include "editor/attachmentediting.h"
#include "editor/attachmentinsertion.h"
#include "editor/characterstyles.h"
#include "editor/columnresizing.h"
#include "editor/dateinsertion.h"
#include "editor/documentwindow.h"
#include "editor/editorsurroundings.h"
#include "editor/editorview.h"
#include "editor/finding.h"
#include "editor/headings.h"
#include "editor/linkediting.h"
#include "editor/linkfollowing.h"
#include "editor/listediting.h"
#include "editor/objectselection.h"
#include "editor/paragraphbreaks.h"
#include "editor/paragraphstyles.h"
#include "editor/pictureediting.h"
#include "editor/ruler.h"
#include "editor/spellchecking.h"
#include "editor/statusbar.h"
#include "editor/styletransfer.h"
#include "editor/tableediting.h"
#include "editor/tablemarks.h"
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
        : window(with.window)
        , sheets(with.sheets)
        , world(with.world)
        , spelling(
              {editor, commands, marks, contextMenu, with.view, with.sheets, with.world.spelling})
        , insertion(editor, commands, with.sheets, with.world)
        , attachments(with, contextMenu)
        , pictures(with, contextMenu)
    {
        window.addAboveText(new Ruler(editor, commands, with.view, sheets));
        window.addBelowText(&status);
        with.view.switches.adaptiveColours = [this](bool adapts) {
            readable.setEnabled(adapts);
        };
    }

    DocumentWindow &window;
    NSWindow &sheets;
    const EditorSurroundings &world;
    TextEditor &editor {window.editor()};
    TextCommands &commands {window.commands()};
    VisibleMarks marks {editor};
    AdaptiveColours readable {editor, marks};
    TextContextMenu contextMenu {editor, commands};
    SpellChecking spelling;
    LinkFollowing linkFollowing {editor, commands, contextMenu, sheets, world.workspace};
    LinkEditing links {editor, commands, sheets};
    TableEditing tables {editor, commands, contextMenu, sheets};
    TableMarks tableMarks {editor};
    ColumnResizing columns {editor};
    CharacterStyles characters {editor, commands};
    ObjectSelection objectSelection {editor};
    AttachmentInsertion insertion;
    AttachmentEditing attachments;
    PictureEditing pictures; // its handles come before what lies under them
    TextColours colours {editor,
                         commands,
                         {window.formatToolbar(), sheets, world.printing.sheetOf, world.styles}};
    StyleTransfer styles {editor, commands, world.styles};
    ParagraphStyles paragraphs {editor, commands, sheets};
    Headings headings {editor, commands};
    ParagraphBreaks breaks {editor, commands};
    ListEditing lists {editor, commands};
    DateInsertion dates {editor, commands};
    Finding finding {window, marks};
    ViewZoom zoom {editor, commands};
    StatusBar &status {*new StatusBar(editor, commands)}; // the window's
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
