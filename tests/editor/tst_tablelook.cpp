#include "editor/columnresizing.h"
#include "editor/tablegeometry.h"
#include "editor/tablelook.h"
#include "editor/tablemarks.h"
#include "editor/tablepropertiessheet.h"
#include "editor/tabletest.h"
#include "editor/tablewidths.h"

#include <QAbstractTextDocumentLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>

#include <cmath>

using namespace Qt::StringLiterals;
using namespace quorvane;

class TestTableLook : public TableTest
{
    Q_OBJECT

private:
    std::unique_ptr<TableMarks> m_marks;
    std::unique_ptr<ColumnResizing> m_columns;

    TablePropertiesSheet *askForProperties()
    {
        run(TextCommand::TableProperties);
        return m_window->findChild<TablePropertiesSheet *>();
    }

    template <typename Field> static Field &named(const QWidget &sheet, const QString &name)
    {
        for (Field *field : sheet.findChildren<Field *>()) {
            if (field->accessibleName() == name) {
                return *field;
            }
        }
        qFatal("there is no such field");
    }

    static void choose(const QWidget &sheet, const QString &name, const QString &item)
    {
        auto &box = named<QComboBox>(sheet, name);
        box.setCurrentIndex(box.findText(item));
        emit box.activated(box.currentIndex());
    }

    void drag(const QPointF &from, double to)
    {
        QWidget *view = editor().viewport();
        QTest::mousePress(view, Qt::LeftButton, {}, from.toPoint());
        const QPointF place(to, from.y());
        QMouseEvent move(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton,
                         Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &move);
        QTest::mouseRelease(view, Qt::LeftButton, {}, place.toPoint());
    }

private slots:

    void init()
    {
        m_columns.reset();
        m_marks.reset();
        makeWindow();
        m_marks = std::make_unique<TableMarks>(editor());
        m_columns = std::make_unique<ColumnResizing>(editor());
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        cursor.insertText(u"before"_s);
        insertTable(cursor, 2, 4, false);
        showText(editor(), std::move(document));
        editor().setTextCursor(table().cellAt(0, 1).firstCursorPosition());
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    void theSheetChangesWhatItWasToldTo()
    {
        const QString before = DescribedText::of(content());
        TablePropertiesSheet *sheet = askForProperties();
        QVERIFY(sheet && sheet->isVisible());
        QCOMPARE(named<QDoubleSpinBox>(*sheet, u"Column Width"_s).value(), 25.0);
        named<QDoubleSpinBox>(*sheet, u"Column Width"_s).setValue(15);
        choose(*sheet, u"Alignment"_s, u"Centre"_s);
        sheet->findChild<QCheckBox *>()->setChecked(true);
        choose(*sheet, u"Shading"_s, u"Yellow"_s);
        choose(*sheet, u"Vertical Alignment"_s, u"Middle"_s);
        QTest::keyClick(sheet, Qt::Key_Return);
        m_queue.runAll();
        QCOMPARE(editor().undoNames().undoName(), u"Table Properties"_s);
        QCOMPARE(table().format().headerRowCount(), 1);
        QCOMPARE(table().format().alignment(), Qt::AlignHCenter);
        QCOMPARE(widthsOf(table()).at(1).rawValue(), 15.0);
        const auto changed = table().cellAt(0, 1).format().toTableCellFormat();
        QCOMPARE(changed.background().color(), QColor(0xff, 0xe0, 0x66));
        QCOMPARE(changed.verticalAlignment(), QTextCharFormat::AlignMiddle);
        QCOMPARE(changed.leftBorder(), 1.0); // nobody said anything of borders
        QVERIFY(!table().cellAt(0, 0).format().hasProperty(QTextFormat::BackgroundBrush));
        QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
        editor().undo();
        QVERIFY(!content().isUndoAvailable());
        QCOMPARE(DescribedText::of(content()), before);
    }

    void bordersGoAndComeForAllCells()
    {
        TablePropertiesSheet *sheet = askForProperties();
        choose(*sheet, u"Apply to"_s, u"All Cells"_s);
        choose(*sheet, u"Borders"_s, u"None"_s);
        QTest::keyClick(sheet, Qt::Key_Return);
        m_queue.runAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (int column = 0; column < 4; ++column) {
            QCOMPARE(table().cellAt(1, column).format().toTableCellFormat().topBorder(), 0.0);
        }
        QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
        QPixmap shown = editor().viewport()->grab(); // the grid, which is no part of the text
        const std::vector<double> edges = columnEdges(table());
        const double y = rowEdges(table(), 0, 0).front() + 4;
        const QImage image = shown.toImage();
        bool hasLine = false;
        for (int x = int(edges[1]) - 1; x <= int(edges[1]) + 2; ++x) {
            for (int dy = 0; dy < 4; ++dy) {
                hasLine = hasLine || image.pixelColor(x, int(y) + dy).lightness() < 230;
            }
        }
        QVERIFY(hasLine);
        sheet = askForProperties();
        choose(*sheet, u"Apply to"_s, u"All Cells"_s);
        choose(*sheet, u"Borders"_s, u"Thick"_s);
        choose(*sheet, u"Border Colour"_s, u"Blue"_s);
        QTest::keyClick(sheet, Qt::Key_Return);
        m_queue.runAll();
        const auto format = table().cellAt(1, 3).format().toTableCellFormat();
        QCOMPARE(format.bottomBorder(), 3.0);
        QCOMPARE(format.bottomBorderBrush().color(), QColor(0x2a, 0x7f, 0xde));
        QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
    }

    void selectedCellsAreSeenThoughTheyAreEmpty()
    {
        const std::vector<double> columns = columnEdges(table());
        const std::vector<double> rows = rowEdges(table(), 0, 1);
        const auto colourOf = [&](std::size_t column) {
            const QPoint place(int(columns[column + 1]) - 10, int(rows[2]) - 6);
            return editor().viewport()->grab().toImage().pixelColor(place);
        };
        const QColor paper = colourOf(2);
        QTextCursor cursor = table().cellAt(0, 0).firstCursorPosition();
        cursor.setPosition(table().cellAt(1, 1).firstPosition(), QTextCursor::KeepAnchor);
        editor().setTextCursor(cursor);
        QVERIFY(colourOf(1) != paper);
        QCOMPARE(colourOf(2), paper);
    }

    void aTableThatIsGoneWhenTheSheetEndsIsLeftAlone()
    {
        TablePropertiesSheet *sheet = askForProperties();
        auto other = std::make_unique<QTextDocument>();
        QCOMPARE(editor().showDocument(std::move(other)), TextEditor::ShowResult::Shown);
        QTest::keyClick(sheet, Qt::Key_Return);
        m_queue.runAll();
        QVERIFY(!content().isUndoAvailable());
    }

    void bordersOfColumnsAreDragged_data()
    {
        QTest::addColumn<int>("edge");
        QTest::addColumn<double>("by");
        QTest::addColumn<QList<double>>("expected");
        QTest::newRow("inside") << 1 << 80.0 << QList<double> {35, 15, 25, 25};
        QTest::newRow("not over the next one") << 2 << 900.0 << QList<double> {25, 47.5, 2.5, 25};
        QTest::newRow("the last one") << 4 << -80.0 << QList<double> {25, 25, 25, 15};
        QTest::newRow("not beyond the text") << 4 << 300.0 << QList<double> {25, 25, 25, 25};
    }

    void bordersOfColumnsAreDragged()
    {
        QFETCH(int, edge);
        QFETCH(double, by);
        QFETCH(QList<double>, expected);
        m_window->resize(828, 600);
        const std::vector<double> edges = columnEdges(table());
        QVERIFY(std::abs(roomOf(table()) - edges.back() + edges.front()) < 3);
        const QPointF place(edges[std::size_t(edge)], rowEdges(table(), 0, 0).front() + 8);
        QMouseEvent move(QEvent::MouseMove, place, editor().viewport()->mapToGlobal(place),
                         Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(editor().viewport(), &move);
        QCOMPARE(editor().viewport()->cursor().shape(), Qt::SplitHCursor);
        drag(place, place.x() + by);
        for (int i = 0; i < 4; ++i) {
            QVERIFY2(std::abs(widthsOf(table()).at(i).rawValue() - expected.at(i)) < 0.6,
                     qPrintable(QString::number(widthsOf(table()).at(i).rawValue())));
        }
        if (expected != QList<double> {25, 25, 25, 25}) {
            QCOMPARE(editor().undoNames().undoName(), u"Resize Column"_s);
            QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
            editor().undo();
            QCOMPARE(widthsOf(table()).at(edge - 1).rawValue(), 25.0);
        }
        QVERIFY(!content().isUndoAvailable());
    }

    void aReadOnlyTableIsNotDragged()
    {
        m_window->setReadOnly(true);
        const QPointF place(columnEdges(table())[1], rowEdges(table(), 0, 0).front() + 8);
        drag(place, place.x() + 50);
        QCOMPARE(widthsOf(table()).at(0).rawValue(), 25.0);
    }
};

QTEST_MAIN(TestTableLook)
#include "tst_tablelook.moc"
