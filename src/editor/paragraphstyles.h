#pragma once

#include <QObject>

#include <functional>
#include <memory>

class QTextBlockFormat;

namespace quorvane {

class NSWindow;
class ParagraphSheet;
class TextCommands;
class TextEditor;

/// The commands on how paragraphs stand: alignment, spacing, indents, and all of it in a sheet.
class ParagraphStyles final : public QObject
{
public:
    ParagraphStyles(TextEditor &editor, TextCommands &commands, NSWindow &sheets);
    ~ParagraphStyles() override;

private:
    void defineAlignments(TextCommands &commands);
    void defineSpacings(TextCommands &commands);
    void change(const QString &name, const std::function<void(QTextBlockFormat &)> &change);
    void indent(int by);
    void openSheet();

    TextEditor &m_editor;
    NSWindow &m_sheets;
    std::unique_ptr<ParagraphSheet> m_sheet;
};

} // namespace quorvane
