#pragma once

class QTextBlockFormat;

namespace quorvane {

/// How far the lines of a paragraph are apart.
struct LineSpacing
{
    enum class Kind { Multiple, AtLeast, Exactly, Between };

    Kind kind = Kind::Multiple;
    double value = 1; ///< Lines for a multiple, else points.

    bool operator==(const LineSpacing &other) const = default;
};

LineSpacing lineSpacingOf(const QTextBlockFormat &format);
void setLineSpacing(QTextBlockFormat &format, const LineSpacing &spacing);

} // namespace quorvane
