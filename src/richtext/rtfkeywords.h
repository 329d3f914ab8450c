#pragma once

#include <QByteArrayView>

namespace quorvane {

/// What a control word does. A word that is not known does nothing, and text behind it stays.
enum class RtfAction {
    None,
    // Destinations: what the group that they open is for.
    Skip, ///< No text of the document.
    Transparent, ///< Its groups hold text, although it may be marked as one to be skipped.
    Aside, ///< Text beside the text: footnotes, headers, comments, boxes.
    FontTable,
    ColourTable,
    ExpandedColourTable,
    Graphic,
    Alternatives, ///< \upr: the same text for old readers and in Unicode.
    UnicodeAlternative, ///< \ud: the better one of the two.
    // Characters and breaks.
    Insert, ///< The value is the character.
    ParagraphEnd,
    CellEnd,
    RowEnd,
    Unicode,
    FallbackLength,
    // Character properties.
    Font,
    Size,
    SizeFraction,
    Bold,
    Italic,
    Underline, ///< The value is 0 for the word that ends it.
    Colour,
    Deleted,
    Plain,
    // Paragraph properties.
    ParagraphDefaults,
    Alignment, ///< The value is an RtfAlignment.
    Carried, ///< Kept with its number.
    // Tables and the head.
    CodePage, ///< The value is the code page.
    AnsiCodePage,
    DefaultFont,
    Charset,
    FontCodePage,
    Red,
    Green,
    Blue,
    ColourSpace, ///< The value is the number of channels of a space that we read.
    Channel,
    ColourName,
    Width,
    Height,
    NoOrient,
};

struct RtfKeyword
{
    RtfAction action = RtfAction::None;
    int value = 0;
};

RtfKeyword rtfKeyword(QByteArrayView word);

constexpr bool isDestination(RtfAction action)
{
    return action >= RtfAction::Skip && action <= RtfAction::UnicodeAlternative;
}

} // namespace quorvane
