#include "editor/headings.h"
#include "editor/lengthfield.h"
#include "editor/paragraphbreaks.h"
#include "editor/paragraphsheet.h"
#include "editor/paragraphstyles.h"
#include "support/describedtext.h"
#include "support/writtentext.h"

#include <QCheckBox>
#include <QComboBox>

using namespace quorvane;

namespace {

struct Page : WrittenPage
{
    using WrittenPage::WrittenPage;

    bool isOn(TextCommand command)
    {
        commands.validate();
        return commands.action(command).isChecked();
    }

    /// The looks of the paragraphs.
    QStringList looks() const { return looksOf(*editor.content()); }

    static QStringList looksOf(const QTextDocument &document)
    {
        QStringList looks;
        for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
            const QTextCharFormat format =
                block.begin().atEnd() ? block.charFormat() : block.begin().fragment().charFormat();
            QString look = DescribedText::of(block.blockFormat());
            look += format.fontWeight() >= QFont::Bold ? u" bold"_s : QString();
            look += format.fontPointSize() != 12 ? u" %1 pt"_s.arg(format.fontPointSize()) : u""_s;
            looks << look.trimmed();
        }
        return looks;
    }

    ParagraphStyles paragraphs {editor, commands, window};
    Headings headings {editor, commands};
    ParagraphBreaks breaks {editor, commands};
};

} // namespace

class TestParagraphs : public QObject
{
    Q_OBJECT

private slots:
    void commandsChangeParagraphs_data();
    void commandsChangeParagraphs();
    void keysKnowWhatEndsWithAParagraph_data();
    void keysKnowWhatEndsWithAParagraph();
    void tabStopsStayWhereTheyAreWhenTheTextMoves();
    void theBodyTakesTheLookOfAHeadingAway();
    void whatIsTypedInAnEmptyHeadingLooksLikeIt();
    void theSheetChangesWhatWasTouched();
    void aRuleAndAPageBreakCanBeSeen();
};

void TestParagraphs::commandsChangeParagraphs_data()
{
    using Commands = QList<TextCommand>;
    using Command = TextCommand;
    QTest::addColumn<Commands>("commands");
    QTest::addColumn<QStringList>("looks"); // of the second and third of four paragraphs
    QTest::addColumn<QString>("undoName");
    const auto row = [](const char *name, const Commands &commands, const QString &look,
                        const QString &undoName) {
        QTest::newRow(name) << commands << QStringList {QString(), look, look, QString()}
                            << undoName;
    };
    row("left", {Command::AlignLeft}, u"align=1"_s, u"Align Left"_s);
    row("centre", {Command::AlignCentre}, u"align=4"_s, u"Align Centre"_s);
    row("right", {Command::AlignCentre, Command::AlignRight}, u"align=2"_s, u"Align Right"_s);
    row("justified", {Command::Justify}, u"align=8"_s, u"Justify"_s);
    row("one and a half", {Command::WiderSpacing}, u"height=150 heightkind=1"_s, u"Line Spacing"_s);
    row("double", {Command::DoubleSpacing}, u"height=200 heightkind=1"_s, u"Line Spacing"_s);
    row("single says nothing", {Command::DoubleSpacing, Command::SingleSpacing}, {},
        u"Line Spacing"_s);
    row("further in", {Command::IncreaseIndent, Command::IncreaseIndent}, u"left=96"_s,
        u"Increase Indent"_s);
    row("and out again", {Command::IncreaseIndent, Command::DecreaseIndent}, {},
        u"Decrease Indent"_s);
    row("a title", {Command::Heading1}, u"top=26 bottom=10 heading=1 bold 24 pt"_s, u"Heading"_s);
    row("a heading of another level", {Command::Heading1, Command::Heading3},
        u"top=18 bottom=6 heading=3 bold 15 pt"_s, u"Heading"_s);
    row("the body again", {Command::Heading2, Command::BodyText}, {}, u"Body"_s);
}

void TestParagraphs::commandsChangeParagraphs()
{
    QFETCH(QList<TextCommand>, commands);
    QFETCH(QStringList, looks);
    QFETCH(QString, undoName);
    Page page(u"one\ntwo\nthree\nfour"_s);
    page.select(5, 10);
    QStringList before;
    for (const TextCommand command : commands) {
        before = page.looks();
        page.run(command);
    }
    QCOMPARE(page.looks(), looks);
    QCOMPARE(Page::looksOf(*savedAndRead(*page.editor.content())), looks);
    QCOMPARE(page.editor.undoNames().undoName(), undoName);
    const TextCommand last = commands.last();
    if (last != TextCommand::IncreaseIndent && last != TextCommand::DecreaseIndent) {
        QVERIFY(page.isOn(last));
    }
    page.editor.undo();
    QCOMPARE(page.looks(), before);
    page.editor.setReadOnly(true);
    page.run(last);
    QCOMPARE(page.looks(), before);
}

void TestParagraphs::keysKnowWhatEndsWithAParagraph_data()
{
    QTest::addColumn<TextCommand>("command");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QStringList>("text");
    QTest::addColumn<QStringList>("looks");
    const auto row = [](const char *name, TextCommand command, const QString &keys,
                        const QStringList &text, const QStringList &looks) {
        QTest::newRow(name) << command << keys << text << looks;
    };
    const QString heading = u"top=21 bottom=8 heading=2 bold 18 pt"_s;
    const QString rule = u"rule=100% words=\\brdrb\\brdrs\\brdrw10\\brsp20"_s;
    row("behind a heading the body goes on", TextCommand::Heading2, u">\nc"_s,
        {u"a"_s, u"b"_s, u"c"_s}, {QString(), heading, QString()});
    row("within one it is the heading that does", TextCommand::Heading2, u"<c\n"_s,
        {u"a"_s, u"c"_s, u"b"_s}, {QString(), heading, heading});
    row("a page breaks before a paragraph once", TextCommand::InsertPageBreak, u"c\nd"_s,
        {u"a"_s, u"b"_s, u"c"_s, u"d"_s}, {QString(), QString(), u"break=1"_s, QString()});
    row("Backspace takes the break away", TextCommand::InsertPageBreak, u"c<\b"_s,
        {u"a"_s, u"b"_s, u"c"_s}, {QString(), QString(), QString()});
    row("then the paragraph's end", TextCommand::InsertPageBreak, u"c<\b\b"_s, {u"a"_s, u"bc"_s},
        {QString(), QString()});
    row("a rule is a paragraph, and the text goes on behind it", TextCommand::InsertHorizontalRule,
        u"c\nd"_s, {u"a"_s, u"b"_s, QString(), u"c"_s, u"d"_s},
        {QString(), QString(), rule, QString(), QString()});
    row("Return on a rule leaves it alone", TextCommand::InsertHorizontalRule, u"^\nc"_s,
        {u"a"_s, u"b"_s, QString(), u"c"_s, QString()},
        {QString(), QString(), rule, QString(), QString()});
    row("Backspace on a rule takes it away", TextCommand::InsertHorizontalRule, u"^\b"_s,
        {u"a"_s, u"b"_s, QString(), QString()}, {QString(), QString(), QString(), QString()});
}

void TestParagraphs::keysKnowWhatEndsWithAParagraph()
{
    QFETCH(TextCommand, command);
    QFETCH(QString, keys);
    QFETCH(QStringList, text);
    QFETCH(QStringList, looks);
    Page page(u"a\nb"_s);
    page.run(command);
    typeKeys(page.editor, keys);
    QCOMPARE(outlineOf(*page.editor.content()), text);
    const auto read = savedAndRead(*page.editor.content());
    QCOMPARE(outlineOf(*read), text);
    QCOMPARE(Page::looksOf(*read), looks);
    QStringList shown = page.looks();
    shown.replaceInStrings(u"rule=100%"_s, u"rule=100% words=\\brdrb\\brdrs\\brdrw10\\brsp20"_s);
    QCOMPARE(shown, looks);
    while (page.editor.document()->isUndoAvailable()) {
        page.editor.undo();
    }
    QCOMPARE(page.editor.toPlainText(), QString());
}

void TestParagraphs::tabStopsStayWhereTheyAreWhenTheTextMoves()
{
    Page page(u"a"_s);
    QTextBlockFormat format;
    format.setTabPositions({QTextOption::Tab(100, QTextOption::LeftTab)});
    page.editor.edit(u"Tab Stop"_s, [&](QTextCursor &cursor) { cursor.setBlockFormat(format); });
    page.run(TextCommand::IncreaseIndent);
    QCOMPARE(page.looks(), QStringList(u"left=48 tabs=52l"_s));
    QVERIFY(bodyFromDocument(*page.editor.content()).contains("\\tx1500\\li720"));
}

void TestParagraphs::theBodyTakesTheLookOfAHeadingAway()
{
    Page page(u"body\nhead"_s);
    page.select(5, 7);
    QTextCharFormat italic;
    italic.setFontItalic(true);
    page.editor.applyCharFormat(italic);
    const QString before = DescribedText::of(*page.editor.content());
    page.run(TextCommand::Heading1);
    QVERIFY(DescribedText::of(*page.editor.content()).contains(u"24 weight=700 italic=true"_s));
    page.run(TextCommand::BodyText);
    QCOMPARE(DescribedText::of(*page.editor.content()), before);
}

void TestParagraphs::whatIsTypedInAnEmptyHeadingLooksLikeIt()
{
    for (const bool isUndoneFirst : {false, true}) {
        Page page(u""_s);
        page.editor.setTypingFont(NSFont {u"DejaVu Sans"_s, 12}); // as in a new document
        page.run(TextCommand::Heading2);
        if (isUndoneFirst) {
            page.editor.undo();
            QVERIFY(page.editor.currentCharFormat().fontWeight() != QFont::Bold);
            page.editor.redo();
        }
        typeKeys(page.editor, u"a\nb"_s);
        const QStringList looks {u"top=21 bottom=8 heading=2 bold 18 pt"_s, QString()};
        QCOMPARE(page.looks(), looks);
    }
}

void TestParagraphs::theSheetChangesWhatWasTouched()
{
    Page page(u"one\ntwo"_s);
    page.run(TextCommand::AlignRight); // of the second alone
    page.select(0, 6);
    page.run(TextCommand::Paragraph);
    auto *sheet = page.editor.findChild<ParagraphSheet *>();
    QVERIFY(sheet && sheet->isVisible());
    const QList<LengthField *> lengths = sheet->findChildren<LengthField *>();
    QCOMPARE(lengths.size(), 5);
    lengths.at(0)->setValue(6); // points before
    lengths.at(2)->setValue(2.54); // centimetres to the left
    lengths.at(4)->setValue(-1.27); // and of the first line
    const QList<QComboBox *> boxes = sheet->findChildren<QComboBox *>();
    boxes.at(1)->setCurrentText(u"Exactly"_s);
    sheet->findChild<QCheckBox *>()->setChecked(true);
    sheet->accept();
    page.queue.runAll();
    const QString look = u"left=96 top=8 first=-48 height=18.666667 heightkind=2 break=1"_s;
    const QStringList looks = page.looks();
    for (const QString &part : look.split(u' ')) {
        QVERIFY2(looks.at(0).contains(part) && looks.at(1).contains(part), qPrintable(looks.at(0)));
    }
    QVERIFY(!looks.at(0).contains(u"align"_s));
    QVERIFY(looks.at(1).contains(u"align=2"_s));
    QCOMPARE(Page::looksOf(*savedAndRead(*page.editor.content())), looks);
    QCOMPARE(page.editor.undoNames().undoName(), u"Paragraph"_s);
    page.editor.undo();
    QCOMPARE(page.looks(), (QStringList {QString(), u"align=2"_s}));
}

void TestParagraphs::aRuleAndAPageBreakCanBeSeen()
{
    for (const TextCommand command :
         {TextCommand::InsertHorizontalRule, TextCommand::InsertPageBreak}) {
        Page page(u"a"_s);
        typeKeys(page.editor, u"\n\n"_s);
        page.editor.clearFocus();
        const QRect right(250, 0, 100, 150); // no text stands there
        const QImage before = page.editor.viewport()->grab(right).toImage();
        page.run(command);
        page.editor.clearFocus();
        QVERIFY(page.editor.viewport()->grab(right).toImage() != before);
    }
}

QTEST_MAIN(TestParagraphs)
#include "tst_paragraphs.moc"
