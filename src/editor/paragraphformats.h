#pragma once

#include <QList>
#include <QTextBlock>
#include <QTextBlockFormat>

#include <functional>

class QTextCursor;

namespace quorvane {

/// One step of an indent: a level of a list in a file.
constexpr double indentStep = 48;

/// The paragraphs that a selection touches, or the one at the caret. Of a table, those of the
/// selected cells.
QList<QTextBlock> selectedBlocks(const QTextCursor &cursor);

void changeBlock(const QTextBlock &block, const std::function<void(QTextBlockFormat &)> &change);

/// Changes each of the selected paragraphs.
void changeBlocks(const QTextCursor &cursor, const std::function<void(QTextBlockFormat &)> &change);

/// Moves where a paragraph's text begins; its tab stops stay where they are.
void setIndents(QTextBlockFormat &format, double left, double first);

void setPageBreakBefore(QTextBlockFormat &format, bool breaks);
bool hasPageBreakBefore(const QTextBlockFormat &format);

bool hasRule(const QTextBlockFormat &format);

/// Both are in the same cell, or both in none.
bool areInOnePlace(const QTextBlock &one, const QTextBlock &other);

/// Ends the paragraph at the cursor. What only the first part can have stays with it: a page break
/// before, a rule, and at its end what makes it a heading.
void splitParagraph(QTextCursor &cursor);

} // namespace quorvane
