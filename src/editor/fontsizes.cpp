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
    if (size < offeredFontSizes.front()) {
        return std::min<double>(offeredFontSizes.front(), std::floor(size * step) + 1);
    }
    return next != offeredFontSizes.end() ? *next
                                          : std::min(largestFontSize, std::ceil(size * step));
}

double smallerFontSize(double size)
{
    if (size <= offeredFontSizes.front()) {
        return std::max(smallestFontSize, std::ceil(size / step) - 1);
    }
    if (size / step > offeredFontSizes.back()) {
        return std::floor(size / step);
    }
    return *std::prev(std::find_if(offeredFontSizes.begin(), offeredFontSizes.end(),
                                   [size](int offered) { return offered >= size; }));
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
