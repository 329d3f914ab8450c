#pragma once

#include <QTextFormat>

namespace quorvane {

/// The object type of an attachment's format. Text typed behind an attachment inherits the other
/// properties, so only this type together with U+FFFC makes a character an attachment.
constexpr int attachmentObjectType = QTextFormat::UserObject + 1;

/// What a text document cannot hold itself, carried on the format that it belongs to.
enum TextProperty {
    // Attachments.
    AttachmentName = QTextFormat::UserProperty + 1, ///< QString, as in the folder and the text.
    AttachmentId, ///< int of its own for each, so that neighbours never merge.
    AttachmentWidth, ///< int, twips; absent where not told.
    AttachmentHeight, ///< int, twips; absent where not told.
    AttachmentNoOrient, ///< true where the image's own orientation is not to be used.
    // Characters.
    OriginalUnit, ///< int, the UTF-16 unit that U+FFFD stands for.
    FontName, ///< QString, a font name that says more than family, bold and italic.
    // Paragraphs.
    ParagraphWords, ///< QByteArray, RTF control words that are carried along as they came.
};

/// Units that a text document uses for its own structure: U+FFFD with OriginalUnit stands for them.
constexpr bool isDocumentInternal(char16_t unit)
{
    return unit == 0xfdd0 || unit == 0xfdd1;
}

/// The tab stops of a paragraph that has none of its own: half an inch and a bit, twelve times.
constexpr char defaultTabWords[] = "\\tx560\\tx1120\\tx1680\\tx2240\\tx2800\\tx3360\\tx3920\\tx4480"
                                   "\\tx5040\\tx5600\\tx6160\\tx6720";

} // namespace quorvane
