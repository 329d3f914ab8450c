#pragma once

#include <QByteArray>

class QTextBlockFormat;

namespace quorvane {

class RtfWriterTables;

/// Pixels of a document, 1/96 inch each.
qint64 twipsOf(double pixels);

/// The words behind \pard for a paragraph, in the platform's order. \a listIndent: of the list that
/// it stands in, 0 outside lists.
QByteArray rtfParagraphWords(const QTextBlockFormat &format, int listIndent,
                             RtfWriterTables &tables);

} // namespace quorvane
