#pragma once

#include "richtext/rtfcodepage.h"
#include "richtext/rtfsink.h"

#include <QHash>
#include <QMap>
#include <QRgb>
#include <QString>
#include <QStringList>

#include <optional>
#include <vector>

namespace quorvane {

struct RtfFont
{
    QString name; ///< As the font table writes it.
    std::optional<int> charset; ///< \fcharset.
    std::optional<int> codePage; ///< \cpg, which comes before the character set.
};

/// An entry of the table of colours that tells the colour space.
struct RtfExpandedColour
{
    enum class Kind { PlainSays, Automatic, Rgba };

    Kind kind = Kind::PlainSays;
    QRgb rgba = 0;
};

constexpr qsizetype longestLevelText = 60; ///< As long as labels are written.

struct RtfListLevel
{
    int kind = 0; ///< The number of \levelnfc.
    int start = 1;
    QString text; ///< U+0000 to U+0008 stand for the numbers of the levels.

    bool operator==(const RtfListLevel &) const = default;
};

/// A list, by its levels. An old one has its label in each paragraph.
struct RtfList
{
    std::vector<RtfListLevel> levels;
    bool isOld = false;

    bool operator==(const RtfList &) const = default;
};

struct RtfStyle
{
    RtfParagraph paragraph;
    RtfCharacter character;
};

/// The tables at the head of an RTF text.
class RtfTables final
{
public:
    int ansiCodePage = windowsLatin;
    std::optional<int> defaultFont; ///< \deff.
    bool isPlatforms = false; ///< The text is in the platform's own dialect.
    QHash<int, RtfFont> fonts;
    std::vector<std::optional<QRgb>> colours;
    std::vector<RtfExpandedColour> expandedColours;
    QHash<int, RtfList> lists; ///< By the number of \ls; old ones have negative numbers.
    QHash<int, RtfStyle> paragraphStyles;
    QHash<int, RtfStyle> characterStyles;
    QStringList links; ///< That of number 1 is the first one.
    QByteArray documentWords; ///< Control words of the document that are carried along.
    QMap<QByteArray, QString> info; ///< By control word.

    /// The font of that number, or the default one for -1; nothing where there is none.
    std::optional<RtfFont> font(int number) const;
    int codePageOfFont(int number) const;
    /// Nothing for the automatic colour. Plain black counts as automatic: writers that know no
    /// automatic colour write it for ordinary text, which is to follow the palette.
    std::optional<QRgb> colour(int number) const;
    /// The same for what is no text: black is black.
    std::optional<QRgb> exactColour(int number) const;
    /// The level of a list, or nullptr where the text has no such list or it shows no label.
    const RtfListLevel *level(const RtfParagraph &paragraph) const;
};

} // namespace quorvane
