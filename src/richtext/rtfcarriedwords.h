#pragma once

#include "richtext/rtftokenizer.h"

#include <QByteArray>

namespace quorvane {

class RtfTables;

/// Adds a control word with its number to such as are carried along; too many are dropped.
void appendCarriedWord(QByteArray &words, const RtfToken &token);

/// The same with the number of a colour, which becomes the colour itself.
void appendCarriedColour(QByteArray &words, const RtfToken &token, const RtfTables &tables);

/// Takes a word with its number out of those that are carried.
void removeCarriedWord(QByteArray &words, QByteArrayView word);

/// Whether carried words of a paragraph tell of a border below it that can be seen.
bool hasBorderBelow(const QByteArray &words);
/// Takes the border below a paragraph out of its carried words.
void removeBorderBelow(QByteArray &words);

} // namespace quorvane
