#pragma once

#include "editor/textspan.h"

#include <QString>

#include <vector>

namespace quorvane {

/// The words of a paragraph that a dictionary can judge and that touch \a within: no numbers, no
/// abbreviations in capitals, no addresses and names of files, no script without spaces.
std::vector<TextSpan> wordsToCheck(const QString &paragraph, const TextSpan &within);

/// A word as dictionaries write it.
QString dictionaryForm(const QString &word);

} // namespace quorvane
