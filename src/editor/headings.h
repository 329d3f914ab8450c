#pragma once

#include <QObject>

class QTextBlock;

namespace quorvane {

class TextCommands;
class TextEditor;

/// Makes a paragraph a heading of that level, or one of the body (0): the level and the look that
/// goes with it. Sizes are relative to the body's.
void setHeading(const QTextBlock &block, int level);

/// The commands on headings.
class Headings final : public QObject
{
public:
    Headings(TextEditor &editor, TextCommands &commands);

private:
    TextEditor &m_editor;
};

} // namespace quorvane
