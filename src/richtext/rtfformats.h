#pragma once

#include "richtext/rtfsink.h"

#include <QTextBlockFormat>
#include <QTextCharFormat>
#include <QTextListFormat>
#include <QTextTableFormat>

namespace quorvane {

class RtfTables;
struct RtfListLevel;

// What RTF says of looks as formats of a text document; textproperties.h tells how each stands.

QTextCharFormat charFormatOf(const RtfCharacter &character, const RtfTables &tables);

/// The list that the paragraph is in is not part of it.
QTextBlockFormat blockFormatOf(const RtfParagraph &paragraph, const RtfTables &tables);

/// \a level counts from 0.
QTextListFormat listFormatOf(const RtfListLevel &listLevel, int level);

/// The format of a table by its first row, without its columns.
QTextTableFormat tableFormatOf(const RtfRow &row);

/// The format of the row's cell at \a index, with what the row says for all.
QTextTableCellFormat cellFormatOf(const RtfRow &row, std::size_t index, bool isFirstRow,
                                  const RtfTables &tables);

} // namespace quorvane
