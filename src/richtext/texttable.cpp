#include "richtext/texttable.h"

#include <algorithm>
#include <iterator>

namespace quorvane {

namespace {

constexpr int usualWidth = 1440; // Of a cell that has no edge.
constexpr std::size_t mostColumns = 128;
constexpr std::size_t slack = 4096; // Places in the grid beside four for each cell.

bool holdsSomething(const TextCell &cell)
{
    return cell.size() > 1
        || (!cell.empty() && (cell.front().table || !cell.front().paragraph.text.isEmpty()));
}

void moveInto(TextCell &to, TextCell &from)
{
    if (&to == &from || !holdsSomething(from)) {
        return;
    }
    to.insert(to.end(), std::move_iterator(from.begin()), std::move_iterator(from.end()));
    from.clear();
}

const RtfCell *definitionOf(const RtfRow &row, std::size_t index)
{
    return index < row.cells.size() ? &row.cells[index] : nullptr;
}

/// The edges of a row, the left one first.
std::vector<int> edgesOf(const RtfRow &row, std::size_t count, bool widthsComeFirst)
{
    std::vector<int> edges {row.left};
    for (std::size_t i = 0; i < count; ++i) {
        const RtfCell *const cell = definitionOf(row, i);
        const int left = edges.back();
        int edge = cell ? cell->edge : left + usualWidth;
        if (cell && widthsComeFirst && cell->width > 0
            && cell->widthUnit == RtfCell::WidthUnit::Twips) {
            edge = left + cell->width;
        }
        edges.push_back(std::max(edge, left + narrowestColumn));
    }
    return edges;
}

/// The edges of all columns; empty where there are too many of them.
std::vector<int> columnEdges(const TextTable &table, bool widthsComeFirst, std::size_t most)
{
    std::vector<int> all;
    for (const TextRow &row : table.rows) {
        if (table.definitions[row.definition].cells.empty()) {
            return {};
        }
        const std::vector<int> edges =
            edgesOf(table.definitions[row.definition], row.cells.size(), widthsComeFirst);
        all.insert(all.end(), edges.begin(), edges.end());
    }
    std::sort(all.begin(), all.end());
    std::vector<int> columns;
    for (const int edge : all) {
        if (columns.empty() || edge - columns.back() >= narrowestColumn) {
            columns.push_back(edge);
        }
    }
    return columns.size() - 1 > most ? std::vector<int>() : columns;
}

int columnOf(const std::vector<int> &columns, int edge)
{
    const auto behind = std::upper_bound(columns.begin(), columns.end(), edge);
    return std::max(int(behind - columns.begin()) - 1, 0);
}

using Places = std::vector<TextTableGrid::Place>;

/// Joins cells that say they belong to the one in front of them.
void joinAcross(Places &places, const RtfRow &definition)
{
    for (std::size_t i = 1; i < places.size(); ++i) {
        const RtfCell *const cell = definitionOf(definition, places[i].index);
        if (!cell || cell->across != RtfCell::Merge::Follows) {
            continue;
        }
        std::size_t first = i - 1;
        while (first > 0 && places[first].rows == 0) {
            --first;
        }
        places[first].columns = places[i].column + places[i].columns - places[first].column;
        places[i].rows = 0;
        moveInto(*places[first].cell, *places[i].cell);
    }
    std::erase_if(places, [](const TextTableGrid::Place &place) { return place.rows == 0; });
}

/// Joins cells that say they belong to the one above them. One with text in it stays where it is:
/// moved up, the text would come before that of cells it stands behind.
void joinDown(TextTableGrid &grid, const TextTable &table)
{
    std::vector<std::pair<std::size_t, std::size_t>> above(std::size_t(grid.columnCount));
    for (std::size_t r = 0; r < grid.rows.size(); ++r) {
        const RtfRow &definition = table.definitions[table.rows[r].definition];
        for (std::size_t i = 0; i < grid.rows[r].size(); ++i) {
            TextTableGrid::Place &place = grid.rows[r][i];
            auto &owner = above[std::size_t(place.column)];
            const RtfCell *const cell = definitionOf(definition, place.index);
            const bool follows = r > 0 && cell && cell->down == RtfCell::Merge::Follows
                && !holdsSomething(*place.cell) && owner.second < grid.rows[owner.first].size();
            TextTableGrid::Place *const first =
                follows ? &grid.rows[owner.first][owner.second] : nullptr;
            const bool fits = first && first->column == place.column
                && first->columns == place.columns && owner.first + std::size_t(first->rows) == r;
            if (!fits) {
                owner = {r, i};
                continue;
            }
            ++first->rows;
            place.rows = 0;
        }
    }
}

Places placesByEdges(TextRow &row, const RtfRow &definition, const std::vector<int> &columns,
                     bool widthsComeFirst)
{
    const std::vector<int> edges = edgesOf(definition, row.cells.size(), widthsComeFirst);
    Places places;
    int next = 0;
    const int last = int(columns.size()) - 1;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        const int start = std::max(columnOf(columns, edges[i]), next);
        const int end = std::max(columnOf(columns, edges[i + 1]), start + 1);
        if (start >= last) {
            moveInto(*places.back().cell, row.cells[i]);
            continue;
        }
        places.push_back({start, std::min(end, last) - start, 1, &row.cells[i], i});
        next = end;
    }
    return places;
}

Places placesByCount(TextRow &row, int columns)
{
    Places places;
    for (std::size_t i = 0; i < row.cells.size(); ++i) {
        if (int(i) < columns) {
            places.push_back({int(i), 1, 1, &row.cells[i], i});
        } else {
            moveInto(*places.back().cell, row.cells[i]);
        }
    }
    return places;
}

} // namespace

void TextTable::endCell()
{
    row.cells.push_back(std::move(cell));
    cell = TextCell();
}

void TextTable::endRow(const RtfRow &definition)
{
    if (!cell.empty()) {
        endCell();
    }
    if (row.cells.empty()) {
        return;
    }
    // A row keeps no more than it has cells: few bytes can repeat a long definition.
    const std::size_t count = std::min(definition.cells.size(), row.cells.size());
    const auto end = definition.cells.begin() + std::ptrdiff_t(count);
    const auto isSame = [&](const RtfRow &kept) {
        return static_cast<const RtfRowLook &>(kept) == definition
            && std::equal(kept.cells.begin(), kept.cells.end(), definition.cells.begin(), end);
    };
    if (definitions.empty() || !isSame(definitions.back())) {
        definitions.push_back({definition, {definition.cells.begin(), end}});
    }
    row.definition = definitions.size() - 1;
    rows.push_back(std::move(row));
    row = TextRow();
}

void TextTable::close()
{
    endRow(definitions.empty() ? RtfRow() : RtfRow(definitions.back()));
}

TextTableGrid gridOf(TextTable &table, bool widthsComeFirst)
{
    TextTableGrid grid;
    std::size_t cells = 0;
    std::size_t longest = 0;
    for (const TextRow &row : table.rows) {
        cells += row.cells.size();
        longest = std::max(longest, row.cells.size());
    }
    const std::size_t most =
        std::clamp<std::size_t>((4 * cells + slack) / table.rows.size(), 1, mostColumns);
    const std::vector<int> columns = columnEdges(table, widthsComeFirst, most);
    grid.columnCount = columns.empty() ? int(std::min(longest, most)) : int(columns.size()) - 1;
    for (std::size_t i = 1; i < columns.size(); ++i) {
        grid.widths.push_back(std::min(columns[i] - columns[i - 1], largestLength));
    }
    for (TextRow &row : table.rows) {
        const RtfRow &definition = table.definitions[row.definition];
        grid.rows.push_back(columns.empty()
                                ? placesByCount(row, grid.columnCount)
                                : placesByEdges(row, definition, columns, widthsComeFirst));
        joinAcross(grid.rows.back(), definition);
    }
    joinDown(grid, table);
    return grid;
}

} // namespace quorvane
