#include "editor/selectedtext.h"

#include "richtext/textproperties.h"

#include <QSet>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>

namespace quorvane {

namespace {

/// A stretch of one look within a block, or the end of the block.
struct Run
{
    int from;
    int to;
    int formatIndex;
    QTextCharFormat look;
};

bool isObject(const QTextCharFormat &look)
{
    return look.objectType() != QTextFormat::NoObject || look.objectIndex() >= 0;
}

void forEachRun(const QTextDocument &document, const SelectedRange &range, bool withEnds,
                const std::function<void(const Run &)> &take)
{
    for (QTextBlock block = document.findBlock(range.from);
         block.isValid() && block.position() < range.to; block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QTextFragment fragment = it.fragment();
            const int from = std::max(range.from, fragment.position());
            const int to = std::min(range.to, fragment.position() + fragment.length());
            if (from < to) {
                take({from, to, fragment.charFormatIndex(), fragment.charFormat()});
            }
        }
        const int end = block.position() + block.length();
        if (withEnds && end <= range.to && block.next().isValid()) {
            take({end - 1, end, block.next().charFormatIndex(), block.next().charFormat()});
        }
    }
}

void collectLooks(const QTextCursor &cursor, bool withEnds, QList<QTextCharFormat> &looks)
{
    QSet<int> known;
    for (const SelectedRange &range : selectedRanges(cursor)) {
        forEachRun(*cursor.document(), range, withEnds, [&](const Run &run) {
            if (!known.contains(run.formatIndex)) {
                known.insert(run.formatIndex);
                if (!isObject(run.look)) {
                    looks.push_back(run.look);
                }
            }
        });
    }
}

QString linkBefore(const QTextCursor &cursor, int position)
{
    QTextCursor at(cursor.document());
    at.setPosition(position);
    return at.atBlockStart() ? QString() : at.charFormat().anchorHref();
}

QString linkBehind(const QTextCursor &cursor, int position)
{
    QTextCursor at(cursor.document());
    at.setPosition(position);
    if (at.atBlockEnd()) {
        return {};
    }
    at.movePosition(QTextCursor::NextCharacter);
    return at.charFormat().anchorHref();
}

} // namespace

QList<SelectedRange> selectedRanges(const QTextCursor &cursor)
{
    int row = -1;
    int rows = 0;
    int column = -1;
    int columns = 0;
    if (cursor.hasComplexSelection()) {
        cursor.selectedTableCells(&row, &rows, &column, &columns);
    }
    if (row < 0) {
        return {{cursor.selectionStart(), cursor.selectionEnd()}};
    }
    QList<SelectedRange> ranges;
    const QTextTable *table = cursor.currentTable();
    for (int y = row; y < row + rows; ++y) {
        for (int x = column; x < column + columns; ++x) {
            const QTextTableCell cell = table->cellAt(y, x);
            if (cell.row() == y && cell.column() == x) { // else a merged one that was here already
                ranges.push_back({cell.firstPosition(), cell.lastPosition()});
            }
        }
    }
    return ranges;
}

QList<QTextCharFormat> selectedLooks(const QTextCursor &cursor)
{
    QList<QTextCharFormat> looks;
    collectLooks(cursor, false, looks);
    if (looks.isEmpty()) {
        collectLooks(cursor, true, looks);
    }
    return looks.isEmpty() ? QList {cursor.charFormat()} : looks;
}

void changeLooks(QTextCursor &cursor, const std::function<void(QTextCharFormat &look)> &change)
{
    QList<Run> runs;
    for (const SelectedRange &range : selectedRanges(cursor)) {
        forEachRun(*cursor.document(), range, true, [&](const Run &run) {
            if (isObject(run.look)) {
                return;
            }
            const bool goesOn = !runs.isEmpty() && runs.last().to == run.from
                && runs.last().formatIndex == run.formatIndex;
            if (goesOn) {
                runs.last().to = run.to;
            } else {
                runs.push_back(run);
            }
        });
    }
    QTextCursor at(cursor.document());
    for (Run &run : runs) {
        at.setPosition(run.from);
        at.setPosition(run.to, QTextCursor::KeepAnchor);
        change(run.look);
        at.setCharFormat(run.look);
    }
}

QList<QTextBlock> wholeSelectedBlocks(const QTextCursor &cursor)
{
    if (!cursor.hasSelection()) {
        return {cursor.block()};
    }
    QList<QTextBlock> blocks;
    for (const SelectedRange &range : selectedRanges(cursor)) {
        for (QTextBlock block = cursor.document()->findBlock(range.from);
             block.isValid() && block.position() <= range.to; block = block.next()) {
            const int end = block.position() + block.length() - 1;
            const bool isTouched = block.position() < range.to || blocks.isEmpty();
            if (block.position() >= range.from && end <= range.to && isTouched) {
                blocks.push_back(block);
            }
        }
    }
    return blocks;
}

QTextCharFormat lookOfTyped(const QTextCursor &cursor)
{
    QTextCharFormat look = cursor.charFormat();
    for (const int property : {AttachmentName, AttachmentId, AttachmentWidth, AttachmentHeight,
                               AttachmentNoOrient, OriginalUnit}) {
        look.clearProperty(property);
    }
    look.clearProperty(QTextFormat::ObjectType);
    if (look.isAnchor() || look.hasProperty(LinkLook)) {
        const QString before = linkBefore(cursor, cursor.selectionStart());
        const QString behind = linkBehind(cursor, cursor.selectionEnd());
        if (before.isEmpty() || before != behind || before != look.anchorHref()) {
            dropLink(look);
        }
    }
    return look;
}

void dropLink(QTextCharFormat &look)
{
    if (look.boolProperty(LinkLook)) {
        if (look.foreground().color().rgba() == linkColour) {
            look.clearForeground();
        }
        look.clearProperty(QTextFormat::TextUnderlineStyle);
        look.clearProperty(QTextFormat::FontUnderline);
    }
    look.clearProperty(LinkLook);
    look.clearProperty(QTextFormat::IsAnchor);
    look.clearProperty(QTextFormat::AnchorHref);
    look.clearProperty(QTextFormat::AnchorName);
}

} // namespace quorvane
