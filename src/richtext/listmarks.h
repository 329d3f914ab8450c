#pragma once

#include <QString>
#include <QTextListFormat>

class QTextBlock;

namespace quorvane {

/// What stands before the items of a list. Marks that the toolkit cannot show as they are (bullets,
/// ListStart, ListLevelText) have ListStyleUndefined, so that it shows none, and their style in
/// ListKind.
QTextListFormat::Style listKind(const QTextListFormat &format);

bool isNumbered(QTextListFormat::Style kind);

/// Gives \a kind to a list whose marks are told, in the way that suits them.
void setListKind(QTextListFormat &format, QTextListFormat::Style kind);

/// The bullet of a list that has no numbers; empty where nothing is shown.
QString bulletOf(const QTextListFormat &format);

QString numberSuffixOf(const QTextListFormat &format); ///< As the toolkit shows it.

int listStartOf(const QTextListFormat &format);

/// A number in the list's way to count.
QString numberText(QTextListFormat::Style kind, int number);

/// The whole mark of an item; empty for a paragraph of no list.
QString listMarkOf(const QTextBlock &item);

} // namespace quorvane
