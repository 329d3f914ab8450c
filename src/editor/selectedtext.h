#pragma once

#include <QTextBlock>
#include <QTextCharFormat>
#include <QTextCursor>

#include <functional>

namespace quorvane {

struct SelectedRange
{
    int from;
    int to;
};

/// What is selected, as stretches of the text: one, or one for each cell of a table.
QList<SelectedRange> selectedRanges(const QTextCursor &cursor);

/// The looks that the characters of a selection have, each of them once; those of its paragraphs'
/// ends where there is nothing but these.
QList<QTextCharFormat> selectedLooks(const QTextCursor &cursor);

/// Gives each character of the selection another look, but for attachments and other objects.
void changeLooks(QTextCursor &cursor, const std::function<void(QTextCharFormat &look)> &change);

/// The blocks that are selected from their first character to their last one; that of the caret
/// where nothing is selected.
QList<QTextBlock> wholeSelectedBlocks(const QTextCursor &cursor);

/// What text typed at the caret looks like: it becomes no part of a link that ends or begins there,
/// and takes nothing of what makes an attachment.
QTextCharFormat lookOfTyped(const QTextCursor &cursor);

/// Drops the look of a link and what makes it one.
void dropLink(QTextCharFormat &look);

} // namespace quorvane
