#pragma once

#include <QObject>

class QTextCharFormat;

namespace quorvane {

class TextCommands;
class TextEditor;

/// The commands on the look of characters.
class CharacterStyles final : public QObject
{
public:
    CharacterStyles(TextEditor &editor, TextCommands &commands);

private:
    TextEditor &m_editor;
};

} // namespace quorvane
