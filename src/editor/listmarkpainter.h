#pragma once

#include <QRectF>

class QPainter;
class QPalette;
class QTextBlock;
class QTextDocument;

namespace quorvane {

/// Where the mark of a list's item stands in its document, with some room around it; empty where
/// it has none.
QRectF listMarkPlace(const QTextBlock &item);

/// Draws the marks of lists that the toolkit leaves out, from \a first on down to the end of
/// \a view, in the document's coordinates.
void drawListMarks(QPainter &painter, const QTextBlock &first, const QRectF &view,
                   const QPalette &palette);

} // namespace quorvane
