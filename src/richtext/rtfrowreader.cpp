#include "richtext/rtfrowreader.h"

#include "richtext/rtfcarriedwords.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::size_t mostCells = 512; // Word processors stop at 63.
constexpr int largestEdge = largestLength * int(mostCells + 1);

int length(const RtfToken &token)
{
    return std::clamp(token.parameter, -largestLength, largestLength);
}

} // namespace

void RtfRowReader::word(RtfKeyword keyword, const RtfToken &token, int nesting)
{
    RtfRow &row = m_rows[std::size_t(std::clamp(nesting, 1, deepestNesting))];
    const auto value = std::size_t(keyword.value);
    switch (keyword.action) {
    case RtfAction::RowDefaults:
        row = RtfRow();
        m_cell = RtfCell();
        m_borderOwner = BorderOwner::None;
        break;
    case RtfAction::RowLeft:
        row.left = length(token);
        break;
    case RtfAction::RowGap:
        row.gap = std::clamp(token.parameter, 0, largestLength);
        break;
    case RtfAction::RowAlignment:
        row.alignment = RtfAlignment(keyword.value);
        break;
    case RtfAction::RowHeader:
        row.isHeader = !token.hasParameter || token.parameter != 0;
        break;
    case RtfAction::RowPadding:
        row.padding[value] = std::clamp(token.parameter, 0, largestLength);
        break;
    case RtfAction::RowBorder:
        m_borderOwner = BorderOwner::Row;
        m_side = value;
        break;
    case RtfAction::RowWord:
        appendCarriedWord(row.words, token);
        break;
    case RtfAction::BorderStyle:
    case RtfAction::BorderWidth:
    case RtfAction::BorderColour:
    case RtfAction::BorderWord:
        borderWord(keyword, token, row);
        break;
    default:
        cellWord(keyword, token, row);
        break;
    }
}

void RtfRowReader::cellWord(RtfKeyword keyword, const RtfToken &token, RtfRow &row)
{
    const auto value = std::size_t(keyword.value);
    switch (keyword.action) {
    case RtfAction::CellEdge:
        m_cell.edge = std::clamp(token.parameter, -largestLength, largestEdge);
        if (row.cells.size() < mostCells) {
            row.cells.push_back(m_cell);
        }
        m_cell = RtfCell();
        m_borderOwner = BorderOwner::None;
        break;
    case RtfAction::CellWidth:
        m_cell.width = std::clamp(token.parameter, 0, largestLength);
        break;
    case RtfAction::CellWidthUnit:
        m_cell.widthUnit = token.parameter == 1 ? RtfCell::WidthUnit::Automatic
            : token.parameter == 2              ? RtfCell::WidthUnit::Percent
                                                : RtfCell::WidthUnit::Twips;
        break;
    case RtfAction::CellAcross:
        m_cell.across = RtfCell::Merge(keyword.value);
        break;
    case RtfAction::CellDown:
        m_cell.down = RtfCell::Merge(keyword.value);
        break;
    case RtfAction::CellPadding:
        m_cell.padding[value] = std::clamp(token.parameter, 0, largestLength);
        break;
    case RtfAction::CellBorder:
        m_borderOwner = BorderOwner::Cell;
        m_side = value;
        break;
    case RtfAction::CellBackground:
        m_cell.background = std::max(token.parameter, 0);
        break;
    case RtfAction::CellVertical:
        m_cell.vertical = uchar(keyword.value);
        break;
    case RtfAction::CellWord:
        appendCarriedWord(m_cell.words, token);
        break;
    default:
        break;
    }
}

void RtfRowReader::borderWord(RtfKeyword keyword, const RtfToken &token, RtfRow &row)
{
    if (m_borderOwner == BorderOwner::None) {
        return;
    }
    RtfBorder &border =
        m_borderOwner == BorderOwner::Row ? row.borders[m_side] : m_cell.borders[m_side % 4];
    switch (keyword.action) {
    case RtfAction::BorderStyle:
        border.style = RtfBorder::Style(keyword.value);
        break;
    case RtfAction::BorderWidth:
        border.width = std::clamp(token.parameter, 0, 255);
        break;
    case RtfAction::BorderColour:
        border.colour = std::max(token.parameter, 0);
        break;
    default:
        break;
    }
}

} // namespace quorvane
