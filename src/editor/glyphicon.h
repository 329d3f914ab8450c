#pragma once

#include <QColor>
#include <QIcon>

#include <optional>

namespace quorvane {

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
};

/// Of a tool's icon.
constexpr QSize glyphSize(18, 18);

/// An icon that is drawn when it is needed: sharp at every scale, in the palette's colours.
QIcon glyphIcon(Glyph glyph, const std::optional<QColor> &colour = std::nullopt);

} // namespace quorvane
