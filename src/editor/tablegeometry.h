#pragma once

#include <QPointF>

#include <vector>

class QTextEdit;
class QTextTable;

namespace quorvane {

/// Where the columns of a laid out table begin, in the document's coordinates, and where the last
/// one ends. The toolkit tells where text stands, and no more.
std::vector<double> columnEdges(const QTextTable &table);

/// Where the rows from \a first to \a last, both included, begin, and where the last one ends.
std::vector<double> rowEdges(const QTextTable &table, int first, int last);

/// The document's origin in the editor's viewport.
QPointF originIn(const QTextEdit &editor);

/// How wide a table could be where it stands.
double roomOf(const QTextTable &table);

} // namespace quorvane
