#pragma once

#include <QString>

namespace quorvane {

/// The family of a font as RTF names it. PostScript names lose their style ("Helvetica-Bold" is
/// Helvetica) and the best known get the name that font systems list ("ArialMT" is Arial).
QString familyOfFontName(const QString &name);

/// True where the name's style says no more than bold, italic or neither: then a family and these
/// two traits stand for the name.
bool fontNameIsPlain(const QString &name);

/// The name to write for a family: the PostScript name of its regular face where it is known.
QString fontNameOfFamily(const QString &family);

} // namespace quorvane
