#pragma once

#include <QByteArray>
#include <QHashFunctions>
#include <QList>
#include <QString>

#include <array>
#include <vector>

namespace quorvane {

class RtfTables;

constexpr int largestLength = 31'680; ///< Twips: 22 inches, the largest page of word processors.
constexpr int narrowestColumn = 31; ///< Twips: edges that are nearer to each other are one.

enum class RtfScript : signed char { Sub = -1, Normal, Super };
enum class RtfCapitals : uchar { AsWritten, All, Small };

/// How characters look, in RTF's own terms; the numbers point into the tables.
struct RtfCharacter
{
    int font = -1; ///< -1: none was named.
    int milliPoints = 0; ///< Size in thousandths of a point; 0: none was named.
    int colour = 0; ///< 0 is the automatic colour.
    int background = 0; ///< 0 is none.
    int underlineColour = 0; ///< 0 is the colour of the text.
    int strikeColour = 0; ///< 0 is the colour of the text.
    int link = 0; ///< 0 is none.
    int language = 0; ///< 0: not told.
    int spacing = 0; ///< Twips between characters.
    int baselineShift = 0; ///< Half points up.
    RtfScript script = RtfScript::Normal;
    RtfCapitals capitals = RtfCapitals::AsWritten;
    uchar underline = 0; ///< 0 is none; others are one more than a place in underlineKinds.
    bool bold = false;
    bool italic = false;
    bool strike = false;
    bool doubleStrike = false;
    bool noKerning = false;
    QByteArray words {}; ///< Control words that are carried along.

    bool operator==(const RtfCharacter &) const = default;
};

inline size_t qHash(const RtfCharacter &c, size_t seed = 0)
{
    const int traits = c.underline << 8 | int(c.strike) << 3 | int(c.doubleStrike) << 2
        | int(c.bold) << 1 | int(c.italic);
    return qHashMulti(seed, c.font, c.milliPoints, c.colour, c.background, c.link, traits, c.words);
}

enum class RtfAlignment { Natural, Left, Centre, Right, Justify };
enum class RtfDirection : uchar { Natural, LeftToRight, RightToLeft };
enum class RtfTabKind : uchar { Left, Right, Centre, Decimal };

struct RtfTab
{
    int position = 0; ///< Twips.
    RtfTabKind kind = RtfTabKind::Left;
    uchar leader = 0; ///< 1 to 6: dots, middle dots, hyphens, a line, a thick one, a double one.

    bool operator==(const RtfTab &) const = default;
};

/// How a paragraph looks. Lengths are twips.
struct RtfParagraph
{
    RtfAlignment alignment = RtfAlignment::Natural;
    RtfDirection direction = RtfDirection::Natural;
    bool pageBreakBefore = false;
    bool lineIsMultiple = false; ///< The line's height is a multiple of 240.
    uchar heading = 0; ///< 1 is the highest level; 0 is none.
    uchar nesting = 0; ///< 1 in a table, 2 in a table in a table...
    uchar level = 0; ///< Of the list.
    int list = 0; ///< A key of the tables' lists; 0 is none.
    int left = 0;
    int right = 0;
    int first = 0; ///< Of the first line, beside left.
    int before = 0;
    int after = 0;
    int lineHeight = 0; ///< 0: by the font; negative: exactly; positive: at least.
    int lineMaximum = 0;
    int leading = 0;
    int background = 0;
    QList<RtfTab> tabs {};
    QByteArray words {}; ///< Control words that are carried along.

    bool operator==(const RtfParagraph &) const = default;
};

struct RtfBorder
{
    enum class Style : uchar { Unsaid, None, Solid, Double, Dotted, Dashed, DotDash, DotDotDash };

    Style style = Style::Unsaid;
    int width = 0; ///< Twips.
    int colour = 0;

    bool operator==(const RtfBorder &) const = default;
};

/// Top, left, bottom, right.
using RtfSides = std::array<int, 4>;

struct RtfCell
{
    enum class Merge : uchar { None, First, Follows };
    enum class WidthUnit : uchar { Twips, Automatic, Percent };

    int edge = 0; ///< The right one, in twips.
    int width = 0; ///< Of its unit; a percentage comes in fiftieths.
    WidthUnit widthUnit = WidthUnit::Twips;
    Merge across = Merge::None;
    Merge down = Merge::None;
    uchar vertical = 0; ///< 0 is top, 1 centre, 2 bottom.
    int background = 0;
    std::array<RtfBorder, 4> borders {}; ///< Top, left, bottom, right.
    RtfSides padding {-1, -1, -1, -1}; ///< Twips; -1: not told.
    QByteArray words {};

    bool operator==(const RtfCell &) const = default;
};

/// What a row of a table says of itself.
struct RtfRowLook
{
    int left = 0; ///< Twips.
    int gap = 0; ///< Twips.
    RtfAlignment alignment = RtfAlignment::Natural;
    bool isHeader = false;
    std::array<RtfBorder, 6> borders {}; ///< Top, left, bottom, right, between rows, columns.
    RtfSides padding {-1, -1, -1, -1};
    QByteArray words {};

    bool operator==(const RtfRowLook &) const = default;
};

struct RtfRow : RtfRowLook
{
    std::vector<RtfCell> cells {};
};

/// A file that stands in the text like a character.
struct RtfAttachment
{
    QString name; ///< As in the folder beside the text.
    int width = 0; ///< Twips; 0: not told.
    int height = 0; ///< Twips; 0: not told.
    bool noOrient = false;
};

/// A picture that stands in the text like a character, with its bytes.
struct RtfPicture
{
    enum class Kind { Unsaid, Png, Jpeg, Emf, Wmf, MacPict, Dib, Bitmap };

    Kind kind = Kind::Unsaid;
    QByteArray bytes {};
    int width = 0; ///< Twips; 0: not told.
    int height = 0; ///< Twips; 0: not told.
};

/// What a reader tells of a text, in reading order.
class RtfSink
{
public:
    virtual ~RtfSink() = default;

    /// Whether looks matter. Where they do not, paragraphs and characters may come as any.
    virtual bool wantsFormats() const = 0;

    /// \a tables outlive the reading and fill while it goes on.
    virtual void begin(const RtfTables &tables) = 0;
    /// The tables have changed: what was looked up in them may be stale.
    virtual void tablesChanged() = 0;
    /// Any UTF-16 units; CR, LF, CRLF and U+2029 in them end paragraphs like paragraphEnd().
    virtual void text(QStringView text, const RtfParagraph &paragraph,
                      const RtfCharacter &character) = 0;
    virtual void attachment(const RtfAttachment &attachment, const RtfCharacter &character) = 0;
    virtual void picture(const RtfPicture &picture, const RtfCharacter &character) = 0;
    virtual void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) = 0;
    /// Ends a cell of a table and with it the cell's last paragraph. \a nesting is 1 for a table
    /// that stands in the text, 2 for one in a cell of that...
    virtual void cellEnd(const RtfParagraph &paragraph, const RtfCharacter &character,
                         int nesting) = 0;
    /// Ends a row; the cells have ended before.
    virtual void rowEnd(const RtfRow &row, int nesting) = 0;
    /// Ends the last paragraph, which has no end of its own, and the text.
    virtual void end(const RtfParagraph &paragraph, const RtfCharacter &character) = 0;
};

} // namespace quorvane
