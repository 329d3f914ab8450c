#pragma once

#include <memory>

class QTextCharFormat;
class QTextDocument;

namespace quorvane {

/// The same characters in a new document, all of them in \a format, each paragraph in a plain one.
/// Cells of tables and items of lists become paragraphs, objects their character U+FFFC.
std::unique_ptr<QTextDocument> plainCopy(const QTextDocument &document,
                                         const QTextCharFormat &format);

} // namespace quorvane
