#pragma once

#include "richtext/rtfsink.h"

#include <QTextBlockFormat>

#include <memory>
#include <vector>

namespace quorvane {

/// A stretch of a paragraph in one format.
struct TextRun
{
    qsizetype length;
    std::size_t format;
};

/// A paragraph that waits for its table.
struct TextParagraph
{
    QString text {};
    std::vector<TextRun> runs {};
    std::size_t endFormat = 0;
    RtfParagraph look {};
};

struct TextTable;

/// A paragraph, or a table where there is one.
struct TextItem
{
    TextParagraph paragraph {};
    std::unique_ptr<TextTable> table {};
};

using TextCell = std::vector<TextItem>;

struct TextRow
{
    std::vector<TextCell> cells;
    std::size_t definition = 0;
};

/// A table as it is read: row by row, while nobody knows yet what columns there are.
struct TextTable
{
    std::vector<TextRow> rows;
    std::vector<RtfRow> definitions; ///< What rows say of themselves, the same one said once.
    TextRow row; ///< The one that is being read.
    TextCell cell; ///< The one that is being read.

    void endCell();
    void endRow(const RtfRow &definition);
    /// Ends what the text has left open.
    void close();
};

/// Where each cell of a table stands.
struct TextTableGrid
{
    struct Place
    {
        int column = 0;
        int columns = 1;
        int rows = 1; ///< 0: the cell belongs to the one above it or in front of it.
        TextCell *cell = nullptr;
        std::size_t index = 0; ///< In the definition of the row.
    };

    std::vector<int> widths; ///< Of the columns, in twips; none where nothing tells them.
    std::vector<std::vector<Place>> rows;
    int columnCount = 0;
};

/// Finds the columns by the edges of the cells; where these make no sense, by counting. The grid
/// has at most some times as many places as the table has cells. What stands in cells that belong
/// to those in front of them moves there; below others there is nothing to move.
TextTableGrid gridOf(TextTable &table, bool widthsComeFirst);

} // namespace quorvane
