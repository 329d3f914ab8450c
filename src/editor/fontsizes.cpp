#include "editor/fontsizes.h"

#include <QFontInfo>
#include <QTextCharFormat>
#include <QTextDocument>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {
constexpr double step = 1.1;
}

double biggerFontSize(double size)
{
    const auto *next = std::find_if(offeredFontSizes.begin(), offeredFontSizes.end(),
                                    [size](int offered) { return offered > size; });
    const bool isOffered = size >= offeredFontSizes.front() && next != offeredFontSizes.end();
    const double bigger = std::max(std::floor(size) + 1, std::round(size * step));
    return isOffered ? *next : std::min(largestFontSize, bigger);
}

double smallerFontSize(double size)
{
    const auto *next = std::find_if(offeredFontSizes.begin(), offeredFontSizes.end(),
                                    [size](int offered) { return offered >= size; });
    const double smaller = std::min(std::ceil(size) - 1, std::round(size / step));
    if (next == offeredFontSizes.begin()) {
        return std::max(smallestFontSize, smaller);
    }
    return next == offeredFontSizes.end() ? std::max<double>(offeredFontSizes.back(), smaller)
                                          : *std::prev(next);
}

double fontSizeOf(const QTextCharFormat &format, const QTextDocument &document)
{
    if (format.hasProperty(QTextFormat::FontPointSize)) {
        return format.fontPointSize();
    }
    const QFont font = format.font().resolve(document.defaultFont());
    return font.pointSizeF() > 0 ? font.pointSizeF() : QFontInfo(font).pointSizeF();
}

} // namespace quorvane
