#pragma once

#include "editor/texteditor.h"
#include "richtext/body.h"
#include "richtext/listmarks.h"

#include <QStringList>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

namespace quorvane {

/// The paragraphs with the marks of their lists, four spaces in for each level.
inline QStringList outlineOf(const QTextDocument &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextList *list = block.textList();
        const int level = list ? list->format().indent() : 0;
        const QString mark = listMarkOf(block);
        lines << QString(4 * qMax(0, level - 1), u' ') + mark
                + QString(mark.isEmpty() ? 0 : 1, u' ') + block.text();
    }
    return lines;
}

/// What is read again when the document was saved.
inline std::unique_ptr<QTextDocument> savedAndRead(const QTextDocument &document)
{
    auto read = std::make_unique<QTextDocument>();
    readBody(bodyFromDocument(document), *read);
    return read;
}

/// Types, with '\b' for Backspace, '\v' for Shift+Tab, '<' and '>' for Home and End, '^' for Up and
/// '~' for undo.
inline void typeKeys(TextEditor &editor, const QString &keys)
{
    for (const QChar key : keys) {
        switch (key.unicode()) {
        case u'\n':
            QTest::keyClick(&editor, Qt::Key_Return);
            break;
        case u'\t':
            QTest::keyClick(&editor, Qt::Key_Tab);
            break;
        case u'\b':
            QTest::keyClick(&editor, Qt::Key_Backspace);
            break;
        case u'\v':
            QTest::keyClick(&editor, Qt::Key_Backtab, Qt::ShiftModifier);
            break;
        case u'<':
            QTest::keyClick(&editor, Qt::Key_Home);
            break;
        case u'>':
            QTest::keyClick(&editor, Qt::Key_End);
            break;
        case u'^':
            QTest::keyClick(&editor, Qt::Key_Up);
            break;
        case u'~':
            QTest::keyClick(&editor, Qt::Key_Z, Qt::ControlModifier);
            break;
        default:
            QTest::keyClicks(&editor, QString(key));
        }
    }
}

} // namespace quorvane
