#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "editor/viewzoom.h"
#include "richtext/body.h"

#include <QAbstractTextDocumentLayout>
#include <QAction>
#include <QApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>
#include <QWheelEvent>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

/// Fifty paragraphs, a list and a table, in a font that is there everywhere.
std::unique_ptr<QTextDocument> manyThings()
{
    auto document = std::make_unique<QTextDocument>();
    QFont font(u"DejaVu Sans"_s);
    font.setPointSizeF(12);
    document->setDefaultFont(font);
    QTextCursor cursor(document.get());
    for (int index = 0; index < 50; ++index) {
        cursor.insertText(u"Words of paragraph %1\n"_s.arg(index));
    }
    cursor.createList(QTextListFormat::ListDecimal);
    cursor.insertText(u"an item"_s);
    cursor.movePosition(QTextCursor::End);
    cursor.insertTable(2, 2);
    return document;
}

} // namespace

class TestViewZoom : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everythingScalesAndTheDocumentKnowsNothing();
    void actualSizeIsAsItWas();
    void caretAndTopLineStay();
    void commandsAndWheelGoThroughTheSteps();
    void aTallTextIsShownNoLargerThanItCanBe();
    void theWheelGlidesAsFarAsItWouldJump();

private:
    void wheel(int delta, Qt::KeyboardModifiers modifiers = Qt::ControlModifier);

    std::unique_ptr<TextEditor> m_editor;
    std::unique_ptr<TextCommands> m_commands;
    std::unique_ptr<ViewZoom> m_zoom;
};

void TestViewZoom::init()
{
    m_zoom.reset();
    m_commands = std::make_unique<TextCommands>();
    m_editor = std::make_unique<TextEditor>();
    m_zoom = std::make_unique<ViewZoom>(*m_editor, *m_commands);
    m_editor->resize(800, 500);
    QCOMPARE(m_editor->showDocument(manyThings()), TextEditor::ShowResult::Shown);
    m_editor->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_editor.get()));
    m_commands->validate();
}

void TestViewZoom::wheel(int delta, Qt::KeyboardModifiers modifiers)
{
    QWheelEvent event(QPointF(10, 10), m_editor->mapToGlobal(QPointF(10, 10)), QPoint(),
                      QPoint(0, delta), Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(m_editor->viewport(), &event);
}

void TestViewZoom::actualSizeIsAsItWas()
{
    auto text = std::make_unique<QTextDocument>();
    text->setHtml(u"<p>a</p><table width=400><tr><td>b</td><td>c</td></tr></table><p>d</p>"_s);
    QCOMPARE(m_editor->showDocument(std::move(text)), TextEditor::ShowResult::Shown);
    const auto ranges = [this] {
        return QSize(m_editor->horizontalScrollBar()->maximum(),
                     m_editor->verticalScrollBar()->maximum());
    };
    QTRY_COMPARE(ranges(), QSize(0, 0));
    for (const double zoom : {2.5, 5.0}) {
        QVERIFY(m_editor->setZoom(zoom));
        QTRY_VERIFY(ranges() != QSize(0, 0));
        QVERIFY(m_editor->setZoom(1));
        QTRY_COMPARE(ranges(), QSize(0, 0));
    }
}

void TestViewZoom::everythingScalesAndTheDocumentKnowsNothing()
{
    const QByteArray body = bodyFromDocument(*m_editor->content());
    const int revision = m_editor->content()->revision();
    const double height = m_editor->content()->size().height();
    for (const double zoom : {2.0, 0.5, 1.0}) {
        QVERIFY(m_editor->setZoom(zoom));
        const double ratio = m_editor->content()->size().height() / height;
        QVERIFY2(qAbs(ratio / zoom - 1) < 0.1, qPrintable(u"%1 at %2"_s.arg(ratio).arg(zoom)));
        QCOMPARE(bodyFromDocument(*m_editor->content()), body);
        QCOMPARE(m_editor->content()->revision(), revision);
        QVERIFY(!m_editor->content()->isModified() && !m_editor->content()->isUndoAvailable());
    }
}

void TestViewZoom::caretAndTopLineStay()
{
    QTextCursor cursor(m_editor->content());
    cursor.setPosition(400);
    cursor.setPosition(410, QTextCursor::KeepAnchor);
    m_editor->setTextCursor(cursor);
    m_editor->verticalScrollBar()->setValue(150);
    const int top = m_editor->cursorForPosition(QPoint(0, 0)).blockNumber();
    for (const double zoom : {3.0, 0.67, 1.0}) {
        QVERIFY(m_editor->setZoom(zoom));
        QCOMPARE(m_editor->textCursor().selectedText(), cursor.selectedText());
        const int nowAtTop = m_editor->cursorForPosition(QPoint(0, 0)).blockNumber();
        const QScrollBar &bar = *m_editor->verticalScrollBar();
        QVERIFY2(qAbs(nowAtTop - top) <= 1 || bar.value() == bar.maximum(),
                 qPrintable(u"paragraph %1 for %2 at the top, %3 of %4"_s.arg(nowAtTop)
                                .arg(top)
                                .arg(bar.value())
                                .arg(bar.maximum())));
    }
    QVERIFY(m_editor->setZoom(2));
    m_editor->setContentHidden(true);
    m_editor->setContentHidden(false);
    QCOMPARE(m_editor->zoom(), 2.0);
    QCOMPARE(m_editor->content()->documentLayout()->paintDevice()->logicalDpiY(),
             2 * m_editor->logicalDpiY());
    QTest::keyClicks(m_editor.get(), u"typed"_s);
    QVERIFY(m_editor->toPlainText().contains(u"typed"_s));
}

void TestViewZoom::commandsAndWheelGoThroughTheSteps()
{
    m_commands->action(TextCommand::ZoomIn).trigger();
    QCOMPARE(m_editor->zoom(), 1.1);
    wheel(2 * QWheelEvent::DefaultDeltasPerStep);
    QCOMPARE(m_editor->zoom(), 1.5);
    wheel(-QWheelEvent::DefaultDeltasPerStep / 2);
    QCOMPARE(m_editor->zoom(), 1.5);
    wheel(-QWheelEvent::DefaultDeltasPerStep / 2);
    QCOMPARE(m_editor->zoom(), 1.25);
    wheel(100 * QWheelEvent::DefaultDeltasPerStep);
    m_commands->validate();
    QCOMPARE(m_editor->zoom(), 5.0);
    QVERIFY(!m_commands->action(TextCommand::ZoomIn).isEnabled());
    m_commands->action(TextCommand::ActualSize).trigger();
    QCOMPARE(m_editor->zoom(), 1.0);
    m_editor->setReadOnly(true);
    wheel(-QWheelEvent::DefaultDeltasPerStep);
    QCOMPARE(m_editor->zoom(), 0.9);
}

// About 7.5 million pixels: just below what is laid out in one piece, and twice that is paginated.
void TestViewZoom::aTallTextIsShownNoLargerThanItCanBe()
{
    const auto tallText = [] {
        auto document = std::make_unique<QTextDocument>();
        document->setUndoRedoEnabled(false);
        QFont font = manyThings()->defaultFont();
        font.setPointSizeF(400);
        document->setDefaultFont(font);
        QTextCursor(document.get()).insertText(QString(12'000, u'\n'));
        return document;
    };
    QVERIFY(m_editor->setZoom(5));
    const QSignalSpy zoomed(m_editor.get(), &TextEditor::zoomChanged);
    QCOMPARE(m_editor->showDocument(tallText()), TextEditor::ShowResult::Shown);
    QCOMPARE(m_editor->zoom(), 1.0);
    QCOMPARE(zoomed.count(), 1);
    QVERIFY(m_editor->setZoom(2));
    QVERIFY(!m_editor->setZoom(5));
    QCOMPARE(m_editor->zoom(), 2.0);
    m_editor->moveCursor(QTextCursor::End);
    QTest::keyClicks(m_editor.get(), u"end"_s);
    QVERIFY(m_editor->content()->lastBlock().layout()->lineCount() > 0);
    QVERIFY(m_editor->setZoom(1));
}

void TestViewZoom::theWheelGlidesAsFarAsItWouldJump()
{
    QScrollBar &bar = *m_editor->verticalScrollBar();
    const int jump = QApplication::wheelScrollLines() * bar.singleStep();
    wheel(-120, Qt::NoModifier);
    QCOMPARE(bar.value(), 0);
    wheel(-240, Qt::NoModifier);
    QTRY_VERIFY(bar.value() > 0);
    QSignalSpy places(&bar, &QScrollBar::valueChanged);
    wheel(-120, Qt::NoModifier);
    wheel(120, Qt::NoModifier);
    QCOMPARE(places.count(), 0); // it goes on from where it was
    QTRY_COMPARE(bar.value(), 3 * jump);
    wheel(-120, Qt::NoModifier);
    bar.setValue(200); // wins over a glide, and the next one begins there
    wheel(120, Qt::NoModifier);
    QTRY_COMPARE(bar.value(), 200 - jump);
    wheel(1200, Qt::NoModifier);
    QTRY_COMPARE(bar.value(), 0);
}

QTEST_MAIN(TestViewZoom)
#include "tst_viewzoom.moc"
