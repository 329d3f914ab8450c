#pragma once

#include <QIcon>

namespace quorvane {

enum class Glyph {
    Bold,
    Italic,
    Underline,
    Padlock,
    OpenPadlock,
    Previous,
    Next,
    Cross,
    MatchCase,
    WholeWords,
    RegularExpression,
};

/// An icon that is drawn when it is needed: sharp at every scale, in the palette's colours.
QIcon glyphIcon(Glyph glyph);

} // namespace quorvane
