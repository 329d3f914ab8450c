#pragma once

#include <QString>

#include <optional>

namespace quorvane {

/// The address that the instruction of a field leads to, with '#' before a place in the text;
/// empty where it is no hyperlink.
QString addressOfHyperlink(const QString &instruction);

/// What the instruction of a field asks for that shows one character of a font.
struct RtfSymbolField
{
    int code = 0;
    bool isUnicode = false; ///< Otherwise the code is one of the font or the code page.
    QString font; ///< Empty where none is told.
    int points = 0; ///< 0 where no size is told.
};

/// Nothing where the instruction is another one, or names no character that can be shown.
std::optional<RtfSymbolField> symbolFieldOf(const QString &instruction);

/// Whether codes below 256 are places in a font of that name, and no letters.
bool isSymbolFont(const QString &name);

} // namespace quorvane
