#include "richtext/rtftables.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr int noLabel = 255; // The number of \levelnfc for a level without one.

} // namespace

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

std::optional<QRgb> RtfTables::exactColour(int number) const
{
    if (number <= 0 || std::size_t(number) >= colours.size()) {
        return std::nullopt;
    }
    const auto index = std::size_t(number);
    if (index < expandedColours.size()) {
        const RtfExpandedColour &expanded = expandedColours[index];
        if (expanded.kind == RtfExpandedColour::Kind::Automatic) {
            return std::nullopt;
        }
        if (expanded.kind == RtfExpandedColour::Kind::Rgba) {
            return expanded.rgba;
        }
    }
    return colours[index];
}

std::optional<QRgb> RtfTables::colour(int number) const
{
    const std::optional<QRgb> colour = exactColour(number);
    return colour == qRgb(0, 0, 0) ? std::nullopt : colour;
}

const RtfListLevel *RtfTables::level(const RtfParagraph &paragraph) const
{
    if (paragraph.list == 0) {
        return nullptr;
    }
    const auto list = lists.constFind(paragraph.list);
    if (list == lists.constEnd() || list->levels.empty()) {
        return nullptr;
    }
    const std::size_t last = list->levels.size() - 1;
    const RtfListLevel &level = list->levels[std::min<std::size_t>(paragraph.level, last)];
    return level.kind == noLabel ? nullptr : &level;
}

} // namespace quorvane
