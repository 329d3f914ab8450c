#pragma once

#include <memory>

namespace quorvane {

class DocumentWindow;
class EditorView;
class NSUserDefaults;
class NSWindow;
class TextCommands;
class TextContextMenu;
class TextEditor;
class VisibleMarks;
struct EditorSurroundings;

/// What the tools on a document's text share.
struct TextToolSurroundings
{
    DocumentWindow &window;
    NSWindow &sheets; ///< Of the same window.
    EditorView &view;
    NSUserDefaults &defaults;
    const EditorSurroundings &world;
};

/// Everything that acts on the text in one document's window. Each tool defines its commands, adds
/// to the context menu and marks what it has to mark; none knows of another.
class TextTools final
{
public:
    explicit TextTools(const TextToolSurroundings &surroundings);
    ~TextTools();

private:
    struct Tools;

    std::unique_ptr<Tools> m_tools;
};

} // namespace quorvane
