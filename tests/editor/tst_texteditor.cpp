#include "editor/texteditor.h"

#include <QApplication>
#include <QClipboard>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

QFont testFont(double size = 12)
{
    QFont font(u"DejaVu Sans"_s);
    font.setPointSizeF(size);
    return font;
}

std::unique_ptr<QTextDocument> documentOf(const QString &paragraph, int count, double size = 12)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(testFont(size));
    QString text;
    text.reserve((paragraph.size() + 1) * count);
    for (int index = 1; index < count; ++index) {
        text += paragraph + u'\n';
    }
    QTextCursor(document.get()).insertText(text + paragraph);
    return document;
}

int blocksWithoutLines(const QTextDocument &document)
{
    int count = 0;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        count += block.layout()->lineCount() == 0 ? 1 : 0;
    }
    return count;
}

std::unique_ptr<QMimeData> text(const QString &text)
{
    auto data = std::make_unique<QMimeData>();
    data->setText(text);
    return data;
}

void paste(TextEditor &editor, std::unique_ptr<QMimeData> data)
{
    QGuiApplication::clipboard()->setMimeData(data.release());
    editor.paste();
}

void drop(TextEditor &editor, std::unique_ptr<QMimeData> data, const QPoint &place)
{
    QDragEnterEvent enter(place, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor.viewport(), &enter);
    QDropEvent event(place, Qt::CopyAction, data.get(), Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(editor.viewport(), &event);
}

void drop(TextEditor &editor, std::unique_ptr<QMimeData> data)
{
    drop(editor, std::move(data), editor.viewport()->rect().center());
}

const QString longParagraph = QString(u"lorem ipsum dolor "_s).repeated(17);

} // namespace

class TestTextEditor : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<TextEditor> m_editor;

    void typeAt(int position, const QString &text)
    {
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(position);
        m_editor->setTextCursor(cursor);
        QTest::keyClicks(m_editor.get(), text);
    }

    /// Has a document of so many paragraphs shown, and goes on before its layout is finished.
    void beginShowing(int paragraphs)
    {
        QCOMPARE(m_editor->showDocument(documentOf(longParagraph, paragraphs)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
        QVERIFY2(blocksWithoutLines(*m_editor->content()) > 0,
                 "the layout was finished too early to test anything");
    }

private slots:

    void init()
    {
        m_editor = std::make_unique<TextEditor>();
        m_editor->resize(800, 600);
    }

    void anEditDuringTheLayoutHidesNothing_data()
    {
        QTest::addColumn<int>("paragraphs");
        QTest::addColumn<std::function<void(TextEditor &)>>("edit");
        const auto cursorEdit = [](int blockNumber) {
            return [blockNumber](TextEditor &editor) {
                const int count = editor.content()->blockCount();
                QTextCursor(editor.content()->findBlockByNumber((blockNumber + count) % count))
                    .insertText(u"x"_s);
            };
        };
        for (const int paragraphs : {1200, 4001}) {
            const auto row = [paragraphs](const char *name) -> QTestData & {
                return QTest::addRow("%s of %d paragraphs", name, paragraphs) << paragraphs;
            };
            using Edit = std::function<void(TextEditor &)>;
            row("a key at the top")
                << Edit([](TextEditor &editor) { QTest::keyClicks(&editor, u"x"_s); });
            row("an edit by program at the top") << Edit(cursorEdit(0));
            row("an edit by program in the middle") << Edit(cursorEdit(paragraphs / 2));
            row("an edit by program in the last paragraph") << Edit(cursorEdit(-1));
            row("a paste") << Edit(
                [](TextEditor &editor) { editor.insertDocument(*documentOf(u"pasted"_s, 3)); });
            row("an edit and its undo") << Edit([](TextEditor &editor) {
                QTest::keyClicks(&editor, u"x"_s);
                editor.undo();
            });
            row("everything bold") << Edit([](TextEditor &editor) {
                editor.selectAll();
                QTextCharFormat bold;
                bold.setFontWeight(QFont::Bold);
                editor.applyCharFormat(bold);
            });
        }
    }

    void anEditDuringTheLayoutHidesNothing()
    {
        QFETCH(int, paragraphs);
        QFETCH(std::function<void(TextEditor &)>, edit);
        beginShowing(paragraphs);
        edit(*m_editor);
        QTRY_COMPARE_WITH_TIMEOUT(blocksWithoutLines(*m_editor->content()), 0, 20000);
    }

    void typingFarDownKeepsThePlaceInView()
    {
        beginShowing(4001);
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(m_editor->content()->findBlockByNumber(2000).position());
        m_editor->setTextCursor(cursor);
        QTest::keyClicks(m_editor.get(), u"x"_s);
        QVERIFY(m_editor->viewport()->rect().contains(m_editor->cursorRect()));
        QVERIFY(m_editor->verticalScrollBar()->value() > 10000);
    }

    void aDocumentOf460000LinesShowsEveryOneOfThem()
    {
        QCOMPARE(m_editor->showDocument(documentOf(u"line"_s, 460000)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        QTRY_COMPARE_WITH_TIMEOUT(blocksWithoutLines(*m_editor->content()), 0, 120000);
        QVERIFY(m_editor->content()->size().height() > 8'388'607);
        m_editor->moveCursor(QTextCursor::End);
        QTest::keyClicks(m_editor.get(), u"!"_s);
        QVERIFY(m_editor->viewport()->rect().contains(m_editor->cursorRect()));
        QVERIFY(m_editor->content()->lastBlock().text().endsWith(u'!'));
        m_editor->resize(640, 480);
        QVERIFY(m_editor->verticalScrollBar()->value() > 8'388'607);
        m_editor->setContentHidden(true);
        m_editor->resize(480, 320);
        m_editor->setContentHidden(false);
        m_editor->resize(800, 600);
        typeAt(0, u"!"_s);
        QTRY_COMPARE_WITH_TIMEOUT(blocksWithoutLines(*m_editor->content()), 0, 120000);
        QVERIFY(m_editor->toPlainText().startsWith(u"!line"_s));
        QCOMPARE(m_editor->content()->blockCount(), 460000);
    }

    void aDocumentTooTallIsRefused_data()
    {
        QTest::addColumn<QString>("paragraph");
        QTest::addColumn<int>("count");
        QTest::addColumn<double>("size");
        QTest::addColumn<TextEditor::ShowResult>("result");
        const auto shown = TextEditor::ShowResult::Shown;
        const auto refused = TextEditor::ShowResult::TooTall;
        QTest::newRow("nothing") << QString() << 1 << 12.0 << shown;
        QTest::newRow("many short lines") << u"line"_s << 200000 << 12.0 << shown;
        QTest::newRow("few lines of 400 points") << u"l"_s << 5000 << 400.0 << shown;
        QTest::newRow("many lines of 400 points") << u"l"_s << 80000 << 400.0 << refused;
        QTest::newRow("long paragraphs of 400 points") << longParagraph << 2000 << 400.0 << refused;
        QTest::newRow("lines of 100000 points") << u"l"_s << 800 << 100000.0 << refused;
        QTest::newRow("one paragraph of millions of characters")
            << longParagraph.repeated(4000) << 1 << 200.0 << refused;
    }

    void aDocumentTooTallIsRefused()
    {
        QFETCH(QString, paragraph);
        QFETCH(int, count);
        QFETCH(double, size);
        QFETCH(TextEditor::ShowResult, result);
        QCOMPARE(m_editor->showDocument(documentOf(u"kept"_s, 1)), TextEditor::ShowResult::Shown);
        m_editor->show();
        QTest::keyClicks(m_editor.get(), u"x"_s);
        const QTextDocument *before = m_editor->content();
        QCOMPARE(m_editor->showDocument(documentOf(paragraph, count, size)), result);
        if (result == TextEditor::ShowResult::TooTall) {
            QCOMPARE(m_editor->content(), before);
            QCOMPARE(m_editor->toPlainText(), u"xkept"_s);
            QVERIFY(before->isUndoAvailable());
        } else {
            QVERIFY(m_editor->content() != before);
            QVERIFY(!m_editor->content()->isModified());
            QVERIFY(!m_editor->content()->isUndoAvailable());
            QCOMPARE(m_editor->textCursor().position(), 0);
        }
    }

    void editsThatWouldBeTooTallAreRefused_data()
    {
        QTest::addColumn<std::function<void(TextEditor &)>>("edit");
        using Edit = std::function<void(TextEditor &)>;
        QTest::newRow("everything in 1600 points") << Edit([](TextEditor &editor) {
            editor.selectAll();
            QTextCharFormat format;
            format.setFontPointSize(1600);
            QVERIFY(!editor.applyCharFormat(format));
        });
        QTest::newRow("a paste in a huge font") << Edit([](TextEditor &editor) {
            editor.setFontPointSize(3000);
            paste(editor, text(u"line\n"_s.repeated(20000)));
        });
        QTest::newRow("a drop of HTML with a huge font") << Edit([](TextEditor &editor) {
            auto data = std::make_unique<QMimeData>();
            data->setHtml(u"<p style='font-size:3000pt'>long words</p>"_s.repeated(5000));
            drop(editor, std::move(data));
        });
        QTest::newRow("HTML with a huge font") << Edit([](TextEditor &editor) {
            auto data = std::make_unique<QMimeData>();
            data->setHtml(u"<p style='font-size:3000pt'>long words</p>"_s.repeated(5000));
            paste(editor, std::move(data));
        });
    }

    void editsThatWouldBeTooTallAreRefused()
    {
        QFETCH(std::function<void(TextEditor &)>, edit);
        QCOMPARE(m_editor->showDocument(documentOf(u"line"_s, 20000)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        const QString before = m_editor->toPlainText();
        const QSignalSpy told(m_editor.get(), &TextEditor::tooTall);
        edit(*m_editor);
        QCOMPARE(told.count(), 1);
        QVERIFY(m_editor->toPlainText() == before);
        QVERIFY(!m_editor->content()->isUndoAvailable());
    }

    // Nobody asked the editor here: it must come through all the same, and show every line.
    void anUnguardedEditThatIsTooTallNeitherHangsNorHides_data()
    {
        QTest::addColumn<double>("size");
        QTest::addColumn<bool>("stays");
        QTest::newRow("more than the layout can bear in one piece") << 400.0 << true;
        QTest::newRow("beyond the range of the layout's numbers") << 1600.0 << false;
    }

    void anUnguardedEditThatIsTooTallNeitherHangsNorHides()
    {
        QFETCH(double, size);
        QFETCH(bool, stays);
        QCOMPARE(m_editor->showDocument(documentOf(u"line"_s, 20000)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        const QSignalSpy told(m_editor.get(), &TextEditor::tooTall);
        QTextCursor cursor(m_editor->content());
        cursor.select(QTextCursor::Document);
        QTextCharFormat format;
        format.setFontPointSize(size);
        cursor.mergeCharFormat(format);
        m_editor->resize(500, 400);
        QTRY_COMPARE(told.count(), stays ? 0 : 1);
        QTRY_COMPARE_WITH_TIMEOUT(blocksWithoutLines(*m_editor->content()), 0, 20000);
        QCOMPARE(m_editor->content()->isUndoAvailable(), stays);
        m_editor->undo();
        QTRY_COMPARE(m_editor->lineWrapMode(), QTextEdit::WidgetWidth);
        QTRY_COMPARE_WITH_TIMEOUT(blocksWithoutLines(*m_editor->content()), 0, 20000);
    }

    void whatIsInViewIsKnownBeforeTheLayoutIsDone_data()
    {
        QTest::addColumn<QRect>("view");
        QTest::newRow("above the first line") << QRect(0, 0, 300, 5);
        QTest::newRow("between two paragraphs") << QRect(0, 40, 300, 5);
        QTest::newRow("all of it") << QRect(0, 0, 600, 200);
    }

    void whatIsInViewIsKnownBeforeTheLayoutIsDone()
    {
        QFETCH(QRect, view);
        auto text = documentOf(u"short"_s, 30000);
        QTextBlockFormat apart;
        apart.setTopMargin(20);
        QTextCursor cursor(text.get());
        cursor.select(QTextCursor::Document);
        cursor.mergeBlockFormat(apart);
        QCOMPARE(m_editor->showDocument(std::move(text)), TextEditor::ShowResult::Shown);
        m_editor->resize(600, 200);
        m_editor->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
        const int unknown = blocksWithoutLines(*m_editor->content());
        QVERIFY2(unknown > 0, "the layout was finished too early to test anything");
        const TextSpan span = m_editor->spanIn(view);
        QVERIFY(span.from <= view.bottom() && span.end() <= 10 * int(u"short "_s.size()));
        QCOMPARE(blocksWithoutLines(*m_editor->content()), unknown);
    }

    void placesAreKnownBeforeTheLayoutIsDone()
    {
        auto text = std::make_unique<QTextDocument>();
        text->setHtml(u"<p>Hello there</p><ul><li>one</li><li>two</li></ul>"
                      "<p style='margin-top:12px'>some more</p>"_s.repeated(6000));
        m_editor->resize(600, 400);
        m_editor->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
        QCOMPARE(m_editor->showDocument(std::move(text)), TextEditor::ShowResult::Shown);
        m_editor->repaint();
        const TextSpan inView = m_editor->spanIn(m_editor->viewport()->rect());
        constexpr int nextLine = 12; // characters, at most
        for (int y = 0; y < m_editor->viewport()->height(); ++y) {
            const int unknown = blocksWithoutLines(*m_editor->content());
            QVERIFY2(unknown > 0, "the layout was finished too early to test anything");
            QVERIFY(m_editor->cursorForPosition({20, y}).position() <= inView.end() + nextLine);
            QCOMPARE(blocksWithoutLines(*m_editor->content()), unknown);
        }
        QTest::mouseClick(m_editor->viewport(), Qt::LeftButton, {}, {20, 1});
        QCOMPARE(m_editor->textCursor().position(), 1);
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(0);
        cursor.setPosition(5, QTextCursor::KeepAnchor);
        m_editor->setTextCursor(cursor);
        QTest::mouseClick(m_editor->viewport(), Qt::LeftButton, {}, {20, 1}); // on the selection
        QCOMPARE(m_editor->textCursor().position(), 1);
        drop(*m_editor, ::text(u"dropped"_s), {20, 1});
        QCOMPARE(m_editor->content()->firstBlock().text(), u"Hdroppedello there"_s);
    }

    void rowsOfATableAreInViewAsAWhole_data()
    {
        QTest::addColumn<QStringList>("cells");
        const QString lines = u"\n"_s.repeated(40);
        QTest::newRow("of which only the middle one reaches into it")
            << QStringList {u""_s, lines, u""_s};
        QTest::newRow("of which only the first one does, behind which others have ended")
            << QStringList {u"tall "_s.repeated(800), lines.first(9), lines.first(9)};
    }

    void rowsOfATableAreInViewAsAWhole()
    {
        QFETCH(QStringList, cells);
        auto text = std::make_unique<QTextDocument>();
        QTextCursor cursor(text.get());
        QTextTable *table = cursor.insertTable(1, 3);
        cursor.movePosition(QTextCursor::End);
        cursor.insertText(u"\n"_s.repeated(20));
        for (int column = 0; column < 3; ++column) {
            table->cellAt(0, column).firstCursorPosition().insertText(cells.at(column));
        }
        QCOMPARE(m_editor->showDocument(std::move(text)), TextEditor::ShowResult::Shown);
        m_editor->show();
        m_editor->resize(600, 200);
        table = qobject_cast<QTextTable *>(m_editor->content()->rootFrame()->childFrames().first());
        m_editor->verticalScrollBar()->setValue(250); // only the tallest cell's text is in view
        const TextSpan span = m_editor->spanIn(m_editor->viewport()->rect());
        QCOMPARE(span.from, table->cellAt(0, 0).firstPosition());
        QCOMPARE(span.end(), table->cellAt(0, 2).lastPosition());
    }

    void zoomKeepsThePlaceInATallRow()
    {
        auto text = std::make_unique<QTextDocument>();
        QTextTable *table = QTextCursor(text.get()).insertTable(1, 1);
        QTextCursor cursor = table->cellAt(0, 0).firstCursorPosition();
        for (int number = 0; number < 200; ++number) {
            cursor.insertText(u"paragraph %1\n"_s.arg(number));
        }
        QCOMPARE(m_editor->showDocument(std::move(text)), TextEditor::ShowResult::Shown);
        m_editor->show();
        m_editor->resize(600, 200);
        m_editor->verticalScrollBar()->setValue(1500);
        const int top = m_editor->cursorForPosition(QPoint(40, 10)).blockNumber();
        QVERIFY(m_editor->setZoom(1.5));
        const int now = m_editor->cursorForPosition(QPoint(40, 10)).blockNumber();
        QVERIFY2(qAbs(now - top) <= 1, qPrintable(u"%1 instead of %2"_s.arg(now).arg(top)));
    }

    void aWindowTooNarrowForTheTextScrollsSideways()
    {
        QCOMPARE(m_editor->showDocument(documentOf(longParagraph, 30000, 20)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        QCOMPARE(m_editor->lineWrapMode(), QTextEdit::WidgetWidth);
        m_editor->resize(220, 400);
        QTRY_COMPARE(m_editor->lineWrapMode(), QTextEdit::FixedPixelWidth);
        m_editor->resize(800, 400);
        QTRY_COMPARE(m_editor->lineWrapMode(), QTextEdit::WidgetWidth);
    }

    void hiddenContentComesBackAsItWas_data()
    {
        QTest::addColumn<QSize>("meanwhile");
        QTest::newRow("in a window of the same size") << QSize(800, 600);
        QTest::newRow("in a window that was small and grows again") << QSize(480, 320);
    }

    void hiddenContentComesBackAsItWas()
    {
        QFETCH(QSize, meanwhile);
        QCOMPARE(m_editor->showDocument(documentOf(longParagraph, 500)),
                 TextEditor::ShowResult::Shown);
        m_editor->show();
        const int caret = m_editor->content()->findBlockByNumber(200).position() + 20;
        typeAt(caret, u"typed"_s);
        QTextCursor cursor = m_editor->textCursor();
        cursor.setPosition(caret);
        cursor.setPosition(caret + 5, QTextCursor::KeepAnchor);
        m_editor->setTextCursor(cursor);
        const int scroll = m_editor->verticalScrollBar()->value() + 120;
        m_editor->verticalScrollBar()->setValue(scroll);
        const int top = m_editor->cursorForPosition(QPoint(0, 0)).blockNumber();

        m_editor->setContentHidden(true);
        QCOMPARE(m_editor->toPlainText(), QString());
        QVERIFY(m_editor->content()->toPlainText().contains(u"typed"_s));
        m_editor->resize(meanwhile);
        m_editor->setContentHidden(false);
        m_editor->resize(800, 600);

        QCOMPARE(m_editor->document(), m_editor->content());
        QCOMPARE(m_editor->textCursor().selectedText(), u"typed"_s);
        QTRY_COMPARE(m_editor->cursorForPosition(QPoint(0, 0)).blockNumber(), top);
        QTRY_COMPARE(m_editor->verticalScrollBar()->value(), scroll);
        m_editor->undo();
        QVERIFY(!m_editor->toPlainText().contains(u"typed"_s));
        QCOMPARE(blocksWithoutLines(*m_editor->content()), 0);
    }

    void aDocumentThatComesWhileHiddenStaysHidden()
    {
        m_editor->setContentHidden(true);
        QCOMPARE(m_editor->showDocument(documentOf(u"secret"_s, 3)), TextEditor::ShowResult::Shown);
        QCOMPARE(m_editor->toPlainText(), QString());
        m_editor->setContentHidden(false);
        QVERIFY(m_editor->toPlainText().startsWith(u"secret"_s));
    }

    void anEmptyDocumentTakesTheTypingFont()
    {
        m_editor->setTypingFont(NSFont {u"DejaVu Serif"_s, 17.5});
        QCOMPARE(m_editor->showDocument(std::make_unique<QTextDocument>()),
                 TextEditor::ShowResult::Shown);
        m_editor->setContentHidden(true);
        m_editor->setContentHidden(false);
        QTest::keyClicks(m_editor.get(), u"a\tb"_s);
        const QTextCharFormat format = m_editor->content()->begin().begin().fragment().charFormat();
        QCOMPARE(format.font().family(), u"DejaVu Serif"_s);
        QCOMPARE(format.fontPointSize(), 17.5);
        QVERIFY(!format.hasProperty(QTextFormat::ForegroundBrush));
        QCOMPARE(m_editor->toPlainText(), u"a\tb"_s);
    }

    void textWithoutAFontIsShownInTheTypingFont()
    {
        const NSFont font {u"DejaVu Serif"_s, 17.5};
        m_editor->setTypingFont(font);
        QCOMPARE(m_editor->showDocument(documentOf(u"text"_s, 1, 9)),
                 TextEditor::ShowResult::Shown);
        QApplication::setFont(testFont(33));
        QCoreApplication::sendPostedEvents();
        QCOMPARE(m_editor->content()->defaultFont().family(), font.family);
        QCOMPARE(m_editor->content()->defaultFont().pointSizeF(), font.pointSize);
        QVERIFY(!m_editor->content()->isModified());
        QVERIFY(!m_editor->content()->isUndoAvailable());
    }

    void pastedHtmlReachesForNothingOutside_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("left");
        const QString pixel =
            u"data:image/png;base64,iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg=="_s;
        const QString image = u"a<img src=\"%1\">b"_s;
        QTest::newRow("an image of the web")
            << image.arg(u"https://example.invalid/x.png"_s) << u"ab"_s;
        QTest::newRow("an image in a file") << image.arg(u"file:///etc/hostname"_s) << u"ab"_s;
        QTest::newRow("an image with a bare path") << image.arg(u"/etc/hostname"_s) << u"ab"_s;
        QTest::newRow("an image of the program's resources")
            << image.arg(u"qrc:/x.png"_s) << u"ab"_s;
        QTest::newRow("an image within the text") << image.arg(pixel) << u"ab"_s;
    }

    void pastedHtmlReachesForNothingOutside()
    {
        QFETCH(QString, html);
        QFETCH(QString, left);
        auto data = std::make_unique<QMimeData>();
        data->setHtml(html);
        paste(*m_editor, std::move(data));
        QCOMPARE(m_editor->content()->toRawText(), left);
    }

    void noResourceIsReadFromAFile()
    {
        for (const auto type : {QTextDocument::ImageResource, QTextDocument::StyleSheetResource,
                                QTextDocument::HtmlResource}) {
            const QVariant found =
                m_editor->content()->resource(type, QUrl::fromLocalFile(QStringLiteral(__FILE__)));
            QVERIFY(found.toByteArray().trimmed().isEmpty());
            QVERIFY(found.value<QImage>().width() <= 1);
        }
    }

    void pastedTextIsSeen_data()
    {
        QTest::addColumn<QString>("html");
        QTest::newRow("white on white") << u"<p style='color:#fff'>text</p>"_s;
        QTest::newRow("no colour at all") << u"<p style='color:transparent'>text</p>"_s;
        QTest::newRow("left of the page") << u"<p style='text-indent:-9999px'>text</p>"_s;
        QTest::newRow("right of the page") << u"<p style='margin-left:99999px'>text</p>"_s;
        QTest::newRow("under a black bar")
            << u"<p><span style='color:#111;background-color:#000'>text</span></p>"_s;
        QTest::newRow("dark on a dark cell")
            << u"<table><tr><td bgcolor=#000080><span style='color:#000070'>text</span></td></tr></table>"_s;
        QTest::newRow("white on a dark cell")
            << u"<table><tr><td bgcolor=#000080><span style='color:#fff'>text</span></td></tr></table>"_s;
        QTest::newRow("without what ends it elsewhere") << u"<p>te&#0;xt</p>"_s;
    }

    void pastedTextIsSeen()
    {
        QFETCH(QString, html);
        m_editor->resize(800, 200);
        m_editor->show();
        auto data = std::make_unique<QMimeData>();
        data->setHtml(html);
        paste(*m_editor, std::move(data));
        const QTextCursor text = m_editor->content()->find(u"text"_s);
        QVERIFY(text.hasSelection());
        const QTextCharFormat format = text.charFormat();
        const bool isInCell = QTextCursor(text).currentTable();
        QCOMPARE(format.hasProperty(QTextFormat::ForegroundBrush), isInCell);
        QVERIFY(!isInCell || format.foreground().color().lightness() > 120);
        QVERIFY(!format.hasProperty(QTextFormat::BackgroundBrush));
        QVERIFY(m_editor->viewport()->rect().contains(m_editor->cursorRect(text)));
        QVERIFY(!m_editor->horizontalScrollBar()->isVisible());
    }

    void theFirstLineIsShownWithTheMarginAbove()
    {
        QCOMPARE(m_editor->showDocument(documentOf(u"line"_s, 300)), TextEditor::ShowResult::Shown);
        m_editor->resize(600, 300);
        m_editor->show();
        QTest::keyClick(m_editor.get(), Qt::Key_End, Qt::ControlModifier);
        QVERIFY(m_editor->verticalScrollBar()->value() > 0);
        QTest::keyClick(m_editor.get(), Qt::Key_Home, Qt::ControlModifier);
        QCOMPARE(m_editor->verticalScrollBar()->value(), 0);
        m_editor->setContentHidden(true);
        m_editor->resize(500, 200);
        m_editor->setContentHidden(false);
        QCOMPARE(m_editor->verticalScrollBar()->value(), 0);
    }

    void pastedBlackOnWhiteFollowsThePalette()
    {
        auto data = std::make_unique<QMimeData>();
        data->setHtml(
            u"<span style='color:#000000;background-color:#ffffff'>a</span><span style='color:#ff0000'>b</span>"_s);
        paste(*m_editor, std::move(data));
        auto part = m_editor->content()->begin().begin();
        QVERIFY(!part.fragment().charFormat().hasProperty(QTextFormat::ForegroundBrush));
        QVERIFY(!part.fragment().charFormat().hasProperty(QTextFormat::BackgroundBrush));
        QCOMPARE((++part).fragment().charFormat().foreground().color(), QColor(Qt::red));
    }

    void pastedHeadingsHaveASizeOfTheirOwn()
    {
        m_editor->setTypingFont(NSFont {u"DejaVu Sans"_s, 10});
        auto data = std::make_unique<QMimeData>();
        data->setHtml(u"<h1>a</h1>"_s);
        paste(*m_editor, std::move(data));
        QTextCursor cursor(m_editor->content());
        cursor.movePosition(QTextCursor::End);
        QCOMPARE(cursor.charFormat().fontPointSize(), 20.0);
    }

    void droppedFilesLeaveNothing()
    {
        auto data = std::make_unique<QMimeData>();
        data->setUrls({QUrl::fromLocalFile(u"/etc/hostname"_s)});
        drop(*m_editor, std::move(data));
        QCOMPARE(m_editor->content()->toRawText(), QString());
    }
};

QTEST_MAIN(TestTextEditor)
#include "tst_texteditor.moc"
