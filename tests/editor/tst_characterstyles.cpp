#include "editor/characterstyles.h"
#include "editor/colourpalette.h"
#include "editor/fontsizes.h"
#include "editor/formattoolbar.h"
#include "editor/stylememory.h"
#include "editor/styletransfer.h"
#include "editor/textcolours.h"
#include "editor/textlinks.h"
#include "platform_qt/dialogsheet.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qtwindow.h"
#include "richtext/textproperties.h"
#include "support/describedtext.h"
#include "support/writtentext.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QClipboard>
#include <QColorDialog>
#include <QMimeData>
#include <QTextList>

using namespace quorvane;

namespace {

QString saved(const TextEditor &editor)
{
    return DescribedText::of(*savedAndRead(*editor.content()));
}

QAbstractButton *named(const QWidget &parent, const QString &name)
{
    for (auto *button : parent.findChildren<QAbstractButton *>()) {
        if (button->accessibleName() == name || button->text() == name) {
            return button;
        }
    }
    return nullptr;
}

QTextCharFormat linkLook(const QString &address)
{
    QTextCharFormat look;
    addLink(look, address);
    return look;
}

QTextCharFormat attachmentLook()
{
    QTextCharFormat look;
    look.setObjectType(attachmentObjectType);
    look.setProperty(AttachmentName, u"plan.pdf"_s);
    look.setProperty(AttachmentId, 7);
    return look;
}

constexpr auto address = "https://example.org/"_L1;

/// "ab", a link "cd", "ef", an attachment, "gh".
std::unique_ptr<QTextDocument> mixedText()
{
    auto document = std::make_unique<QTextDocument>();
    QTextCursor cursor(document.get());
    cursor.insertText(u"ab"_s);
    cursor.insertText(u"cd"_s, linkLook(address));
    cursor.insertText(u"ef"_s, QTextCharFormat());
    cursor.insertText(QString(QChar::ObjectReplacementCharacter), attachmentLook());
    cursor.insertText(u"gh"_s, QTextCharFormat());
    return document;
}

QString linked(const QTextDocument &document)
{
    QString text;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const bool isLink = it.fragment().charFormat().anchorHref() == address;
            text += isLink ? it.fragment().text() : QString();
        }
    }
    return text;
}

/// A window with the tools of this concern.
struct Bench
{
    explicit Bench(StyleMemory &memory)
        : sheets(window, queue)
        , characters(window.editor(), window.commands())
        , colours(window.editor(), window.commands(),
                  {window.formatToolbar(), sheets,
                   [](QDialog &dialog) -> NSSheet & { return *new DialogSheet(dialog); }, memory})
        , styles(window.editor(), window.commands(), memory)
    {
        bringUp(window);
    }

    TextEditor &editor() { return window.editor(); }

    QAction &action(TextCommand command)
    {
        window.commands().validate();
        return window.commands().action(command);
    }

    void run(TextCommand command) { action(command).trigger(); }

    template <typename Text> void show(Text text) { showText(editor(), std::move(text)); }

    void select(int from, int to) { selectText(editor(), from, to); }

    QTextCharFormat lookBehind(int position)
    {
        QTextCursor cursor(editor().content());
        cursor.setPosition(position + 1);
        return cursor.charFormat();
    }

    QtOperationQueue queue;
    DocumentWindow window;
    QtWindow sheets;
    CharacterStyles characters;
    TextColours colours;
    StyleTransfer styles;
};

} // namespace

class TestCharacterStyles : public QObject
{
    Q_OBJECT

private:
    StyleMemory m_memory;
    std::unique_ptr<Bench> m_bench;

    ColourPalette *palette() { return m_bench->window.findChild<ColourPalette *>(); }

    ColourPalette *openPalette(TextCommand command)
    {
        m_bench->run(command);
        return QTest::qWaitFor([this] { return palette() && palette()->isVisible(); }) ? palette()
                                                                                       : nullptr;
    }

private slots:

    void init() { m_bench = std::make_unique<Bench>(m_memory); }

    void cleanup() { m_bench.reset(); }

    void switchesStyleTheWholeSelectionInOneStepAndBack_data()
    {
        QTest::addColumn<TextCommand>("command");
        QTest::addColumn<QString>("name");
        const auto row = [](TextCommand command, const QString &name) {
            QTest::newRow(qPrintable(name)) << command << name;
        };
        row(TextCommand::Bold, u"Bold"_s);
        row(TextCommand::Italic, u"Italic"_s);
        row(TextCommand::Underline, u"Underline"_s);
        row(TextCommand::Strikethrough, u"Strikethrough"_s);
        row(TextCommand::Superscript, u"Superscript"_s);
        row(TextCommand::Subscript, u"Subscript"_s);
    }

    void switchesStyleTheWholeSelectionInOneStepAndBack()
    {
        QFETCH(TextCommand, command);
        QFETCH(QString, name);
        m_bench->show(u"one two\nthree"_s);
        TextEditor &editor = m_bench->editor();
        const QString plain = saved(editor);
        m_bench->select(0, 3);
        m_bench->run(command);
        QVERIFY(m_bench->action(command).isChecked());
        m_bench->select(0, 13);
        QVERIFY2(!m_bench->action(command).isChecked(), "a mixed selection is off");
        m_bench->run(command);
        QVERIFY(m_bench->action(command).isChecked());
        QCOMPARE(editor.undoNames().undoName(), name);
        QVERIFY(saved(editor) != plain);
        QVERIFY(DescribedText::of(m_bench->lookBehind(0))
                == DescribedText::of(m_bench->lookBehind(10)));
        m_bench->run(command);
        QVERIFY(!m_bench->action(command).isChecked());
        QCOMPARE(saved(editor), plain);
        editor.undo();
        editor.undo();
        editor.undo();
        QVERIFY(!editor.content()->isUndoAvailable());
    }

    void sizesStepAlongTheOfferedOnesAndThenByATenth_data()
    {
        QTest::addColumn<double>("size");
        QTest::addColumn<double>("bigger");
        QTest::addColumn<double>("smaller");
        QTest::newRow("an offered one") << 12.0 << 13.0 << 11.0;
        QTest::newRow("between two") << 15.5 << 16.0 << 14.0;
        QTest::newRow("the smallest offered") << 8.0 << 9.0 << 7.0;
        QTest::newRow("the largest offered") << 96.0 << 106.0 << 72.0;
        QTest::newRow("beyond") << 200.0 << 220.0 << 182.0;
        QTest::newRow("just beyond") << 100.0 << 110.0 << 96.0;
        QTest::newRow("the end") << 999.0 << 999.0 << 908.0;
        QTest::newRow("the other end") << 1.0 << 2.0 << 1.0;
    }

    void sizesStepAlongTheOfferedOnesAndThenByATenth()
    {
        QFETCH(double, size);
        QTEST(biggerFontSize(size), "bigger");
        QTEST(smallerFontSize(size), "smaller");
    }

    void eachRunKeepsASizeOfItsOwn()
    {
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        for (const double size : {12.0, 24.0}) {
            QTextCharFormat look;
            look.setFontPointSize(size);
            cursor.insertText(u"text"_s, look);
        }
        cursor.insertText(QString(QChar::ObjectReplacementCharacter), attachmentLook());
        m_bench->show(std::move(document));
        m_bench->editor().selectAll();
        m_bench->run(TextCommand::Bigger);
        QCOMPARE(m_bench->lookBehind(1).fontPointSize(), 13.0);
        QCOMPARE(m_bench->lookBehind(5).fontPointSize(), 28.0);
        QCOMPARE(m_bench->lookBehind(8), attachmentLook());
        m_bench->editor().undo();
        QCOMPARE(m_bench->lookBehind(1).fontPointSize(), 12.0);
        QCOMPARE(m_bench->lookBehind(5).fontPointSize(), 24.0);
        QVERIFY(!m_bench->editor().content()->isUndoAvailable());
    }

    void whatIsTypedNextTakesTheLook()
    {
        m_bench->show(u"ab"_s);
        m_bench->select(2, 2);
        const double size = fontSizeOf(m_bench->lookBehind(1), *m_bench->editor().content());
        m_bench->run(TextCommand::Superscript);
        m_bench->run(TextCommand::Bigger);
        QTest::keyClicks(&m_bench->editor(), u"2"_s);
        QCOMPARE(m_bench->lookBehind(2).verticalAlignment(), QTextCharFormat::AlignSuperScript);
        QCOMPARE(m_bench->lookBehind(2).fontPointSize(), biggerFontSize(size));
        QCOMPARE(m_bench->lookBehind(1).verticalAlignment(), QTextCharFormat::AlignNormal);
    }

    void coloursAreChosenUsedAgainAndTakenAway_data()
    {
        QTest::addColumn<TextCommand>("choose");
        QTest::addColumn<TextCommand>("again");
        QTest::addColumn<int>("property");
        QTest::addColumn<QString>("swatch");
        QTest::addColumn<QString>("none");
        QTest::addColumn<QString>("undoName");
        QTest::newRow("of the text") << TextCommand::TextColour << TextCommand::LastTextColour
                                     << int(QTextFormat::ForegroundBrush) << u"Dark Blue"_s
                                     << u"Automatic"_s << u"Text Colour"_s;
        QTest::newRow("of its ground")
            << TextCommand::HighlightColour << TextCommand::LastHighlight
            << int(QTextFormat::BackgroundBrush) << u"Pale Green"_s << u"None"_s << u"Highlight"_s;
    }

    void coloursAreChosenUsedAgainAndTakenAway()
    {
        QFETCH(TextCommand, choose);
        QFETCH(TextCommand, again);
        QFETCH(int, property);
        QFETCH(QString, swatch);
        QFETCH(QString, none);
        QFETCH(QString, undoName);
        m_bench->show(u"one two"_s);
        const QString plain = saved(m_bench->editor());
        m_bench->select(0, 3);
        ColourPalette *shown = openPalette(choose);
        QVERIFY(shown);
        QVERIFY2(named(*shown, none)->isChecked(), "nothing has a colour yet");
        QStringList offered;
        auto *window = QAccessible::queryAccessibleInterface(&m_bench->window);
        auto *popup = window->child(window->childCount() - 1);
        for (int i = 0; i < popup->childCount(); ++i) {
            offered << popup->child(i)->text(QAccessible::Name);
        }
        QCOMPARE(popup->object(), shown);
        QVERIFY(offered.contains(swatch) && offered.contains(none));
        QTest::mouseClick(named(*shown, swatch), Qt::LeftButton);
        QTRY_VERIFY(!palette());
        QCOMPARE(m_bench->window.focusWidget(), &m_bench->editor());
        QCOMPARE(m_bench->editor().undoNames().undoName(), undoName);
        const QVariant colour = m_bench->lookBehind(1).property(property);
        QVERIFY(colour.isValid());
        QVERIFY(saved(m_bench->editor()) != plain);

        Bench other(m_memory); // has the same colours
        other.show(u"text"_s);
        other.editor().selectAll();
        other.run(again);
        QCOMPARE(other.lookBehind(1).property(property), colour);

        shown = openPalette(choose);
        QVERIFY(shown);
        QVERIFY(named(*shown, swatch)->isChecked());
        QTest::mouseClick(named(*shown, none), Qt::LeftButton);
        QVERIFY(!m_bench->lookBehind(1).hasProperty(property));
        QCOMPARE(saved(m_bench->editor()), plain);
    }

    void thePaletteIsLedByKeys()
    {
        m_bench->show(u"text"_s);
        m_bench->editor().selectAll();
        ColourPalette *shown = openPalette(TextCommand::TextColour);
        QVERIFY(shown);
        const auto press = [&](Qt::Key key) {
            QTest::keyClick(shown->focusWidget(), key);
        };
        for (const Qt::Key key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Right, Qt::Key_Right}) {
            press(key);
        }
        QCOMPARE(shown->focusWidget()->accessibleName(), u"Dark Yellow"_s);
        press(Qt::Key_Return);
        QVERIFY(m_bench->lookBehind(1).hasProperty(QTextFormat::ForegroundBrush));
        shown = openPalette(TextCommand::TextColour);
        QVERIFY(shown);
        QVERIFY2(named(*shown, u"Recent: #6b5200"_s), "the chosen one is offered again");
        QTest::keyClick(shown->focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!palette());
    }

    void otherColoursComeFromADialog()
    {
        m_bench->show(u"text"_s);
        m_bench->editor().selectAll();
        const auto openDialog = [this] {
            ColourPalette *shown = openPalette(TextCommand::HighlightColour);
            QTest::mouseClick(named(*shown, u"More…"_s), Qt::LeftButton);
            return m_bench->window.findChild<QColorDialog *>();
        };
        openDialog()->reject();
        QVERIFY(!m_bench->editor().content()->isUndoAvailable());
        QTRY_VERIFY(!m_bench->sheets.attachedSheet());
        QColorDialog *dialog = openDialog();
        dialog->setCurrentColor(QColor(1, 2, 3));
        dialog->accept();
        QCOMPARE(m_bench->lookBehind(1).background().color(), QColor(1, 2, 3));
    }

    void automaticGivesALinkItsOwnColourBack()
    {
        m_bench->show(mixedText());
        m_bench->editor().selectAll();
        const QString plain = saved(m_bench->editor());
        m_bench->run(TextCommand::LastTextColour);
        QVERIFY(m_bench->lookBehind(2).foreground().color() != QColor(linkColour));
        ColourPalette *shown = openPalette(TextCommand::TextColour);
        QVERIFY(shown);
        named(*shown, u"Automatic"_s)->click();
        QCOMPARE(saved(m_bench->editor()), plain);
    }

    void clearingLeavesWhatIsNoFormat()
    {
        auto document = mixedText();
        QTextCursor cursor(document.get());
        cursor.createList(QTextListFormat::ListDisc);
        const QString plain = DescribedText::of(*document);
        cursor.select(QTextCursor::Document);
        QTextCharFormat look;
        look.setFontWeight(QFont::Bold);
        look.setBackground(Qt::yellow);
        cursor.setPosition(0);
        cursor.setPosition(6, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(look);
        QTextBlockFormat paragraph;
        paragraph.setAlignment(Qt::AlignRight);
        paragraph.setHeadingLevel(2);
        cursor.mergeBlockFormat(paragraph);
        const QString styled = DescribedText::of(*document);
        m_bench->show(std::move(document));
        m_bench->editor().selectAll();
        m_bench->run(TextCommand::ClearFormatting);
        QCOMPARE(DescribedText::of(*m_bench->editor().content()), plain);
        QCOMPARE(m_bench->editor().undoNames().undoName(), u"Clear Formatting"_s);
        m_bench->editor().undo();
        QCOMPARE(DescribedText::of(*m_bench->editor().content()), styled);
    }

    void aStyleIsCopiedToAnotherWindow()
    {
        auto document = mixedText();
        QTextCursor cursor(document.get());
        QTextBlockFormat paragraph;
        paragraph.setAlignment(Qt::AlignRight);
        cursor.mergeBlockFormat(paragraph);
        QTextCharFormat look;
        look.setFontItalic(true);
        cursor.setPosition(2);
        cursor.setPosition(4, QTextCursor::KeepAnchor);
        cursor.mergeCharFormat(look);
        m_bench->show(std::move(document));
        m_bench->select(2, 4);
        m_bench->run(TextCommand::CopyStyle);

        Bench other(m_memory);
        other.show(mixedText());
        other.select(0, 3); // a part of the paragraph
        other.run(TextCommand::PasteStyle);
        QVERIFY(other.lookBehind(0).fontItalic());
        QVERIFY2(other.lookBehind(0).anchorHref().isEmpty(), "a link is no style");
        QCOMPARE(linked(*other.editor().content()), u"cd"_s);
        QVERIFY(!other.editor().content()->firstBlock().blockFormat().hasProperty(
            QTextFormat::BlockAlignment));
        other.editor().selectAll();
        other.run(TextCommand::PasteStyle);
        QCOMPARE(other.editor().content()->firstBlock().blockFormat().alignment(), Qt::AlignRight);
        QCOMPARE(other.lookBehind(6), attachmentLook());
        other.editor().undo();
        other.editor().undo();
        QCOMPARE(DescribedText::of(*other.editor().content()), DescribedText::of(*mixedText()));
    }

    void pastingInTheStyleOfThePlaceTakesCharactersAlone()
    {
        auto data = std::make_unique<QMimeData>();
        data->setHtml(u"<b>new</b>"_s);
        data->setText(u"new"_s);
        QGuiApplication::clipboard()->setMimeData(data.release());
        m_bench->show(u"old"_s);
        m_bench->editor().selectAll();
        m_bench->run(TextCommand::Italic);
        m_bench->run(TextCommand::PasteAndMatchStyle);
        QCOMPARE(m_bench->editor().toPlainText(), u"new"_s);
        QVERIFY(m_bench->lookBehind(1).fontItalic());
        QVERIFY(!m_bench->lookBehind(1).font().bold());
        QCOMPARE(m_bench->editor().undoNames().undoName(), u"Paste"_s);
    }

    void typingBelongsToALinkOnlyWithinIt_data()
    {
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("linkedText");
        QTest::newRow("within") << 3 << 3 << u"xy"_s << u"cxyd"_s;
        QTest::newRow("behind") << 4 << 4 << u"xy"_s << u"cd"_s;
        QTest::newRow("before") << 2 << 2 << u"xy"_s << u"cd"_s;
        QTest::newRow("on a new line behind") << 4 << 4 << u"\rxy"_s << u"cd"_s;
        QTest::newRow("over a part of it") << 3 << 4 << u"xy"_s << u"c"_s;
        QTest::newRow("over all of it") << 2 << 4 << u"xy"_s << u""_s;
        QTest::newRow("over its beginning") << 0 << 3 << u"xy"_s << u"d"_s;
    }

    void typingBelongsToALinkOnlyWithinIt()
    {
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QString, typed);
        m_bench->show(mixedText());
        m_bench->select(from, to);
        for (const QChar key : typed) {
            QTest::keyClick(&m_bench->editor(), key == u'\r' ? u'\r' : key.toLatin1());
        }
        QVERIFY(m_bench->editor().toPlainText().contains(u"xy"_s));
        QTEST(linked(*m_bench->editor().content()), "linkedText");
        const int at = int(m_bench->editor().toPlainText().indexOf(u"xy"_s));
        if (from == to && !m_bench->lookBehind(at).isAnchor()) {
            QCOMPARE(m_bench->lookBehind(at), QTextCharFormat());
        }
        while (m_bench->editor().content()->isUndoAvailable()) {
            m_bench->editor().undo();
        }
        QCOMPARE(DescribedText::of(*m_bench->editor().content()), DescribedText::of(*mixedText()));
    }

    void typingBehindAnAttachmentTakesNothingOfIt()
    {
        m_bench->show(mixedText());
        m_bench->select(7, 7);
        QTest::keyClicks(&m_bench->editor(), u"x"_s);
        QInputMethodEvent composed;
        composed.setCommitString(u"y"_s);
        QCoreApplication::sendEvent(&m_bench->editor(), &composed);
        QCOMPARE(m_bench->lookBehind(7), QTextCharFormat());
        QCOMPARE(m_bench->lookBehind(8), QTextCharFormat());
        QCOMPARE(m_bench->lookBehind(6), attachmentLook());
    }

    void nothingIsStyledWhereNobodyMayEdit()
    {
        m_bench->show(u"text"_s);
        m_bench->editor().selectAll();
        m_bench->run(TextCommand::CopyStyle);
        const auto isOff = [this] {
            for (const TextCommand command :
                 {TextCommand::Bold, TextCommand::Superscript, TextCommand::Bigger,
                  TextCommand::TextColour, TextCommand::LastHighlight, TextCommand::PasteStyle,
                  TextCommand::ClearFormatting, TextCommand::PasteAndMatchStyle}) {
                if (m_bench->action(command).isEnabled()) {
                    return false;
                }
            }
            return true;
        };
        QVERIFY(!isOff());
        m_bench->window.setReadOnly(true);
        QVERIFY(isOff());
        m_bench->window.setReadOnly(false);
        QVERIFY(openPalette(TextCommand::TextColour));
        m_bench->window.showLockedAppearance();
        QTRY_VERIFY2(!palette(), "what is open over the text goes with it");
        QVERIFY(isOff());
    }
};

QTEST_MAIN(TestCharacterStyles)
#include "tst_characterstyles.moc"
