#include "editor/plaintext.h"

#include "richtext/textproperties.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>

namespace quorvane {

namespace {

/// An empty paragraph that is no part of the text: the toolkit wants one before a table.
bool isScaffold(const QTextBlock &block)
{
    if (block.length() > 1 || !block.blockFormat().boolProperty(BeforeTable)
        || !block.next().isValid()) {
        return false;
    }
    const QTextTable *within = QTextCursor(block).currentTable();
    const QTextTable *next = QTextCursor(block.next()).currentTable();
    return next && next != within;
}

void copyText(QTextCursor &cursor, const QTextBlock &block, const QTextCharFormat &format)
{
    for (auto each = block.begin(); !each.atEnd(); ++each) {
        const QTextFragment fragment = each.fragment();
        const QTextCharFormat own = fragment.charFormat();
        if (!own.hasProperty(OriginalUnit)) {
            cursor.insertText(fragment.text(), format);
            continue;
        }
        // Which character it is, and not how it looks.
        QTextCharFormat standIn = format;
        standIn.setProperty(OriginalUnit, own.property(OriginalUnit));
        cursor.insertText(fragment.text(), standIn);
    }
}

} // namespace

std::unique_ptr<QTextDocument> plainCopy(const QTextDocument &document,
                                         const QTextCharFormat &format)
{
    auto plain = std::make_unique<QTextDocument>();
    plain->setUndoRedoEnabled(false);
    QTextCursor cursor(plain.get());
    cursor.beginEditBlock();
    cursor.setBlockCharFormat(format);
    bool isFirst = true;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (isScaffold(block)) {
            continue;
        }
        if (!isFirst) {
            cursor.insertBlock(QTextBlockFormat(), format);
        }
        isFirst = false;
        copyText(cursor, block, format);
    }
    cursor.endEditBlock();
    return plain;
}

} // namespace quorvane
