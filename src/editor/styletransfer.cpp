#include "editor/styletransfer.h"

#include "editor/selectedtext.h"
#include "editor/stylememory.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "richtext/textproperties.h"

#include <QTextBlock>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

// What is not named here is no style but part of the text: lists, page breaks, rules, check marks.
constexpr int paragraphStyle[] = {
    QTextFormat::BlockAlignment,
    QTextFormat::BlockTopMargin,
    QTextFormat::BlockBottomMargin,
    QTextFormat::BlockLeftMargin,
    QTextFormat::BlockRightMargin,
    QTextFormat::TextIndent,
    QTextFormat::LineHeightType,
    QTextFormat::LineHeight,
    QTextFormat::TabPositions,
    QTextFormat::BackgroundBrush,
    QTextFormat::HeadingLevel,
    TabLeaders,
    MaximumLineHeight,
};

// The same of characters: what a style must neither take nor bring.
constexpr int textOfItsOwn[] = {
    QTextFormat::ObjectType,
    QTextFormat::ObjectIndex,
    QTextFormat::IsAnchor,
    QTextFormat::AnchorHref,
    QTextFormat::AnchorName,
    LinkLook,
    OriginalUnit,
    AttachmentName,
    AttachmentId,
    AttachmentWidth,
    AttachmentHeight,
    AttachmentNoOrient,
};

template <typename Format> void takeProperty(Format &to, const QTextFormat &from, int property)
{
    if (from.hasProperty(property)) {
        to.setProperty(property, from.property(property));
    } else {
        to.clearProperty(property);
    }
}

void takeParagraphStyle(QTextBlockFormat &to, const QTextBlockFormat &from)
{
    for (const int property : paragraphStyle) {
        takeProperty(to, from, property);
    }
}

/// \a style on a character that was \a look, whose link goes on looking like one.
QTextCharFormat styled(const QTextCharFormat &look, const QTextCharFormat &style)
{
    QTextCharFormat result = style;
    for (const int property : textOfItsOwn) {
        takeProperty(result, look, property);
    }
    if (look.boolProperty(LinkLook)) {
        result.setForeground(QColor(linkColour));
        result.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    }
    return result;
}

void setStyle(QTextCursor &cursor, const CopiedStyle &style)
{
    changeLooks(cursor, [&style](QTextCharFormat &look) { look = styled(look, style.characters); });
    for (const QTextBlock &block : wholeSelectedBlocks(cursor)) {
        QTextCursor at(block);
        QTextBlockFormat format = block.blockFormat();
        takeParagraphStyle(format, style.paragraph);
        if (format != block.blockFormat()) {
            at.setBlockFormat(format);
        }
        if (block.length() == 1) { // what is typed there has the look of the paragraph
            at.setBlockCharFormat(styled(block.charFormat(), style.characters));
        }
    }
}

void setStyle(TextEditor &editor, const QString &name, const CopiedStyle &style)
{
    editor.edit(name, [&style](QTextCursor &cursor) { setStyle(cursor, style); });
    if (!editor.textCursor().hasSelection()) {
        editor.setCurrentCharFormat(styled(lookOfTyped(editor.textCursor()), style.characters));
    }
}

} // namespace

StyleTransfer::StyleTransfer(TextEditor &editor, TextCommands &commands, StyleMemory &memory)
    : m_editor(editor)
    , m_memory(memory)
{
    const auto writes = [this] {
        return MenuItemState {!m_editor.isReadOnly(), {}, {}};
    };
    commands.define(
        TextCommand::CopyStyle, [this] { copyStyle(); },
        [] {
            return MenuItemState {true, {}, {}};
        });
    commands.define(
        TextCommand::PasteStyle, [this] { pasteStyle(); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly() && m_memory.copied.has_value(), {}, {}};
        });
    commands.define(
        TextCommand::ClearFormatting, [this] { clearFormatting(); }, writes);
    commands.define(
        TextCommand::PasteAndMatchStyle, [this] { m_editor.pasteAndMatchStyle(); },
        [this] {
            return MenuItemState {m_editor.isPasteOffered(), {}, {}};
        });
}

// Of the first character that is selected, or of the one before the caret.
void StyleTransfer::copyStyle()
{
    const QTextCursor cursor = m_editor.textCursor();
    QTextCharFormat look = m_editor.looks().first();
    dropLink(look);
    for (const int property : textOfItsOwn) {
        look.clearProperty(property);
    }
    const QTextBlock block = m_editor.document()->findBlock(cursor.selectionStart());
    CopiedStyle style {look, {}};
    takeParagraphStyle(style.paragraph, block.blockFormat());
    m_memory.copied = style;
}

void StyleTransfer::pasteStyle()
{
    setStyle(m_editor, u"Paste Style"_s, *m_memory.copied);
}

void StyleTransfer::clearFormatting()
{
    CopiedStyle plain;
    if (const std::optional<NSFont> &font = m_editor.typingFont()) {
        plain.characters.setFontFamilies({font->family});
        plain.characters.setFontPointSize(font->pointSize);
    }
    setStyle(m_editor, u"Clear Formatting"_s, plain);
}

} // namespace quorvane
