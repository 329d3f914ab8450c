#pragma once

#include <QByteArrayView>

namespace quorvane {

/// What a control word does. A word that is not known does nothing, and text behind it stays.
enum class RtfAction : unsigned char {
    None,
    // Destinations: what the group that they open is for.
    Skip, ///< No text of the document.
    Transparent, ///< Its groups hold text, although it may be marked as one to be skipped.
    Aside, ///< Text beside the text: footnotes, headers, comments, boxes.
    FontTable,
    ColourTable,
    ExpandedColourTable,
    StyleSheet,
    ListTable,
    ListOverrideTable,
    LevelText,
    Field,
    FieldInstruction,
    Picture,
    ShapeValue, ///< No text, but there may be a picture in it.
    Label, ///< The label of a list's item, for readers that make none.
    OldList,
    OldListText, ///< The value is 0 for text before the number, 1 for text behind it.
    Info,
    InfoText,
    Graphic,
    Alternatives, ///< \upr: the same text for old readers and in Unicode.
    UnicodeAlternative, ///< \ud: the better one of the two.
    // Characters and breaks.
    Insert, ///< The value is the character.
    ParagraphEnd,
    CellEnd,
    NestedCellEnd,
    RowEnd,
    NestedRowEnd,
    FootnoteNumber,
    Unicode,
    FallbackLength,
    // Character properties.
    Font,
    Size,
    SizeFraction,
    Bold,
    Italic,
    Underline, ///< The value is an RtfCharacter::underline.
    UnderlineColour,
    Strike,
    DoubleStrike,
    StrikeColour,
    Script, ///< The value is an RtfScript.
    Shift, ///< The value is the direction.
    Colour,
    Background,
    Capitals, ///< The value is an RtfCapitals.
    Spacing, ///< The value is the unit in twips.
    Kerning,
    Language,
    CharacterWord, ///< Kept with its number; the value is a CarriedNumber.
    Plain,
    CharacterStyle,
    Deleted,
    // Paragraph properties.
    ParagraphDefaults,
    ParagraphStyle,
    Alignment, ///< The value is an RtfAlignment.
    Direction, ///< The value is an RtfDirection.
    Left,
    Right,
    First,
    Before,
    After,
    LineHeight,
    LineMultiple,
    LineMaximum,
    Leading,
    Tab,
    TabKind, ///< The value is an RtfTabKind.
    TabLeader,
    PageBreakBefore,
    OutlineLevel,
    ParagraphBackground,
    ListNumber,
    ListLevel,
    InTable,
    Nesting,
    ParagraphWord, ///< Kept with its number; the value is a CarriedNumber.
    ParagraphBorder, ///< Kept, with the words about the border that follow.
    // Rows and cells.
    RowDefaults,
    RowLeft,
    RowGap,
    RowAlignment,
    RowHeader,
    RowPadding, ///< The value is the side.
    RowBorder, ///< The value is the side.
    RowWord,
    CellEdge,
    CellWidth,
    CellWidthUnit,
    CellAcross, ///< The value is an RtfCell::Merge.
    CellDown, ///< The value is an RtfCell::Merge.
    CellPadding, ///< The value is the side.
    CellBorder, ///< The value is the side.
    CellBackground,
    CellVertical,
    CellWord,
    BorderStyle, ///< The value is an RtfBorder::Style.
    BorderWidth,
    BorderColour,
    BorderWord,
    // Tables and the head.
    CodePage, ///< The value is the code page.
    AnsiCodePage,
    DefaultFont,
    Platform,
    DocumentWord,
    Charset,
    FontCodePage,
    Red,
    Green,
    Blue,
    ColourSpace, ///< The value is the number of channels of a space that we read.
    Channel,
    ColourName,
    StyleBase,
    List,
    LevelStart,
    LevelKind,
    LevelFirst,
    ListId,
    ListOverride,
    OldKind, ///< The value is a number of \levelnfc.
    OldFirst,
    OldContinuation,
    OldLevel,
    Width,
    Height,
    NoOrient,
    PictureKind, ///< The value is an RtfPicture::Kind.
    PictureNumber, ///< The value is a place in RtfPictureReader's numbers.
};

/// Of a word that is carried: a plain number where 0 switches off, one where 0 means something, a
/// colour.
enum class CarriedNumber { Plain, PlainOrZero, Colour };

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

constexpr bool isCharacterAction(RtfAction action)
{
    return action >= RtfAction::Font && action <= RtfAction::Deleted;
}

constexpr bool isParagraphAction(RtfAction action)
{
    return action >= RtfAction::ParagraphDefaults && action <= RtfAction::ParagraphBorder;
}

constexpr bool isRowAction(RtfAction action)
{
    return action >= RtfAction::RowDefaults && action <= RtfAction::BorderWord;
}

} // namespace quorvane
