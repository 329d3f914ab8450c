#pragma once

#include "editor/stylememory.h"

#include <QPointer>

#include <functional>

class QDialog;

namespace quorvane {

class ColourPalette;
class FormatToolbar;
class NSSheet;
class NSWindow;
class TextCommands;
class TextEditor;

/// The commands on the colours of a text and of its ground: one opens a palette, one uses the last
/// colour again.
class TextColours final : public QObject
{
public:
    struct Surroundings
    {
        FormatToolbar &toolbar; ///< Shows the last colours, and the palette beneath.
        NSWindow &sheets;
        std::function<NSSheet &(QDialog &dialog)> sheetOf;
        StyleMemory &memory;
    };

    TextColours(TextEditor &editor, TextCommands &commands, Surroundings surroundings);

private:
    void define(ColourUse use);
    void openPalette(ColourUse use);
    void openDialog(ColourUse use);
    void apply(ColourUse use, const QColor &colour);
    void drop(ColourUse use);
    void showLast();
    std::optional<QColor> current(ColourUse use) const;
    QRect anchor(ColourUse use) const;

    TextEditor &m_editor;
    TextCommands &m_commands;
    Surroundings m_with;
    QPointer<ColourPalette> m_palette;
};

} // namespace quorvane
