#pragma once

#include "richtext/rtfcodepage.h"

#include <QHash>
#include <QRgb>
#include <QString>

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

/// The tables at the head of an RTF text.
class RtfTables final
{
public:
    int ansiCodePage = windowsLatin;
    std::optional<int> defaultFont; ///< \deff.
    QHash<int, RtfFont> fonts;
    std::vector<std::optional<QRgb>> colours;
    std::vector<RtfExpandedColour> expandedColours;

    /// The font of that number, or the default one for -1; nothing where there is none.
    std::optional<RtfFont> font(int number) const;
    int codePageOfFont(int number) const;
    /// Nothing for the automatic colour. Plain black counts as automatic: writers that know no
    /// automatic colour write it for ordinary text, which is to follow the palette.
    std::optional<QRgb> colour(int number) const;
};

} // namespace quorvane
