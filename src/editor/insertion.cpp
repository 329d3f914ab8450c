#include "editor/insertion.h"

#include "editor/selectedtext.h"
#include "editor/textspan.h"
#include "richtext/textproperties.h"

#include <QString>
#include <QTextCharFormat>
#include <QTextCursor>

#include <algorithm>

namespace quorvane {

void insertCharacters(QTextCursor &cursor, const QString &text)
{
    const auto isInternal = [](QChar c) {
        return isDocumentInternal(c.unicode());
    };
    const QTextCharFormat format = lookOfTyped(cursor);
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

void replaceCharacters(QTextCursor &cursor, const TextSpan &replaced, const QString &text)
{
    cursor.setPosition(replaced.from + 1);
    const QTextCharFormat look = cursor.charFormat();
    cursor.setPosition(replaced.from);
    cursor.setPosition(replaced.end(), QTextCursor::KeepAnchor);
    if (text.isEmpty()) {
        cursor.removeSelectedText();
    } else {
        cursor.insertText(text, look);
    }
}

} // namespace quorvane
