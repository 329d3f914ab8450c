#pragma once

class QString;
class QTextCursor;
class QTextDocumentFragment;

namespace quorvane {

/// Inserts \a fragment in the place of the selection. Where it begins with an item of a list
/// (\a beginsInList) and the paragraph is empty, that item takes its place: the toolkit would leave
/// the empty paragraph before it.
void insertFragment(QTextCursor &cursor, const QTextDocumentFragment &fragment, bool beginsInList);

/// Inserts characters in the place of the selection, in its format, also those that a text document
/// has no room for.
void insertCharacters(QTextCursor &cursor, const QString &text);

} // namespace quorvane
