#pragma once

class QString;
class QTextCursor;

namespace quorvane {

/// Inserts characters in the place of the selection, in its format, also those that a text document
/// has no room for.
void insertCharacters(QTextCursor &cursor, const QString &text);

} // namespace quorvane
