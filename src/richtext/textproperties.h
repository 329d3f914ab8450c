#pragma once

#include <QColor>
#include <QTextFormat>

namespace quorvane {

// How a text stands in a QTextDocument. Reader, writer and editor hold to this.
//
// Lengths: a document's pixel is 1/96 inch, whatever the screen: twips = px * 15. Colours in
// carried words: where RTF has the number of a colour, the carried word has '#' and eight
// hexadecimal digits AARRGGBB ("\strokec#ff102030"); the number 0, automatic, stays a 0. A carried
// word or a property of ours that refines a native one counts only while the native one still says
// what it said; the comment at each tells how to see that.
//
// Characters, native:
//   \f \fs \b \i          font families, point size, weight, italic
//   \ul...                underline style (underlineKinds below) and underline colour (\ulc)
//   \strike               font strike-out
//   \super \sub           vertical alignment
//   \up \dn               baseline offset, per cent of the point size; exact in BaselineShift
//   \cf                   foreground; none for the automatic colour
//   \cb \chcbpat \highlight  background; none where there is none
//   \caps \scaps          capitalization: AllUppercase, SmallCaps
//   \expnd \expndtw       letter spacing, absolute, px; none for 0
//   \kerning0             font kerning off, in the platform's own dialect only
//   HYPERLINK             anchor and anchorHref; "#name" for a place in the text. A link is shown
//                         in linkColour and with one line under it, see LinkLook.
// Paragraphs, native:
//   \ql \qr \qc \qj       alignment; none for the natural one
//   \ltrpar \rtlpar       layout direction; none for the natural one
//   \li \ri \fi \sb \sa   left and right margin, text indent, top and bottom margin; none for 0
//   \sl \slmult           line height: proportional N*100/240; fixed; minimum
//   \slleading            line height, distance, where \sl says nothing
//   \tx \tqr \tqc \tqdec  tab positions (Delimiter is '.'); none for the platform's default stops,
//                         defaultTabWords. Qt counts them from where the first line begins, RTF
//                         from the margin: px = (\tx - \li - \fi) / 15, in a list (\tx - \li) / 15
//   \outlinelevel         heading level, 1 for \outlinelevel0, up to 6
//   \pagebb               page break policy: always before
//   \cbpat                background
//   \brdrb                a horizontal rule below (BlockTrailingHorizontalRulerWidth); how it looks
//                         is in ParagraphWords and counts while there is a rule
//   \page \column         the character U+000C; \line is U+2028
// Lists: a QTextList for each \ls and level. Style by \levelnfc, see listmarks.h; indent is the
// level, 1 for
//   \ilvl0; number prefix and suffix by the level's text ("." is Qt's own suffix and not set). The
//   block's left margin is what \li has more than 720 * indent; its tab positions are none for the
//   platform's stops of a list (listTabWords). The hanging first line is in ListFirstIndent and
//   never in the text indent.
// Tables: a QTextTable; border 0, cell spacing 0, cell padding 0 and border collapse on, what is
//   seen stands in the cells (QTextTableCellFormat): borders with width, style and brush, padding
//   of each side, background, vertical alignment. Column constraints: fixed px by the cells' edges,
//   variable for \clftsWidth1, percentage for \clftsWidth2 (fiftieths of a per cent). Spans are
//   merged cells. Header rows: headerRowCount (\trhdr). Left margin: \trleft + \trgaph. Alignment:
//   \trqc, \trqr. A table that a program or HTML has made with border and padding of its own is
//   written with these in each cell.
//   Qt wants a paragraph before each table and one behind. The one behind is the next paragraph of
//   the text, or the last one of the cell. The one before see BeforeTable.
// Pictures are attachments: the file in the AttachmentStore, with the bytes as they came, and size
//   in AttachmentWidth and AttachmentHeight. The reader makes attachments of \pict as well ("Image
//   1.png"; wmf, emf, pict, dib, bmp); a writer of RTF without files makes \pict of files that
//   begin as one of these.

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
    ParagraphWords, ///< QByteArray, RTF control words that are carried along as they came: such
                    ///< that no native property stands for (\pardeftab, \keep, borders...).
    // Characters again.
    CharacterWords, ///< QByteArray, the same: \outl \strokewidth \strokec, \shad..., \lang, \v...
    BaselineShift, ///< int, half points up; counts while there is a baseline offset.
    UnderlineWord, ///< QByteArray without backslash ("uldb"); counts while the underline style is
                   ///< the one that underlineKinds has for it.
    DoubleStrike, ///< true for \striked1; counts while there is a strike-out.
    StrikeColour, ///< QColor, \strikec; counts while there is a strike-out.
    LinkLook, ///< true on a link: a foreground of linkColour and a single underline are how links
    ///< are shown and not written. They are written where they differ or no link is left.
    // Paragraphs again.
    TabLeaders, ///< QByteArray, a digit for each tab position: 0 none, 1 \tldot, 2 \tlmdot,
    ///< 3 \tlhyph, 4 \tlul, 5 \tlth, 6 \tleq; counts while there are as many stops.
    MaximumLineHeight, ///< int, twips, \slmaximum.
    ListFirstIndent, ///< int, twips, \fi of a list's paragraph where it is not the platform's,
                     ///< -\li.
    BeforeTable, ///< true on an empty paragraph that is only there because Qt wants one before a
    ///< table. Not written while it is empty, and a table follows at once: it cannot be seen.
    ///< Between two tables it is: they would be one.
    // On a QTextListFormat.
    ListStart, ///< int, \levelstartat where it is not 1.
    ListMarker, ///< QString, a bullet that is none of Qt's ("\u2043", "-"); the kind is ListDisc.
    ///< An item with uncheckedMark or checkedMark is one of a checklist.
    ListLevelText, ///< QString, the text of a level with numbers of other levels in it ("1.1."):
                   ///< U+0000 to U+0008 stand for the levels' numbers.
    // On a QTextTableCellFormat.
    CellWords, ///< QByteArray, words of the cell that Qt has nothing for (\clheight...).
    RowWords, ///< QByteArray, on the first cell of a row: words of the row (\trrh, \trkeep...).
    // On the format of the document's root frame.
    DocumentWords, ///< QByteArray, words of the document: paper, margins, view, hyphenation...
    DocumentInfo, ///< QVariantMap of QString by word ("author"), the title apart: that is native
    ///< meta information.
    // Characters once more.
    FontKey, ///< QString, the family where a text has very many fonts: of a list of families Qt's
    ///< table of formats knows nothing but the type, and would compare with each.
    // On a QTextListFormat once more.
    ListKind, ///< int, the style of a list whose marks Qt cannot show: its own is undefined then.
};

constexpr char16_t uncheckedMark = u'\u2610';
constexpr char16_t checkedMark = u'\u2611';

/// Units that a text document uses for its own structure: U+FFFD with OriginalUnit stands for them.
constexpr bool isDocumentInternal(char16_t unit)
{
    return unit == 0xfdd0 || unit == 0xfdd1;
}

/// The tab stops of a paragraph that has none of its own: half an inch and a bit, twelve times.
constexpr char defaultTabWords[] = "\\tx560\\tx1120\\tx1680\\tx2240\\tx2800\\tx3360\\tx3920\\tx4480"
                                   "\\tx5040\\tx5600\\tx6160\\tx6720";

/// A paragraph of a list has \tx(li - 500) and \tx(li), then the default stops beyond \li.
constexpr int listMarkerDistance = 500;
constexpr int listLevelIndent = 720;

/// Readable on light and dark paper.
constexpr QRgb linkColour = qRgb(0x2a, 0x7f, 0xde);

struct UnderlineKind
{
    const char *word;
    QTextCharFormat::UnderlineStyle style;
};

/// The first one of a style is the one to write where no UnderlineWord says more.
constexpr UnderlineKind underlineKinds[] = {
    {"ul", QTextCharFormat::SingleUnderline},        {"uld", QTextCharFormat::DotLine},
    {"uldash", QTextCharFormat::DashUnderline},      {"uldashd", QTextCharFormat::DashDotLine},
    {"uldashdd", QTextCharFormat::DashDotDotLine},   {"ulwave", QTextCharFormat::WaveUnderline},
    {"uldb", QTextCharFormat::SingleUnderline},      {"ulw", QTextCharFormat::SingleUnderline},
    {"ulth", QTextCharFormat::SingleUnderline},      {"ulthd", QTextCharFormat::DotLine},
    {"ulthdash", QTextCharFormat::DashUnderline},    {"ulthdashd", QTextCharFormat::DashDotLine},
    {"ulthdashdd", QTextCharFormat::DashDotDotLine}, {"ulldash", QTextCharFormat::DashUnderline},
    {"ulthldash", QTextCharFormat::DashUnderline},   {"ulhwave", QTextCharFormat::WaveUnderline},
    {"ululdbwave", QTextCharFormat::WaveUnderline},
};

} // namespace quorvane
