#pragma once

#include <QObject>

namespace quorvane {

class StyleMemory;
class TextCommands;
class TextEditor;

/// The commands that take a style from one place to another, or away. Attachments stay attachments
/// and links links. A paragraph's style goes with its characters' where all of it is selected.
class StyleTransfer final : public QObject
{
public:
    StyleTransfer(TextEditor &editor, TextCommands &commands, StyleMemory &memory);

private:
    void copyStyle();
    void pasteStyle();
    void clearFormatting();

    TextEditor &m_editor;
    StyleMemory &m_memory;
};

} // namespace quorvane
