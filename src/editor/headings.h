#pragma once

#include <QObject>

class QTextBlock;
class QTextCursor;

namespace quorvane {

class TextCommands;
class TextEditor;

/// Makes a paragraph a heading of that level, or one of the body (0): the level and the look that
/// goes with it. Sizes are relative to the body's.
void setHeading(const QTextBlock &block, int level);

/// In an empty paragraph, what is typed next looks as the paragraph does, whatever was chosen
/// before.
void typeAsBlock(QTextCursor &cursor);

/// The commands on headings.
class Headings final : public QObject
{
public:
    Headings(TextEditor &editor, TextCommands &commands);

private:
    TextEditor &m_editor;
};

} // namespace quorvane
