#include "editor/insertion.h"

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
