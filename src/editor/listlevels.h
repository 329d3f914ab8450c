#pragma once

#include <QTextListFormat>

class QTextBlock;

namespace quorvane {

enum class ListLook { Bullets, Numbers, Checks };

constexpr int deepestListLevel = 9;

/// A list as it begins at that level, 1 for the outermost.
QTextListFormat newListFormat(ListLook look, int level);
ListLook listLookOf(const QTextListFormat &format);

/// A bullet that is none of the toolkit's.
QTextListFormat markedListFormat(char16_t marker, int level);

bool isChecklistItem(const QTextBlock &block);
bool isDone(const QTextBlock &block);
void setDone(const QTextBlock &block, bool done);

/// Makes the paragraph an item of a list that looks like that: of a neighbouring one where there is
/// one, which then may be one with that on the other side.
void addToList(const QTextBlock &block, const QTextListFormat &format);

/// A list of numbers that begins with that one, or goes on with it above.
void addToNumberedList(const QTextBlock &block, const QTextListFormat &format, int number);

enum class LeftPlace { Margin, Kept };
/// Makes an item a paragraph without a mark, at the margin or where its text stands.
void leaveList(const QTextBlock &block, LeftPlace place);

/// The item's level becomes deeper or, from the outermost one, none at all.
void changeListLevel(const QTextBlock &block, int by);

/// The numbers begin anew with this item.
void restartNumbers(const QTextBlock &block);
/// The numbers go on from the list before. \return false where there is none.
bool continueNumbers(const QTextBlock &block);

} // namespace quorvane
