#pragma once

#include <QList>
#include <QTextLength>

class QTextTable;

namespace quorvane {

/// So that all columns together are as wide as the text.
QList<QTextLength> equalWidths(int columns);

/// What each column is to be wide, one for each.
QList<QTextLength> widthsOf(const QTextTable &table);
void setWidths(QTextTable &table, const QList<QTextLength> &widths);

/// The others make room for new columns as wide as \a like.
QList<QTextLength> withInserted(QList<QTextLength> widths, int at, int count, int like);
/// In a table as wide as the text, the others take the room.
QList<QTextLength> withoutRemoved(QList<QTextLength> widths, int first, int count);

/// A share of the text's width that a file can tell: in fiftieths of a per cent.
QTextLength shareOf(double percent);

} // namespace quorvane
