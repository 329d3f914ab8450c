#include "editor/textcolours.h"

#include "editor/colourpalette.h"
#include "editor/formattoolbar.h"
#include "editor/glyphicon.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "platform/nswindow.h"
#include "richtext/textproperties.h"

#include <QAction>
#include <QColorDialog>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct Use
{
    TextCommand choose;
    TextCommand useLast;
    QTextFormat::Property property;
    Glyph glyph;
    QString name;
};

Use useOf(ColourUse use)
{
    if (use == ColourUse::Text) {
        return {TextCommand::TextColour, TextCommand::LastTextColour, QTextFormat::ForegroundBrush,
                Glyph::TextColour, u"Text Colour"_s};
    }
    return {TextCommand::HighlightColour, TextCommand::LastHighlight, QTextFormat::BackgroundBrush,
            Glyph::Highlight, u"Highlight"_s};
}

} // namespace

TextColours::TextColours(TextEditor &editor, TextCommands &commands, Surroundings surroundings)
    : m_editor(editor)
    , m_commands(commands)
    , m_with(std::move(surroundings))
{
    define(ColourUse::Text);
    define(ColourUse::Highlight);
    connect(&m_with.memory, &StyleMemory::lastChanged, this, &TextColours::showLast);
    showLast();
    connect(&editor, &TextEditor::contentHiddenChanged, this, [this] {
        if (m_palette) {
            m_palette->close();
        }
    });
}

void TextColours::define(ColourUse use)
{
    const auto writes = [this] {
        return MenuItemState {!m_editor.isReadOnly(), {}, {}};
    };
    m_commands.define(
        useOf(use).choose,
        [this, use] { // once the menu or panel that asked has closed
            QMetaObject::invokeMethod(
                this, [this, use] { openPalette(use); }, Qt::QueuedConnection);
        },
        writes);
    m_commands.define(
        useOf(use).useLast, [this, use] { apply(use, m_with.memory.last(use)); }, writes);
}

void TextColours::openPalette(ColourUse use)
{
    if (m_palette || m_editor.isContentHidden()) {
        return;
    }
    m_palette = new ColourPalette(use, m_with.memory.recent(use), current(use), m_editor.window());
    connect(m_palette, &ColourPalette::picked, this, [this, use](const auto &colour) {
        if (colour) {
            apply(use, *colour);
        } else {
            drop(use);
        }
    });
    connect(m_palette, &ColourPalette::otherAsked, this, [this, use] { openDialog(use); });
    m_palette->popUp(anchor(use));
}

void TextColours::openDialog(ColourUse use)
{
    auto *dialog =
        new QColorDialog(current(use).value_or(m_with.memory.last(use)), m_editor.window());
    dialog->setOption(QColorDialog::DontUseNativeDialog);
    dialog->setWindowTitle(useOf(use).name);
    m_with.sheets.beginSheet(m_with.sheetOf(*dialog),
                             [self = QPointer(this), dialog, use](int code) {
                                 dialog->deleteLater();
                                 if (self && code == QDialog::Accepted) {
                                     self->apply(use, dialog->currentColor());
                                 }
                             });
}

void TextColours::apply(ColourUse use, const QColor &colour)
{
    const auto paint = [use, &colour](QTextCharFormat &look) {
        look.setProperty(useOf(use).property, QBrush(colour));
    };
    if (m_editor.changeLooks(useOf(use).name, paint)) {
        m_with.memory.note(use, colour);
    }
    m_editor.setFocus();
}

void TextColours::drop(ColourUse use)
{
    m_editor.changeLooks(useOf(use).name, [use](QTextCharFormat &look) {
        look.clearProperty(useOf(use).property);
        if (use == ColourUse::Text && look.boolProperty(LinkLook)) {
            look.setForeground(QColor(linkColour));
        }
    });
    m_editor.setFocus();
}

void TextColours::showLast()
{
    for (const ColourUse use : {ColourUse::Text, ColourUse::Highlight}) {
        QAction &action = m_commands.action(useOf(use).useLast);
        action.setIcon(glyphIcon(useOf(use).glyph, m_with.memory.last(use)));
        action.setIconVisibleInMenu(false);
    }
}

/// The colour of the first character that is selected; nothing where it has none of its own.
std::optional<QColor> TextColours::current(ColourUse use) const
{
    const QTextCharFormat look = m_editor.looks().first();
    const QBrush brush = look.brushProperty(useOf(use).property);
    return brush.style() == Qt::NoBrush ? std::nullopt : std::optional(brush.color());
}

QRect TextColours::anchor(ColourUse use) const
{
    if (const QWidget *button = m_with.toolbar.shownWidget(useOf(use).choose)) {
        return {button->mapToGlobal(QPoint()), button->size()};
    }
    const QRect caret = m_editor.cursorRect();
    return {m_editor.viewport()->mapToGlobal(caret.topLeft()), caret.size()};
}

} // namespace quorvane
