#include "editor/listediting.h"
#include "editor/listlevels.h"
#include "editor/listmarkpainter.h"
#include "editor/paragraphbreaks.h"
#include "editor/paragraphstyles.h"
#include "support/writtentext.h"

#include <QMenu>
#include <QScrollBar>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

struct Page : WrittenPage
{
    explicit Page(const QString &text = {})
        : WrittenPage(text)
    { }

    QStringList outline() const { return outlineOf(*editor.content()); }

    ParagraphStyles paragraphs {editor, commands, window};
    ParagraphBreaks breaks {editor, commands};
    ListEditing lists {editor, commands};
};

QMenu *filledStyles(Page &page, QMenu &menu)
{
    page.commands.attach(TextMenu::ListStyle, menu);
    emit menu.aboutToShow();
    return &menu;
}

void choose(QMenu &menu, const QString &title)
{
    for (QAction *action : menu.actions()) {
        if (action->text().contains(title)) {
            action->trigger();
            return;
        }
    }
    QFAIL(qPrintable(title));
}

QPoint middleOfBox(const TextEditor &editor, const QTextBlock &item)
{
    return (listMarkPlace(item).center() - QPointF(0, editor.verticalScrollBar()->value()))
        .toPoint();
}

QRect inkIn(const QImage &shown, const QRect &place)
{
    QRegion ink;
    for (int x = place.left(); x <= place.right(); ++x) {
        for (int y = place.top(); y <= place.bottom(); ++y) {
            ink += qGray(shown.pixel(x, y)) < 128 ? QRect(x, y, 1, 1) : QRect();
        }
    }
    return ink.boundingRect();
}

} // namespace

class TestListEditing : public QObject
{
    Q_OBJECT

private slots:
    void keysMakeLists_data();
    void keysMakeLists();
    void commandsMakeLists_data();
    void commandsMakeLists();
    void aTypedMarkIsAStepOfItsOwn();
    void stylesAreOfTheWholeList();
    void numbersGoOnAndBeginAnew();
    void aClickOnABoxTogglesIt();
    void anItemThatIsDoneIsFollowedByOneThatIsNot();
    void aTextThatCannotBeEditedKeepsItsLists();
    void marksOfOurOwnAreDrawn();
    void marksAreDrawnBesideACellThatReachesOutOfView();
    void bulletsStandBesideTheMiddleOfSmallLetters();
    void backspaceTakesTheMarkAndLeavesTheTextInPlace();
};

void TestListEditing::keysMakeLists_data()
{
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QStringList>("outline");
    const auto row = [](const char *name, const QString &keys, const QStringList &outline) {
        QTest::newRow(name) << keys << outline;
    };
    row("a hyphen begins bullets", u"- a\nb"_s, {u"• a"_s, u"• b"_s});
    row("an asterisk too", u"* a"_s, {u"• a"_s});
    row("a number begins numbers", u"1. a\nb"_s, {u"1. a"_s, u"2. b"_s});
    row("with the suffix and the start that were typed", u"7) a\nb"_s, {u"7) a"_s, u"8) b"_s});
    row("brackets begin a checklist", u"[] a\nb"_s, {u"☐ a"_s, u"☐ b"_s});
    row("before a text that is there", u"a<- "_s, {u"• a"_s});
    row("but not behind one", u"a - 1. [] "_s, {u"a - 1. [] "_s});
    row("nor a number alone", u"1 a"_s, {u"1 a"_s});
    row("typed numbers go on with the list above", u"1. a\n\n2. b"_s, {u"1. a"_s, u"2. b"_s});
    row("undo gives back what was typed", u"- ~"_s, {u"- "_s});
    row("Tab makes an item deeper, in the marks of its level", u"- a\n\tb\n\tc"_s,
        {u"• a"_s, u"    ◦ b"_s, u"        ▪ c"_s});
    row("numbers of each level count by themselves", u"1. a\n\tb\nc\n\vd\n\te"_s,
        {u"1. a"_s, u"    a. b"_s, u"    b. c"_s, u"2. d"_s, u"    a. e"_s});
    row("Tab within a text is a tab", u"- a\tb"_s, {u"• a\tb"_s});
    row("Shift+Tab from the outermost level leaves", u"- a\v"_s, {u"a"_s});
    row("Shift+Tab between deeper items begins those behind anew", u"1. a\n\tb\nc\nd^\v"_s,
        {u"1. a"_s, u"    a. b"_s, u"2. c"_s, u"    a. d"_s});
    row("Return on an empty item goes a level out", u"- a\n\tb\n\nc"_s,
        {u"• a"_s, u"    ◦ b"_s, u"• c"_s});
    row("and from the outermost one leaves", u"- a\n\nb"_s, {u"• a"_s, u"b"_s});
    row("Backspace takes the mark first, then the indent, then the paragraph's end", u"- a\nb<\b"_s,
        {u"• a"_s, u"b"_s});
    row("then the indent", u"- a\nb<\b\b"_s, {u"• a"_s, u"b"_s});
    row("then the end of the paragraph above", u"- a\nb<\b\b\b"_s, {u"• ab"_s});
    row("items beside a new one are one list with it", u"1. a\nb\nc^<\b\b2. "_s,
        {u"1. a"_s, u"2. b"_s, u"3. c"_s});
}

void TestListEditing::keysMakeLists()
{
    QFETCH(QString, keys);
    QFETCH(QStringList, outline);
    Page page;
    typeKeys(page.editor, keys);
    QCOMPARE(page.outline(), outline);
    QCOMPARE(outlineOf(*savedAndRead(*page.editor.content())), outline);
    while (page.editor.document()->isUndoAvailable()) {
        page.editor.undo();
    }
    QCOMPARE(page.outline(), QStringList(QString()));
    while (page.editor.document()->isRedoAvailable()) {
        page.editor.redo();
    }
    if (!keys.contains(u'~')) { // there is more to redo
        QCOMPARE(page.outline(), outline);
    }
}

void TestListEditing::commandsMakeLists_data()
{
    using Commands = QList<TextCommand>;
    QTest::addColumn<Commands>("commands");
    QTest::addColumn<QStringList>("outline");
    QTest::addColumn<QString>("undoName");
    using Command = TextCommand;
    QTest::newRow("bullets") << Commands {Command::BulletedList}
                             << QStringList {u"a"_s, u"• b"_s, u"• c"_s, u"d"_s}
                             << u"Bulleted List"_s;
    QTest::newRow("numbers") << Commands {Command::NumberedList}
                             << QStringList {u"a"_s, u"1. b"_s, u"2. c"_s, u"d"_s}
                             << u"Numbered List"_s;
    QTest::newRow("a checklist, all done")
        << Commands {Command::Checklist, Command::ToggleCheck}
        << QStringList {u"a"_s, u"☑ b"_s, u"☑ c"_s, u"d"_s} << u"Mark as Done"_s;
    QTest::newRow("another list from one")
        << Commands {Command::Checklist, Command::NumberedList}
        << QStringList {u"a"_s, u"1. b"_s, u"2. c"_s, u"d"_s} << u"Numbered List"_s;
    QTest::newRow("none again") << Commands {Command::BulletedList, Command::BulletedList}
                                << QStringList {u"a"_s, u"b"_s, u"c"_s, u"d"_s}
                                << u"Bulleted List"_s;
    QTest::newRow("deeper and out again")
        << Commands {Command::NumberedList, Command::IncreaseIndent, Command::IncreaseIndent,
                     Command::DecreaseIndent}
        << QStringList {u"a"_s, u"    a. b"_s, u"    b. c"_s, u"d"_s} << u"Decrease Indent"_s;
}

void TestListEditing::commandsMakeLists()
{
    QFETCH(QList<TextCommand>, commands);
    QFETCH(QStringList, outline);
    QFETCH(QString, undoName);
    Page page(u"a\nb\nc\nd"_s);
    page.select(2, 5);
    QStringList before;
    for (const TextCommand command : commands) {
        before = page.outline();
        page.run(command);
    }
    QCOMPARE(page.outline(), outline);
    QCOMPARE(outlineOf(*savedAndRead(*page.editor.content())), outline);
    QCOMPARE(page.editor.undoNames().undoName(), undoName);
    page.editor.undo();
    QCOMPARE(page.outline(), before);
}

void TestListEditing::aTypedMarkIsAStepOfItsOwn()
{
    Page page;
    typeKeys(page.editor, u"1. "_s);
    QCOMPARE(page.editor.undoNames().undoName(), u"Automatic List"_s);
    page.editor.undo();
    QCOMPARE(page.outline(), QStringList(u"1. "_s));
    QCOMPARE(page.editor.textCursor().position(), 3);
    QCOMPARE(page.editor.undoNames().undoName(), u"Typing"_s);
    page.editor.undo();
    QCOMPARE(page.outline(), QStringList(QString()));
}

void TestListEditing::stylesAreOfTheWholeList()
{
    Page page;
    typeKeys(page.editor, u"1. a\nb"_s);
    const std::pair<QString, QStringList> styles[] = {{u"Check Mark"_s, {u"✓ a"_s, u"✓ b"_s}},
                                                      {u"Dash"_s, {u"⁃ a"_s, u"⁃ b"_s}},
                                                      {u"Circle"_s, {u"◦ a"_s, u"◦ b"_s}},
                                                      {u"I)  II)  III)"_s, {u"I) a"_s, u"II) b"_s}},
                                                      {u"a.  b.  c."_s, {u"a. a"_s, u"b. b"_s}}};
    for (const auto &[title, outline] : styles) {
        QMenu menu;
        choose(*filledStyles(page, menu), title);
        QCOMPARE(page.outline(), outline);
        QCOMPARE(outlineOf(*savedAndRead(*page.editor.content())), outline);
        QCOMPARE(page.editor.undoNames().undoName(), u"List Style"_s);
    }
    page.editor.undo();
    QCOMPARE(page.outline(), (QStringList {u"I) a"_s, u"II) b"_s}));
}

void TestListEditing::numbersGoOnAndBeginAnew()
{
    Page page;
    typeKeys(page.editor, u"3. a\nb\n\nbetween\n1. c\nd^"_s);
    const auto is = [&page](const QStringList &outline) {
        return page.outline() == outline
            && outlineOf(*savedAndRead(*page.editor.content())) == outline;
    };
    QVERIFY(is({u"3. a"_s, u"4. b"_s, u"between"_s, u"1. c"_s, u"2. d"_s}));
    QMenu menu;
    choose(*filledStyles(page, menu), u"Continue"_s);
    QVERIFY(is({u"3. a"_s, u"4. b"_s, u"between"_s, u"5. c"_s, u"6. d"_s}));
    choose(menu, u"Restart"_s);
    QVERIFY(is({u"3. a"_s, u"4. b"_s, u"between"_s, u"1. c"_s, u"2. d"_s}));
    page.editor.undo();
    QVERIFY(is({u"3. a"_s, u"4. b"_s, u"between"_s, u"5. c"_s, u"6. d"_s}));
}

void TestListEditing::aClickOnABoxTogglesIt()
{
    Page page;
    typeKeys(page.editor, u"[] a\nb\nc"_s);
    const int caret = page.editor.textCursor().position();
    const QTextBlock second = page.editor.document()->begin().next();
    QTest::mouseClick(page.editor.viewport(), Qt::LeftButton, {}, middleOfBox(page.editor, second));
    QCOMPARE(page.outline(), (QStringList {u"☐ a"_s, u"☑ b"_s, u"☐ c"_s}));
    QCOMPARE(outlineOf(*savedAndRead(*page.editor.content())), page.outline());
    QCOMPARE(page.editor.textCursor().position(), caret);
    QCOMPARE(page.editor.undoNames().undoName(), u"Mark as Done"_s);
    QTest::mouseClick(page.editor.viewport(), Qt::LeftButton, {}, middleOfBox(page.editor, second));
    QCOMPARE(page.outline(), (QStringList {u"☐ a"_s, u"☐ b"_s, u"☐ c"_s}));
    QTest::mouseClick(page.editor.viewport(), Qt::LeftButton, {},
                      middleOfBox(page.editor, second) + QPoint(60, 0));
    QCOMPARE(page.outline(), (QStringList {u"☐ a"_s, u"☐ b"_s, u"☐ c"_s}));
}

void TestListEditing::anItemThatIsDoneIsFollowedByOneThatIsNot()
{
    Page page;
    typeKeys(page.editor, u"[x] a\nb"_s);
    QCOMPARE(page.outline(), (QStringList {u"☑ a"_s, u"☐ b"_s}));
    typeKeys(page.editor, u"^<\n"_s);
    QCOMPARE(page.outline(), (QStringList {u"☐"_s + u" "_s, u"☑ a"_s, u"☐ b"_s}));
}

void TestListEditing::aTextThatCannotBeEditedKeepsItsLists()
{
    Page page;
    typeKeys(page.editor, u"[] a"_s);
    const QStringList outline = page.outline();
    page.editor.setReadOnly(true);
    typeKeys(page.editor, u"<\b\t\v"_s);
    page.run(TextCommand::BulletedList);
    page.run(TextCommand::ToggleCheck);
    QTest::mouseClick(page.editor.viewport(), Qt::LeftButton, {},
                      middleOfBox(page.editor, page.editor.document()->begin()));
    QCOMPARE(page.outline(), outline);
    page.editor.setReadOnly(false);
    page.editor.setContentHidden(true);
    typeKeys(page.editor, u"\b"_s);
    QCOMPARE(page.outline(), outline);
}

void TestListEditing::marksOfOurOwnAreDrawn()
{
    Page page;
    typeKeys(page.editor, u"[] a"_s);
    page.editor.clearFocus(); // no caret
    const QTextBlock item = page.editor.document()->begin();
    const QRect place = listMarkPlace(item).toAlignedRect();
    const QImage open = page.editor.viewport()->grab(place).toImage();
    page.run(TextCommand::ToggleCheck);
    page.editor.clearFocus();
    const QImage done = page.editor.viewport()->grab(place).toImage();
    QVERIFY(open != done);
    page.run(TextCommand::Checklist);
    page.editor.clearFocus();
    QVERIFY(page.editor.viewport()->grab(place).toImage() != open);
}

void TestListEditing::marksAreDrawnBesideACellThatReachesOutOfView()
{
    Page page;
    QTextTable *table = QTextCursor(page.editor.document()).insertTable(2, 2);
    table->cellAt(0, 0).firstCursorPosition().insertText(u"\n"_s.repeated(60));
    page.editor.setTextCursor(table->cellAt(0, 1).firstCursorPosition());
    typeKeys(page.editor, u"- b"_s);
    page.editor.verticalScrollBar()->setValue(0);
    const QTextBlock item = page.editor.textCursor().block();
    QRect place = listMarkPlace(item).toAlignedRect();
    place.setRight(page.editor.cursorRect(QTextCursor(item)).left() - 2);
    QVERIFY(!inkIn(page.editor.viewport()->grab().toImage(), place).isEmpty());
}

void TestListEditing::backspaceTakesTheMarkAndLeavesTheTextInPlace()
{
    Page page;
    typeKeys(page.editor, u"- a\n\tb<"_s);
    const int left = page.editor.cursorRect().left();
    typeKeys(page.editor, u"\b"_s);
    QVERIFY(!page.editor.textCursor().currentList());
    QCOMPARE(page.editor.cursorRect().left(), left);
}

void TestListEditing::bulletsStandBesideTheMiddleOfSmallLetters()
{
    Page page;
    QFont font = page.editor.document()->defaultFont();
    font.setPointSize(24);
    page.editor.document()->setDefaultFont(font);
    typeKeys(page.editor, u"- x   "_s);
    const QImage shown = page.editor.viewport()->grab().toImage();
    const QRect letter = page.editor.cursorRect(QTextCursor(page.editor.document()));
    const QRect bullet = inkIn(shown, {0, letter.top(), letter.left(), letter.height()});
    const QRect x = inkIn(shown, {letter.left(), letter.top(), 24, letter.height()});
    QVERIFY(std::abs(bullet.center().y() - x.center().y()) <= 1);
    const int gap = x.left() - bullet.right();
    QVERIFY2(gap > x.height() * 3 / 4 && gap < x.height() * 3 / 2,
             qPrintable(QString::number(gap)));
}

QTEST_MAIN(TestListEditing)
#include "tst_listediting.moc"
