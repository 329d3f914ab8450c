#include "editor/editorview.h"
#include "editor/ruler.h"
#include "editor/rulermark.h"
#include "editor/tabstopsheet.h"
#include "editor/textcommands.h"
#include "support/manualqueue.h"
#include "support/scriptedwindow.h"
#include "support/writtentext.h"

#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QMouseEvent>
#include <QTextLayout>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

constexpr double centimetre = 96 / 2.54;

struct Page
{
    Page()
    {
        auto *column = new QVBoxLayout(&window);
        column->addWidget(ruler);
        column->addWidget(&editor);
        column->setContentsMargins(0, 0, 0, 0);
        window.resize(700, 400);
        window.show();
        editor.insertText(u"one\ttab\ntwo\ttab"_s);
        view.setRulerVisible(true);
        settle();
    }

    static void settle() { QCoreApplication::processEvents(); }

    RulerMark *mark(const QString &name) const
    {
        for (RulerMark *mark : ruler->findChildren<RulerMark *>()) {
            if (mark->accessibleName() == name && mark->isVisibleTo(ruler)) {
                return mark;
            }
        }
        return nullptr;
    }

    RulerMark *left() const { return mark(u"Left indent"_s); }

    /// Of the ruler, that many pixels from the margin.
    QPoint at(double pixels) const
    {
        return {int(std::lround(margin() + pixels)), ruler->height() - 4};
    }

    double margin() const { return editor.document()->documentMargin(); }

    void drag(RulerMark *mark, const QPoint &to)
    {
        const QPoint from = mark->rect().center();
        QTest::mousePress(mark, Qt::LeftButton, {}, from);
        QTest::mouseMove(mark, from + QPoint(0, 20)); // far enough to be a drag
        QTest::mouseMove(mark, mark->mapFromParent(to));
        QTest::mouseRelease(mark, Qt::LeftButton, {}, mark->mapFromParent(to));
        settle();
    }

    QString stops(int number = 0) const
    {
        QStringList parts;
        const auto list = tabStopsOf(editor.content()->findBlockByNumber(number));
        for (const TabStop &stop : list) {
            parts << QString::number(stop.position / centimetre, 'f', 1)
                    + QString(u"lrcd"[int(stop.type)])
                    + (stop.leader == '0' ? QString() : QString(QLatin1Char(stop.leader)));
        }
        return parts.join(u' ');
    }

    QTextBlockFormat format() const { return editor.textCursor().blockFormat(); }

    QWidget window;
    TextEditor editor;
    TextCommands commands;
    ManualQueue queue;
    ScriptedWindow sheets {queue};
    EditorView view {editor};
    Ruler *ruler = new Ruler(editor, commands, view, sheets);
};

} // namespace

class TestRuler : public QObject
{
    Q_OBJECT

private slots:
    void indentsAreDragged_data();
    void indentsAreDragged();
    void tabStopsAreMadeMovedAndTakenAway();
    void aTabStopIsWhereTheTextGoes();
    void allSelectedParagraphsChange();
    void keysDoWhatTheMouseDoes();
    void aStopIsEditedInASheet();
    void marksTellAssistiveProgramsWhatTheyAre();
    void nothingIsSaidOfATextThatIsHidden();
    void aTextThatCannotBeEditedStays();
};

void TestRuler::indentsAreDragged_data()
{
    QTest::addColumn<QString>("mark");
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("first");
    QTest::newRow("the left one takes the first line along") << u"Left indent"_s << 3.0 << 0.0;
    QTest::newRow("the first line goes alone") << u"First line indent"_s << 0.0 << 3.0;
}

void TestRuler::indentsAreDragged()
{
    QFETCH(QString, mark);
    QFETCH(double, left);
    QFETCH(double, first);
    Page page;
    page.drag(page.mark(mark), page.at(3 * centimetre + 1));
    QCOMPARE(page.format().leftMargin(), left * centimetre);
    QCOMPARE(page.format().textIndent(), first * centimetre);
    const auto read = savedAndRead(*page.editor.content());
    QVERIFY(std::abs(read->lastBlock().blockFormat().leftMargin() - left * centimetre) < 0.1);
    QCOMPARE(page.editor.undoNames().undoName(), u"Indents"_s);
    page.editor.undo();
    QCOMPARE(page.format().leftMargin() + page.format().textIndent(), 0.0);
}

void TestRuler::tabStopsAreMadeMovedAndTakenAway()
{
    Page page;
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(8 * centimetre));
    Page::settle();
    QCOMPARE(page.stops(1), u"4.0l 8.0l"_s);
    QCOMPARE(page.stops(0), QString());
    QCOMPARE(outlineOf(*savedAndRead(*page.editor.content())), outlineOf(*page.editor.content()));
    page.drag(page.mark(u"Left tab stop"_s), page.at(6 * centimetre));
    QCOMPARE(page.stops(1), u"6.0l 8.0l"_s);
    QCOMPARE(page.editor.undoNames().undoName(), u"Tab Stop"_s);
    page.editor.undo();
    QCOMPARE(page.stops(1), u"4.0l 8.0l"_s);
    Page::settle();
    page.drag(page.mark(u"Left tab stop"_s), page.at(4 * centimetre) + QPoint(0, 200));
    QCOMPARE(page.stops(1), u"8.0l"_s);
    page.editor.undo();
    page.editor.undo();
    page.editor.undo();
    QCOMPARE(page.stops(1), QString());
}

void TestRuler::aTabStopIsWhereTheTextGoes()
{
    Page page;
    page.drag(page.left(), page.at(2 * centimetre));
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(5 * centimetre));
    const QTextBlock block = page.editor.textCursor().block();
    QTextCursor behindTab(block);
    behindTab.setPosition(block.position() + 4);
    const int shown = page.editor.cursorRect(behindTab).left();
    QVERIFY(std::abs(shown - page.margin() - 5 * centimetre) <= 2);
    const int twips = int(std::lround(5 * centimetre * 15));
    QVERIFY(bodyFromDocument(*page.editor.content()).contains("\\tx" + QByteArray::number(twips)));
}

void TestRuler::allSelectedParagraphsChange()
{
    Page page;
    page.editor.selectAll();
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    QCOMPARE(page.stops(0) + u'/' + page.stops(1), u"4.0l/4.0l"_s);
    page.editor.undo();
    QCOMPARE(page.stops(0) + u'/' + page.stops(1), u"/"_s);
}

void TestRuler::keysDoWhatTheMouseDoes()
{
    Page page;
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    page.window.activateWindow();
    page.editor.setFocus();
    page.commands.validate();
    page.commands.action(TextCommand::GoToRuler).trigger();
    QCOMPARE(page.window.focusWidget(), page.mark(u"First line indent"_s));
    RulerMark *stop = page.mark(u"Left tab stop"_s);
    QVERIFY(stop && stop->focusPolicy() & Qt::TabFocus);
    stop->setFocus();
    QTest::keyClick(stop, Qt::Key_PageUp);
    QCOMPARE(page.stops(1), u"5.0l"_s);
    QTest::keyClick(page.mark(u"Left tab stop"_s), Qt::Key_Delete);
    QCOMPARE(page.stops(1), QString());
    QTest::keyClick(page.left(), Qt::Key_Escape);
    QCOMPARE(page.window.focusWidget(), &page.editor);
}

void TestRuler::aStopIsEditedInASheet()
{
    Page page;
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    QTest::mouseDClick(page.mark(u"Left tab stop"_s), Qt::LeftButton);
    auto *sheet = page.window.findChild<TabStopSheet *>();
    QVERIFY(sheet && sheet->isVisible());
    sheet->findChild<QDoubleSpinBox *>()->setValue(9);
    const QList<QComboBox *> boxes = sheet->findChildren<QComboBox *>();
    boxes.at(0)->setCurrentText(u"Right"_s);
    boxes.at(1)->setCurrentIndex(1);
    sheet->accept();
    page.queue.runAll();
    QCOMPARE(page.stops(1), u"9.0r1"_s);
    const auto read = savedAndRead(*page.editor.content());
    const QList<TabStop> stops = tabStopsOf(read->lastBlock());
    QVERIFY(stops.size() == 1 && stops.first().leader == '1');
    const QImage dotted = page.editor.viewport()->grab().toImage();
    page.editor.undo();
    Page::settle();
    QVERIFY(page.mark(u"Left tab stop"_s));
    QVERIFY(page.editor.viewport()->grab().toImage() != dotted);
}

void TestRuler::marksTellAssistiveProgramsWhatTheyAre()
{
    Page page;
    page.drag(page.left(), page.at(2 * centimetre));
    QAccessibleInterface *mark = QAccessible::queryAccessibleInterface(page.left());
    QVERIFY(mark && mark->valueInterface());
    QCOMPARE(mark->role(), QAccessible::Slider);
    QCOMPARE(mark->text(QAccessible::Name), u"Left indent"_s);
    QCOMPARE(mark->text(QAccessible::Description), u"2.00\u00a0cm"_s);
    mark->valueInterface()->setCurrentValue(720);
    QCOMPARE(page.format().leftMargin(), 48.0);
}

void TestRuler::nothingIsSaidOfATextThatIsHidden()
{
    Page page;
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    page.editor.setContentHidden(true);
    Page::settle();
    QVERIFY(!page.left());
    QVERIFY(!page.mark(u"Left tab stop"_s));
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(6 * centimetre));
    page.editor.setContentHidden(false);
    Page::settle();
    QVERIFY(page.mark(u"Left tab stop"_s));
    QCOMPARE(page.stops(1), u"4.0l"_s);
}

void TestRuler::aTextThatCannotBeEditedStays()
{
    Page page;
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(4 * centimetre));
    page.editor.setReadOnly(true);
    Page::settle();
    QTest::mouseClick(page.ruler, Qt::LeftButton, {}, page.at(6 * centimetre));
    QVERIFY(!page.left()->isEnabled() && !page.mark(u"Left tab stop"_s)->isEnabled());
    QCOMPARE(page.stops(1), u"4.0l"_s);
    page.commands.validate();
    page.commands.action(TextCommand::ShowRuler).trigger();
    QVERIFY(page.ruler->isHidden());
}

QTEST_MAIN(TestRuler)
#include "tst_ruler.moc"
