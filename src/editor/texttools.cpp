#include "editor/texttools.h"

#include "editor/attachmentediting.h"
#include "editor/attachmentinsertion.h"
#include "editor/characterstyles.h"
#include "editor/documentwindow.h"
#include "editor/pictureediting.h"
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
        , insertion(editor, commands, with.sheets, with.world)
        , attachments(with, contextMenu)
        , pictures(with, contextMenu)
    { }

    TextEditor &editor;
    TextCommands &commands;
    VisibleMarks marks {editor};
    TextContextMenu contextMenu {editor, commands};
    CharacterStyles characters {editor, commands};
    AttachmentInsertion insertion;
    AttachmentEditing attachments;
    PictureEditing pictures; // its handles come before what lies under them
};

TextTools::TextTools(const TextToolSurroundings &surroundings)
    : m_tools(std::make_unique<Tools>(surroundings))
{ }

TextTools::~TextTools() = default;

} // namespace quorvane
