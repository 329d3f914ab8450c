#include "editor/insertion.h"

#include "richtext/textproperties.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QTextList>

#include <algorithm>

namespace quorvane {

void insertFragment(QTextCursor &cursor, const QTextDocumentFragment &fragment, bool beginsInList)
{
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    QTextCursor start = cursor;
    start.setKeepPositionOnInsert(true);
    const bool wasEmpty = cursor.block().length() == 1;
    cursor.insertFragment(fragment);
    const QTextBlock first = start.block();
    if (beginsInList && wasEmpty && first.length() == 1 && !first.textList()
        && first.next().textList()) {
        start.deleteChar();
    }
    cursor.endEditBlock();
}

void insertCharacters(QTextCursor &cursor, const QString &text)
{
    const auto isInternal = [](QChar c) {
        return isDocumentInternal(c.unicode());
    };
    const QTextCharFormat format = cursor.charFormat();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    for (auto from = text.begin(); from != text.end();) {
        const auto to = std::find_if(from, text.end(), isInternal);
        cursor.insertText(QString(from, to - from), format);
        from = to;
        if (from != text.end()) {
            QTextCharFormat standIn = format;
            standIn.setProperty(OriginalUnit, int(from->unicode()));
            cursor.insertText(QString(QChar::ReplacementCharacter), standIn);
            ++from;
        }
    }
    cursor.endEditBlock();
}

} // namespace quorvane
