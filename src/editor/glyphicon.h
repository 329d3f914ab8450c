#pragma once

#include <QColor>
#include <QIcon>

#include <functional>
#include <optional>

namespace quorvane {

class GlyphCanvas;

enum class Glyph {
    Bold,
    Italic,
    Underline,
    Strikethrough,
    TextColour, // with a bar in the colour
    Highlight, // the same
    AlignLeft,
    AlignCentre,
    AlignRight,
    Justify,
    LineSpacing,
    BulletedList,
    NumberedList,
    Checklist,
    Link,
    Picture,
    Table,
    Find,
    Choose, // opens what there is to choose from
    More,
    Padlock,
    OpenPadlock,
    Previous, // one found
    Next,
    Cross,
    MatchCase,
    WholeWords,
    RegularExpression,
};

/// Of a tool's icon.
constexpr QSize glyphSize(18, 18);

/// Draws in the palette's colour for such an icon.
using GlyphDrawing = std::function<void(GlyphCanvas &canvas, const QColor &ink, bool isEnabled)>;

/// An icon that is drawn when it is needed: sharp at every scale, in the palette's colours.
QIcon drawnIcon(GlyphDrawing draw);
QIcon glyphIcon(Glyph glyph, const std::optional<QColor> &colour = std::nullopt);

} // namespace quorvane
