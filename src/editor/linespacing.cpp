#include "editor/linespacing.h"

#include "richtext/textproperties.h"

#include <QTextBlockFormat>

namespace quorvane {

namespace {
constexpr double pixelsPerPoint = 96.0 / 72;
}

LineSpacing lineSpacingOf(const QTextBlockFormat &format)
{
    using Kind = LineSpacing::Kind;
    const double points = format.lineHeight() / pixelsPerPoint;
    switch (format.lineHeightType()) {
    case QTextBlockFormat::ProportionalHeight:
        return {Kind::Multiple, format.lineHeight() / 100};
    case QTextBlockFormat::MinimumHeight:
        return {Kind::AtLeast, points};
    case QTextBlockFormat::FixedHeight:
        return {Kind::Exactly, points};
    case QTextBlockFormat::LineDistanceHeight:
        return {Kind::Between, points};
    default:
        return {};
    }
}

void setLineSpacing(QTextBlockFormat &format, const LineSpacing &spacing)
{
    format.clearProperty(MaximumLineHeight);
    const double pixels = spacing.value * pixelsPerPoint;
    switch (spacing.kind) {
    case LineSpacing::Kind::Multiple:
        if (spacing.value == 1) {
            format.clearProperty(QTextFormat::LineHeight);
            format.clearProperty(QTextFormat::LineHeightType);
        } else {
            format.setLineHeight(100 * spacing.value, QTextBlockFormat::ProportionalHeight);
        }
        break;
    case LineSpacing::Kind::AtLeast:
        format.setLineHeight(pixels, QTextBlockFormat::MinimumHeight);
        break;
    case LineSpacing::Kind::Exactly:
        format.setLineHeight(pixels, QTextBlockFormat::FixedHeight);
        break;
    case LineSpacing::Kind::Between:
        format.setLineHeight(pixels, QTextBlockFormat::LineDistanceHeight);
        break;
    }
}

} // namespace quorvane
