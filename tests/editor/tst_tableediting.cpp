#include "editor/statusbar.h"
#include "editor/tablesheet.h"
#include "editor/tabletest.h"

#include <QAbstractTextDocumentLayout>
#include <QCheckBox>
#include <QClipboard>
#include <QLabel>
#include <QMimeData>
#include <QSpinBox>
#include <QTextLayout>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

/// The words of a table by row: "a b*2 | c", where a cell that covers more tells how many rows and
/// columns in "name*columns/rows".
QString wordsOf(const QTextTable &table)
{
    QStringList rows;
    for (int row = 0; row < table.rows(); ++row) {
        QStringList cells;
        for (int column = 0; column < table.columns(); ++column) {
            const QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() != row || cell.column() != column) {
                continue;
            }
            QTextCursor cursor = cell.firstCursorPosition();
            cursor.setPosition(cell.lastPosition(), QTextCursor::KeepAnchor);
            const QString words = cursor.selectedText().replace(QChar(0x2029), u'+');
            cells << (words.isEmpty() ? u"-"_s : words)
                    + (cell.columnSpan() > 1 ? u"*%1"_s.arg(cell.columnSpan()) : QString())
                    + (cell.rowSpan() > 1 ? u"/%1"_s.arg(cell.rowSpan()) : QString());
        }
        rows << cells.join(u' ');
    }
    return rows.join(u" | "_s);
}

} // namespace

class TestTableEditing : public TableTest
{
    Q_OBJECT

private:
    void show(const QString &text) { showText(editor(), text); }

    void insertTable(int rows, int columns, bool hasHeader = false)
    {
        run(TextCommand::InsertTable);
        auto *sheet = m_window->findChild<TableSheet *>();
        QVERIFY(sheet && sheet->isVisible());
        const auto counters = sheet->findChildren<QSpinBox *>();
        counters.at(0)->setValue(rows);
        counters.at(1)->setValue(columns);
        sheet->findChild<QCheckBox *>()->setChecked(hasHeader);
        QTest::keyClick(sheet, Qt::Key_Return);
        m_queue.runAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    /// A table of one letter and one figure a cell, merged as told: row, column, rows, columns.
    void showTable(int rows, int columns, const QList<TableArea> &merged = {})
    {
        show(u"before"_s);
        editor().moveCursor(QTextCursor::End);
        insertTable(rows, columns);
        QTextTable &made = table();
        for (const TableArea &area : merged) {
            mergeTableCells(made, area);
        }
        for (int row = 0; row < rows; ++row) {
            for (int column = 0; column < columns; ++column) {
                const QTextTableCell cell = made.cellAt(row, column);
                if (cell.row() == row && cell.column() == column) {
                    cell.firstCursorPosition().insertText(
                        QChar(u'a' + row) + QString::number(column), QTextCharFormat());
                }
            }
        }
        showText(editor(), savedAndRead(content()));
    }

    void select(const TableArea &area)
    {
        QTextTable &in = table();
        QTextCursor cursor = in.cellAt(area.row, area.column).firstCursorPosition();
        if (area.rows * area.columns > 1) {
            const QTextTableCell last =
                in.cellAt(area.row + area.rows - 1, area.column + area.columns - 1);
            cursor.setPosition(last.firstPosition(), QTextCursor::KeepAnchor);
        }
        editor().setTextCursor(cursor);
    }

    void key(Qt::Key code, Qt::KeyboardModifiers modifiers = {})
    {
        QTest::keyClick(&editor(), code, modifiers);
    }

private slots:

    void init()
    {
        makeWindow();
        m_window->show();
    }

    void aNewTableStandsBetweenParagraphsAndIsReadBack_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("caret");
        QTest::addColumn<QString>("around");
        QTest::newRow("in an empty text") << u""_s << 0 << u"T|"_s;
        QTest::newRow("behind a text") << u"one"_s << 3 << u"one|T|"_s;
        QTest::newRow("in a paragraph") << u"one two"_s << 3 << u"one|T| two"_s;
        QTest::newRow("in an empty paragraph, which comes behind it")
            << u"one\n\ntwo"_s << 4 << u"one|T||two"_s;
        QTest::newRow("in an empty paragraph at the end") << u"one\n"_s << 4 << u"one|T|"_s;
    }

    void aNewTableStandsBetweenParagraphsAndIsReadBack()
    {
        QFETCH(QString, text);
        QFETCH(int, caret);
        QFETCH(QString, around);
        show(text);
        QTextCursor cursor = editor().textCursor();
        cursor.setPosition(caret);
        editor().setTextCursor(cursor);
        insertTable(2, 3, true);
        QCOMPARE(editor().textCursor().currentTable(), &table());
        QCOMPARE(editor().undoNames().undoName(), u"Insert Table"_s);
        QStringList parts;
        for (auto it = content().rootFrame()->begin(); !it.atEnd(); ++it) {
            const bool isUnwritten = it.currentBlock().isValid()
                && it.currentBlock().blockFormat().boolProperty(BeforeTable);
            if (!isUnwritten) {
                parts << (it.currentFrame() ? u"T"_s : it.currentBlock().text());
            }
        }
        QCOMPARE(parts.join(u'|'), around);
        QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
        QTest::keyClicks(&editor(), u"bold"_s);
        QVERIFY(editor().textCursor().charFormat().fontWeight() > QFont::Normal);
        while (content().isUndoAvailable()) {
            editor().undo();
        }
        QCOMPARE(content().toPlainText(), text);
    }

    void commandsChangeTheTableInOneStep_data();
    void commandsChangeTheTableInOneStep();

    void tabGoesOnAndAddsARowAtTheEnd()
    {
        showTable(2, 2);
        select({0, 1});
        key(Qt::Key_Tab);
        QCOMPARE(editor().textCursor().selectedText(), u"b0"_s);
        key(Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(editor().textCursor().selectedText(), u"a1"_s);
        select({0, 0});
        key(Qt::Key_Backtab, Qt::ShiftModifier);
        QVERIFY(!content().isUndoAvailable());
        select({1, 1});
        key(Qt::Key_Tab);
        QCOMPARE(wordsOf(table()), u"a0 a1 | b0 b1 | - -"_s);
        QCOMPARE(table().cellAt(editor().textCursor()).row(), 2);
        QCOMPARE(editor().undoNames().undoName(), u"Insert Row"_s);
        editor().undo();
        QCOMPARE(wordsOf(table()), u"a0 a1 | b0 b1"_s);
        key(Qt::Key_Tab, Qt::ControlModifier);
        QVERIFY(wordsOf(table()).contains(u'\t'));
    }

    void deletingAWhollySelectedTableRemovesIt()
    {
        for (const Qt::Key pressed : {Qt::Key_Backspace, Qt::Key_Delete}) {
            showTable(2, 2);
            select({0, 0, 2, 1});
            key(pressed); // a column alone is emptied
            QCOMPARE(wordsOf(table()), u"- a1 | - b1"_s);
            select({0, 0, 2, 2});
            key(pressed);
            QCOMPARE(content().toPlainText(), u"before\n"_s);
            editor().undo();
            QCOMPARE(wordsOf(table()), u"- a1 | - b1"_s);
        }
    }

    void deletingAColumnNextToMergedCellsKeepsTheOtherOne()
    {
        showTable(3, 2, {{1, 0, 1, 2}});
        select({0, 0, 3, 1});
        key(Qt::Key_Delete);
        const QString left = content().toPlainText();
        QVERIFY(left.contains(u"a1"_s) && left.contains(u"c1"_s));
    }

    void aTextWithNothingButATableIsEmptyWhenItGoes()
    {
        show(u""_s);
        insertTable(1, 2);
        run(TextCommand::DeleteTable);
        QCOMPARE(content().blockCount(), 1);
        QCOMPARE(DescribedText::of(content()), QString());
    }

    void oneCanWriteBeforeAndBehindATable()
    {
        show(u""_s);
        insertTable(1, 1);
        key(Qt::Key_Home, Qt::ControlModifier);
        QTest::keyClicks(&editor(), u"up"_s);
        key(Qt::Key_End, Qt::ControlModifier);
        QTest::keyClicks(&editor(), u"down"_s);
        QVERIFY(DescribedText::of(content()).startsWith(u"{"_s));
        QCOMPARE(content().firstBlock().text(), u"up"_s);
        QCOMPARE(content().lastBlock().text(), u"down"_s);
    }

    void aTableInACellIsReadBack()
    {
        showTable(1, 2);
        for (const int column : {0, 1}) {
            select({0, column});
            editor().moveCursor(QTextCursor::EndOfBlock);
            key(Qt::Key_Return);
            insertTable(1, 2);
            QCOMPARE(tableDepthAt(editor().textCursor()), 2);
            QTest::keyClicks(&editor(), u"in"_s);
        }
        select({0, 0});
        run(TextCommand::InsertColumnLeft);
        insertTable(1, 1);
        QCOMPARE(savedAndReadAgain().split(u'('), DescribedText::of(content()).split(u'('));
    }

    void everyLineOfALongTextIsSeenBehindATable()
    {
        show(QString(u"line\n"_s).repeated(20000));
        QVERIFY(content().lastBlock().layout()->lineCount() == 0); // nobody looked yet
        insertTable(3, 3);
        run(TextCommand::InsertRowBelow);
        QVERIFY(content().lastBlock().layout()->lineCount() > 0);
        editor().undo();
        editor().undo();
        QVERIFY(content().lastBlock().layout()->lineCount() > 0);
    }

    void whatIsTypedIntoACellHasNoLookOfACell()
    {
        showTable(1, 2);
        select({0, 0});
        run(TextCommand::InsertRowBelow);
        QTextTableCell cell = table().cellAt(1, 0);
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        format.setBackground(Qt::yellow);
        cell.setFormat(format);
        select({0, 0});
        select({1, 0});
        QTest::keyClicks(&editor(), u"x"_s);
        const QTextCharFormat typed = editor().textCursor().charFormat();
        QVERIFY(!typed.hasProperty(QTextFormat::BackgroundBrush));
        QVERIFY(!typed.hasProperty(QTextFormat::TableCellLeftPadding));
        QVERIFY(table().cellAt(1, 0).format().hasProperty(QTextFormat::BackgroundBrush));
    }

    void returnBeforeATableMakesAParagraphToWriteIn()
    {
        show(u""_s);
        insertTable(1, 1);
        key(Qt::Key_Home, Qt::ControlModifier);
        const QTextBlock cell = table().cellAt(0, 0).firstCursorPosition().block();
        const auto top = [&] {
            return content().documentLayout()->blockBoundingRect(cell).top();
        };
        const double former = top();
        key(Qt::Key_Return);
        QVERIFY(top() > former + 5);
        QTest::keyClicks(&editor(), u"up"_s);
        QVERIFY(savedAndReadAgain().startsWith(u"up\ntable 1x1"_s));
        editor().undo();
        editor().undo();
        QCOMPARE(top(), former);
        QCOMPARE(content().blockCount(), 3);
    }

    void tablesStayApartWithoutTextBetweenThem()
    {
        show(u""_s);
        insertTable(1, 1);
        key(Qt::Key_Home, Qt::ControlModifier);
        key(Qt::Key_Return);
        insertTable(1, 1);
        QTextCursor behind(&content());
        behind.setPosition(table().lastPosition() + 1);
        editor().setTextCursor(behind);
        key(Qt::Key_Delete);
        QCOMPARE(savedAndReadAgain().count(u"table 1x1"_s), 2);
    }

    void whatIsSelectedInATableIsCounted()
    {
        show(u""_s);
        insertTable(2, 2);
        for (const auto &words : {u"apples"_s, u"so many"_s, u"pears"_s, u"x"_s}) {
            QTest::keyClicks(&editor(), words);
            key(Qt::Key_Tab);
        }
        StatusBar bar(editor(), m_window->commands());
        bar.resize(900, bar.sizeHint().height());
        bar.show();
        QTextCursor cursor = table().cellAt(0, 0).firstCursorPosition();
        cursor.setPosition(table().cellAt(1, 0).firstPosition(), QTextCursor::KeepAnchor);
        editor().setTextCursor(cursor);
        const auto *label = bar.findChild<QLabel *>();
        QTRY_COMPARE(label->text().remove(u' '), u"Selected:2words·11characters·2paragraphs"_s);
    }

    void pastedTablesHaveBordersAndRoom_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<double>("border");
        QTest::addColumn<QColor>("colour");
        QTest::addColumn<double>("padding");
        QTest::newRow("as new tables have, where nothing is told")
            << u"<table><tr><td>A</td></tr></table>"_s << 1.0 << QColor(0x96, 0x96, 0x96) << 6.0;
        QTest::newRow("those of the table")
            << u"<table border=3 cellpadding=7 style='border-color:#008000'><tr><td>A</td></tr>"
               "</table>"_s
            << 3.0 << QColor(0, 0x80, 0) << 7.0;
        QTest::newRow("those of the cell")
            << u"<table border=1><tr><td style='border:2px solid #ff0000;padding:5px'>A</td></tr>"
               "</table>"_s
            << 2.0 << QColor(0xff, 0, 0) << 5.0;
        QTest::newRow("no border, as is told")
            << u"<table><tr><td style='border:none'>A</td></tr></table>"_s << 0.0 << QColor()
            << 6.0;
    }

    void pastedTablesHaveBordersAndRoom()
    {
        QFETCH(QString, html);
        show(u"one"_s);
        auto data = std::make_unique<QMimeData>();
        data->setHtml(html);
        QGuiApplication::clipboard()->setMimeData(data.release());
        editor().paste();
        const auto format = table().cellAt(0, 0).format().toTableCellFormat();
        QTEST(format.leftBorder(), "border");
        QTEST(format.leftPadding(), "padding");
        if (format.leftBorder() > 0) {
            QTEST(format.leftBorderBrush().color(), "colour");
        }
        QCOMPARE(savedAndReadAgain(), DescribedText::of(content()));
    }

    void aTextThatMayNotBeChangedHasNoCommandsOnTables()
    {
        showTable(2, 2);
        select({1, 1});
        m_window->setReadOnly(true);
        for (const TextCommand command :
             {TextCommand::InsertTable, TextCommand::InsertRowBelow, TextCommand::DeleteTable}) {
            QVERIFY(!m_window->commands().action(command).isEnabled());
        }
        key(Qt::Key_Tab);
        key(Qt::Key_Tab, Qt::ControlModifier);
        select({0, 0, 2, 2});
        key(Qt::Key_Delete);
        QCOMPARE(wordsOf(table()), u"a0 a1 | b0 b1"_s);
    }
};

void TestTableEditing::commandsChangeTheTableInOneStep_data()
{
    using Command = TextCommand;
    using Areas = QList<TableArea>;
    QTest::addColumn<Areas>("merged");
    QTest::addColumn<TextCommand>("command");
    QTest::addColumn<TableArea>("selected");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const Areas &merged, Command command,
                        const TableArea &selected, const QString &expected) {
        QTest::newRow(name) << merged << command << selected << expected;
    };
    row("a row above", {}, Command::InsertRowAbove, {0, 1},
        u"- - - | a0 a1 a2 | b0 b1 b2 | c0 c1 c2"_s);
    row("as many rows below as are selected", {}, Command::InsertRowBelow, {1, 0, 2, 1},
        u"a0 a1 a2 | b0 b1 b2 | c0 c1 c2 | - - - | - - -"_s);
    row("a row within a merged cell", {{0, 1, 2, 2}}, Command::InsertRowBelow, {0, 0},
        u"a0 a1*2/3 | - | b0 | c0 c1 c2"_s);
    row("a row beside cells merged across", {{1, 0, 1, 2}}, Command::InsertRowBelow, {1, 2},
        u"a0 a1 a2 | b0*2 b2 | -*2 - | c0 c1 c2"_s);
    row("a column to the left", {}, Command::InsertColumnLeft, {1, 0},
        u"- a0 a1 a2 | - b0 b1 b2 | - c0 c1 c2"_s);
    row("a column within a merged cell", {{0, 0, 2, 2}}, Command::InsertColumnRight, {2, 0},
        u"a0*3/2 a2 | b2 | c0 - c1 c2"_s);
    row("a column beside cells merged down", {{0, 1, 2, 1}}, Command::InsertColumnRight, {2, 1},
        u"a0 a1/2 -/2 a2 | b0 b2 | c0 c1 - c2"_s);
    row("a row goes", {}, Command::DeleteRows, {1, 2}, u"a0 a1 a2 | c0 c1 c2"_s);
    row("a merged cell whose first row goes is kept", {{0, 1, 2, 2}}, Command::DeleteRows, {0, 0},
        u"b0 a1*2 | c0 c1 c2"_s);
    row("the row in the middle of a merged cell", {{0, 1, 3, 1}}, Command::DeleteRows, {1, 0},
        u"a0 a1/2 a2 | c0 c2"_s);
    row("rows with a whole merged cell", {{0, 0, 2, 2}}, Command::DeleteRows, {0, 0},
        u"c0 c1 c2"_s);
    row("columns go", {}, Command::DeleteColumns, {0, 0, 1, 2}, u"a2 | b2 | c2"_s);
    row("a merged cell whose first column goes is kept", {{1, 0, 2, 2}}, Command::DeleteColumns,
        {0, 0}, u"a1 a2 | b0/2 b2 | c2"_s);
    row("cells are merged", {}, Command::MergeCells, {0, 0, 2, 2},
        u"a0 a1+b0 b1*2/2 a2 | b2 | c0 c1 c2"_s);
    row("what is merged takes whole cells", {{1, 1, 2, 1}}, Command::MergeCells, {0, 1, 2, 1},
        u"a0 a1+b1/3 a2 | b0 b2 | c0 c2"_s);
    row("a cell is split", {{1, 1, 2, 2}}, Command::SplitCell, {1, 1},
        u"a0 a1 a2 | b0 b1 - | c0 - -"_s);
}

void TestTableEditing::commandsChangeTheTableInOneStep()
{
    QFETCH(QList<TableArea>, merged);
    QFETCH(TextCommand, command);
    QFETCH(TableArea, selected);
    QFETCH(QString, expected);
    showTable(3, 3, merged);
    const QString before = DescribedText::of(content());
    select(selected);
    run(command);
    QCOMPARE(wordsOf(table()), expected);
    const QString after = DescribedText::of(content());
    for (int row = 0; row < table().rows(); ++row) { // new cells look like the others
        for (int column = 0; column < table().columns(); ++column) {
            const auto format = table().cellAt(row, column).format().toTableCellFormat();
            QCOMPARE(format.leftBorder(), 1.0);
            QVERIFY(format.leftPadding() > 0);
        }
    }
    QCOMPARE(savedAndReadAgain(), after);
    editor().undo();
    QVERIFY(!content().isUndoAvailable());
    QCOMPARE(DescribedText::of(content()), before);
    editor().redo();
    QCOMPARE(DescribedText::of(content()), after);
}

Q_DECLARE_METATYPE(TableArea)

QTEST_MAIN(TestTableEditing)
#include "tst_tableediting.moc"
