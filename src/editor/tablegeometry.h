#pragma once

#include <vector>

class QTextBlock;
class QTextTable;

namespace quorvane {

/// Where the columns of a laid out table begin, in the document's coordinates, and where the last
/// one ends. The toolkit tells where text stands, and no more.
std::vector<double> columnEdges(const QTextTable &table);

/// Where the rows from \a first to \a last, both included, begin, and where the last one ends.
std::vector<double> rowEdges(const QTextTable &table, int first, int last);

/// Where to go on from a block that stands below what is seen: with the next one beside it in the
/// row of a table. An invalid one where all that follows stands lower.
QTextBlock blockBeside(const QTextBlock &block);

/// How wide a table could be where it stands.
double roomOf(const QTextTable &table);

} // namespace quorvane
