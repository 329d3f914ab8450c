#include "richtext/rtftables.h"

namespace quorvane {

std::optional<RtfFont> RtfTables::font(int number) const
{
    const int wanted = number < 0 ? defaultFont.value_or(-1) : number;
    const auto found = fonts.constFind(wanted);
    return found != fonts.constEnd() ? std::optional(*found) : std::nullopt;
}

int RtfTables::codePageOfFont(int number) const
{
    const auto found = fonts.constFind(number < 0 ? defaultFont.value_or(-1) : number);
    if (found == fonts.constEnd()) {
        return ansiCodePage;
    }
    return found->codePage.value_or(codePageOfCharset(found->charset.value_or(0), ansiCodePage));
}

std::optional<QRgb> RtfTables::colour(int number) const
{
    if (number <= 0 || std::size_t(number) >= colours.size()) {
        return std::nullopt;
    }
    const auto index = std::size_t(number);
    std::optional<QRgb> colour = colours[index];
    if (index < expandedColours.size()) {
        const RtfExpandedColour &expanded = expandedColours[index];
        if (expanded.kind == RtfExpandedColour::Kind::Automatic) {
            return std::nullopt;
        }
        if (expanded.kind == RtfExpandedColour::Kind::Rgba) {
            colour = expanded.rgba;
        }
    }
    return colour == qRgb(0, 0, 0) ? std::nullopt : colour;
}

} // namespace quorvane
