#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtftables.h"
#include "richtext/rtftokenizer.h"

#include <array>

namespace quorvane {

/// Fills the tables of fonts and colours from what stands in their groups.
class RtfTableReader final
{
public:
    explicit RtfTableReader(RtfTables &tables)
        : m_tables(tables)
    { }

    void beginColours();
    void beginExpandedColours();

    void fontWord(RtfKeyword keyword, const RtfToken &token);
    void colourWord(RtfKeyword keyword, const RtfToken &token);

    /// Text of each table; a semicolon ends an entry.
    void fontText(QStringView text);
    void colourText(QStringView text);
    void expandedColourText(QStringView text);

    /// A character of a font's name, even where it is a semicolon.
    void fontNameUnit(char16_t unit) { m_font.name.append(QChar(unit)); }

    /// The end of an entry that may have no semicolon.
    void endFont();
    /// The code page of the name that is being read.
    int fontCodePage() const;

private:
    void endExpandedColour();

    RtfTables &m_tables;
    std::optional<int> m_fontNumber;
    RtfFont m_font;
    QRgb m_colour = 0;
    bool m_hasColour = false;
    int m_channelsWanted = 0;
    std::size_t m_channelCount = 0;
    std::array<int, 4> m_channels {};
    bool m_isName = false;
    QString m_name;
};

} // namespace quorvane
