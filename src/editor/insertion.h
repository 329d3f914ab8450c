#pragma once

class QString;
class QTextCursor;

namespace quorvane {

struct TextSpan;

/// Inserts characters in the place of the selection, in the look of what is typed there, also those
/// that a text document has no room for.
void insertCharacters(QTextCursor &cursor, const QString &text);

/// Puts characters in the place of others, in the look of the first one. Ends behind them.
void replaceCharacters(QTextCursor &cursor, const TextSpan &replaced, const QString &text);

} // namespace quorvane
