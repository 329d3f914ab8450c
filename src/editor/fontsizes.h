#pragma once

#include <array>

class QTextCharFormat;
class QTextDocument;

namespace quorvane {

constexpr double smallestFontSize = 1;
constexpr double largestFontSize = 999;

/// In points. Beyond them, sizes go by a tenth.
inline constexpr std::array offeredFontSizes {8,  9,  10, 11, 12, 13, 14, 16, 18,
                                              20, 24, 28, 32, 36, 48, 64, 72, 96};

double biggerFontSize(double size);
double smallerFontSize(double size);

/// What \a format is shown at in \a document, in points.
double fontSizeOf(const QTextCharFormat &format, const QTextDocument &document);

} // namespace quorvane
