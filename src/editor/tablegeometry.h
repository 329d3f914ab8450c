#pragma once

#include <vector>

class QTextTable;

namespace quorvane {

/// Where the columns of a laid out table begin, in the document's coordinates, and where the last
/// one ends. The toolkit tells where text stands, and no more.
std::vector<double> columnEdges(const QTextTable &table);

/// Where the rows from \a first to \a last, both included, begin, and where the last one ends.
std::vector<double> rowEdges(const QTextTable &table, int first, int last);

/// How wide a table could be where it stands.
double roomOf(const QTextTable &table);

} // namespace quorvane
