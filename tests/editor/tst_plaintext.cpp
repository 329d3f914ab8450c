#include "editor/editorview.h"
#include "editor/plaintext.h"
#include "editor/texteditor.h"
#include "richtext/body.h"
#include "richtext/textproperties.h"

#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextList>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

const NSFont font {u"DejaVu Sans"_s, 13};

QTextCharFormat plainFormat()
{
    QTextCharFormat format;
    format.setFontFamilies({font.family});
    format.setFontPointSize(font.pointSize);
    return format;
}

/// A text with something of everything that has to go.
std::unique_ptr<QTextDocument> motley()
{
    auto document = std::make_unique<QTextDocument>();
    QTextCursor cursor(document.get());
    QTextCharFormat loud;
    loud.setFontWeight(QFont::Bold);
    loud.setForeground(Qt::red);
    loud.setAnchor(true);
    loud.setAnchorHref(u"https://example.org"_s);
    cursor.insertText(u"loud\u00a0\u2028"_s, loud);
    QTextImageFormat image;
    image.setName(u"a.png"_s);
    cursor.insertImage(image);
    QTextCharFormat attachment;
    attachment.setObjectType(attachmentObjectType);
    attachment.setProperty(AttachmentName, u"b.bin"_s);
    cursor.insertText(u"\ufffc"_s, attachment);
    QTextCharFormat standIn;
    standIn.setProperty(OriginalUnit, 0xfdd0);
    cursor.insertText(u"\ufffd"_s, standIn);
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignHCenter);
    cursor.insertBlock(centred, loud);
    cursor.insertText(u"item"_s);
    cursor.createList(QTextListFormat::ListDisc);
    QTextBlockFormat scaffold;
    scaffold.setProperty(BeforeTable, true);
    cursor.insertBlock(QTextBlockFormat());
    QTextTable *table = cursor.insertTable(1, 2);
    table->cellAt(0, 0).firstCursorPosition().insertText(u"cell"_s);
    QTextCursor nested = table->cellAt(0, 1).firstCursorPosition();
    nested.setBlockFormat(scaffold);
    nested.insertTable(1, 1)->cellAt(0, 0).firstCursorPosition().insertText(u"inner"_s);
    cursor.movePosition(QTextCursor::End);
    cursor.insertText(u"end"_s);
    return document;
}

} // namespace

class TestPlainText : public QObject
{
    Q_OBJECT

private slots:

    void theCharactersStayAndAllElseGoes()
    {
        const auto document = motley();
        const auto plain = plainCopy(*document, plainFormat());
        QString text = plain->toRawText();
        text.replace(QChar::ParagraphSeparator, u'\n');
        // The paragraph that only a nested table needs is no part of the text.
        QCOMPARE(text, u"loud\u00a0\u2028\ufffc\ufffc\ufffd\nitem\n\ncell\ninner\n\nend"_s);
        QCOMPARE(plain->rootFrame()->childFrames().size(), 0);
        for (QTextBlock block = plain->begin(); block.isValid(); block = block.next()) {
            QCOMPARE(block.blockFormat(), QTextBlockFormat());
            QCOMPARE(block.charFormat(), plainFormat());
            QVERIFY(!block.textList());
            for (auto each = block.begin(); !each.atEnd(); ++each) {
                QTextCharFormat format = each.fragment().charFormat();
                const bool isStandIn = each.fragment().text() == u"\ufffd"_s;
                QCOMPARE(format.intProperty(OriginalUnit), isStandIn ? 0xfdd0 : 0);
                format.clearProperty(OriginalUnit);
                QCOMPARE(format, plainFormat());
            }
        }
    }

    void theEditorKeepsItsPlaceAndItsMark_data()
    {
        QTest::addColumn<bool>("isEdited");
        QTest::newRow("an edited text stays edited") << true;
        QTest::newRow("one that nobody edited stays so") << false;
    }

    void theEditorKeepsItsPlaceAndItsMark()
    {
        QFETCH(bool, isEdited);
        TextEditor editor;
        EditorView view(editor);
        view.setBody("{\\rtf1\\ansi {\\b one} two \\ul three\\par\\qc four\\'80}");
        QTextCursor cursor(editor.content());
        cursor.setPosition(2);
        cursor.setPosition(6, QTextCursor::KeepAnchor);
        editor.setTextCursor(cursor);
        if (isEdited) {
            cursor.insertText(u"edit"_s);
            cursor.setPosition(2);
            cursor.setPosition(6, QTextCursor::KeepAnchor);
            editor.setTextCursor(cursor);
        }
        const QByteArray before = view.body().value_or(QByteArray());
        QVERIFY(view.setAttributes(font));
        QCOMPARE(view.isEdited(), isEdited);
        QCOMPARE(editor.textCursor().anchor(), 2);
        QCOMPARE(editor.textCursor().position(), 6);
        QVERIFY(!editor.content()->isUndoAvailable() && !editor.content()->isRedoAvailable());
        const QByteArray once = view.body().value_or(QByteArray());
        QVERIFY(once != before && !once.contains("\\b ") && !once.contains("\\qc"));
        QCOMPARE(plainTextFromBody(once), plainTextFromBody(before));
        QVERIFY(view.setAttributes(font));
        QCOMPARE(view.body(), std::optional(once));
    }

    void whatWouldBeTooTallIsRefusedWhole()
    {
        TextEditor editor;
        EditorView view(editor);
        QByteArray body("{\\rtf1\\ansi\\fs2 ");
        for (int i = 0; i < 40000; ++i) {
            body += "a\\par\n";
        }
        QVERIFY(view.setBody(body + '}'));
        QSignalSpy tooTall(&editor, &TextEditor::tooTall);
        QVERIFY(!view.setAttributes(NSFont {u"DejaVu Sans"_s, 900}));
        QCOMPARE(tooTall.count(), 1);
        QCOMPARE(view.body(), std::optional(body + '}'));
        QVERIFY(!view.isEdited());
    }

    void anEmptyTextIsTypedPlainFromThen()
    {
        TextEditor editor;
        EditorView view(editor);
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        editor.setCurrentCharFormat(bold);
        view.setTypingAttributes(font);
        QTest::keyClicks(&editor, u"a"_s);
        QCOMPARE(editor.currentCharFormat(), plainFormat());
    }
};

QTEST_MAIN(TestPlainText)
#include "tst_plaintext.moc"
