#include "editor/linkediting.h"
#include "editor/linkfollowing.h"
#include "editor/linksheet.h"
#include "editor/textcontextmenu.h"
#include "editor/textlinks.h"
#include "richtext/textproperties.h"
#include "support/describedtext.h"
#include "support/recordingworkspace.h"
#include "support/writtentext.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QToolTip>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

/// The text with its links as "[words>address]".
QString marked(const QTextDocument &document)
{
    QString text;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        text += text.isEmpty() ? QString() : u"\n"_s;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QString address = it.fragment().charFormat().anchorHref();
            const QString words = it.fragment().text();
            text += address.isEmpty() ? words : u"[%1>%2]"_s.arg(words, address);
        }
    }
    return text;
}

} // namespace

class TestLinks : public QObject
{
    Q_OBJECT

private:
    ManualQueue m_queue;
    RecordingWorkspace m_workspace;
    std::unique_ptr<ScriptedWindow> m_sheets;
    std::unique_ptr<DocumentWindow> m_window;
    std::unique_ptr<TextContextMenu> m_menu;
    std::unique_ptr<LinkFollowing> m_following;
    std::unique_ptr<LinkEditing> m_editing;

    TextEditor &editor() { return m_window->editor(); }

    QTextDocument &content() { return *editor().content(); }

    /// "[words>address]" in the text becomes a link.
    void show(const QString &text)
    {
        auto document = std::make_unique<QTextDocument>();
        QTextCursor cursor(document.get());
        for (const QString &piece : text.split(u'[')) {
            const qsizetype end = piece.indexOf(u']');
            QTextCharFormat format;
            if (end >= 0) {
                const QStringList link = piece.first(end).split(u'>');
                addLink(format, link.at(1));
                cursor.insertText(link.at(0), format);
            }
            cursor.insertText(piece.sliced(end + 1), QTextCharFormat());
        }
        showText(editor(), std::move(document));
    }

    void select(int from, int to) { selectText(editor(), from, to); }

    QAction &action(TextCommand command)
    {
        m_window->commands().validate();
        return m_window->commands().action(command);
    }

    LinkSheet *askForLink()
    {
        action(TextCommand::InsertLink).trigger();
        m_queue.runAll();
        return m_window->findChild<LinkSheet *>();
    }

    void confirm(LinkSheet &sheet)
    {
        QTest::keyClick(&sheet, Qt::Key_Return);
        m_queue.runAll();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    QPoint placeOf(int position)
    {
        QTextCursor cursor(&content());
        cursor.setPosition(position);
        return editor().cursorRect(cursor).center() + QPoint(2, 0);
    }

private slots:

    void init()
    {
        m_editing.reset();
        m_following.reset();
        m_workspace = RecordingWorkspace();
        m_sheets = std::make_unique<ScriptedWindow>(m_queue);
        m_window = std::make_unique<DocumentWindow>();
        TextCommands &commands = m_window->commands();
        m_menu = std::make_unique<TextContextMenu>(editor(), commands);
        m_following =
            std::make_unique<LinkFollowing>(editor(), commands, *m_menu, *m_sheets, m_workspace);
        m_editing = std::make_unique<LinkEditing>(editor(), commands, *m_sheets);
        m_window->show();
    }

    void theSheetMakesAndChangesLinks_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("from");
        QTest::addColumn<int>("to");
        QTest::addColumn<QString>("offered");
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("words");
        QTest::addColumn<QString>("expected");
        QTest::addColumn<QString>("name");
        QTest::newRow("at the caret, with words of its own")
            << u"ab"_s << 1 << 1 << u""_s << u"example.org"_s << u"here"_s
            << u"a[here>https://example.org]b"_s << u"Insert Link"_s;
        QTest::newRow("at the caret, with the address for words")
            << u"ab"_s << 1 << 1 << u""_s << u"me@example.org"_s << u""_s
            << u"a[mailto:me@example.org>mailto:me@example.org]b"_s << u"Insert Link"_s;
        QTest::newRow("of the selected words")
            << u"one two"_s << 4 << 7 << u""_s << u"http://a.b"_s << u"two"_s
            << u"one [two>http://a.b]"_s << u"Insert Link"_s;
        QTest::newRow("of a selected address")
            << u"www.example.org!"_s << 0 << 15 << u"https://www.example.org"_s
            << u"https://www.example.org"_s << u"www.example.org"_s
            << u"[www.example.org>https://www.example.org]!"_s << u"Insert Link"_s;
        QTest::newRow("the one around the caret, as a whole")
            << u"a [link>http://a.b] c"_s << 4 << 4 << u"http://a.b"_s << u"http://c.d"_s
            << u"new"_s << u"a [new>http://c.d] c"_s << u"Edit Link"_s;
    }

    void theSheetMakesAndChangesLinks()
    {
        QFETCH(QString, text);
        QFETCH(int, from);
        QFETCH(int, to);
        QFETCH(QString, offered);
        QFETCH(QString, address);
        QFETCH(QString, words);
        QFETCH(QString, expected);
        QFETCH(QString, name);
        show(text);
        select(from, to);
        LinkSheet *sheet = askForLink();
        QVERIFY(sheet && sheet->isVisible());
        const auto fields = sheet->findChildren<QLineEdit *>();
        QCOMPARE(fields.at(0)->text(), offered);
        fields.at(0)->setText(address);
        fields.at(1)->setText(words);
        confirm(*sheet);
        QCOMPARE(marked(content()), expected);
        QCOMPARE(editor().undoNames().undoName(), name);
        QCOMPARE(DescribedText::of(*savedAndRead(content())), DescribedText::of(content()));
        editor().undo();
        QCOMPARE(marked(content()), text);
        QVERIFY(!content().isUndoAvailable());
    }

    void aLinkBehindAnAttachmentIsNoneItself()
    {
        show(u""_s);
        QTextCharFormat attachment;
        attachment.setProperty(AttachmentName, u"a.pdf"_s);
        attachment.setProperty(AttachmentId, 1);
        QTextCursor(&content()).insertText(QString(QChar::ObjectReplacementCharacter), attachment);
        select(1, 1);
        LinkSheet *sheet = askForLink();
        sheet->findChildren<QLineEdit *>().at(0)->setText(u"http://a.b"_s);
        confirm(*sheet);
        QCOMPARE(marked(content()), u"\ufffc[http://a.b>http://a.b]"_s);
        select(2, 2);
        QVERIFY(!editor().currentCharFormat().hasProperty(AttachmentName));
    }

    void whatIsNoAddressIsNotConfirmed_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("told");
        QTest::newRow("nothing") << u"  "_s << u""_s;
        QTest::newRow("blanks") << u"ftp//bad address"_s << u"An address has no blanks"_s;
        QTest::newRow("no host") << u"https://"_s << u"“https://” is no address"_s;
        QTest::newRow("a bad port") << u"a.b:x"_s << u"“https://a.b:x” is no address"_s;
    }

    void whatIsNoAddressIsNotConfirmed()
    {
        QFETCH(QString, typed);
        QFETCH(QString, told);
        show(u"one"_s);
        LinkSheet *sheet = askForLink();
        QLineEdit *field = sheet->findChildren<QLineEdit *>().at(0);
        field->setText(typed);
        confirm(*sheet);
        QVERIFY(sheet->isVisible());
        QCOMPARE(field->text(), typed);
        QVERIFY2(field->accessibleDescription().contains(told),
                 qPrintable(field->accessibleDescription()));
        m_sheets->answer(modalResponseStop); // as a lock does
        QCOMPARE(marked(content()), u"one"_s);
    }

    void removingALinkLeavesItsWordsAndTheirLook()
    {
        show(u"a [link>http://a.b] c"_s);
        select(3, 5);
        QTextCharFormat bold;
        bold.setFontWeight(QFont::Bold);
        editor().applyCharFormat(bold);
        select(6, 6);
        action(TextCommand::RemoveLink).trigger();
        QCOMPARE(DescribedText::of(content()), u"a l[weight=700]in[]k c"_s);
        QCOMPARE(editor().undoNames().undoName(), u"Remove Link"_s);
    }

    void addressesBecomeLinksAsTheyAreWritten_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("expected");
        QTest::newRow("web") << u"see http://a.b/c?d=1#e "_s
                             << u"see [http://a.b/c?d=1#e>http://a.b/c?d=1#e] "_s;
        QTest::newRow("without a scheme")
            << u"www.example.org, "_s << u"[www.example.org>https://www.example.org], "_s;
        QTest::newRow("mail in brackets")
            << u"(me@example.org) "_s << u"([me@example.org>mailto:me@example.org]) "_s;
        QTest::newRow("with a bracket of its own")
            << u"https://a.b/c_(d) "_s << u"[https://a.b/c_(d)>https://a.b/c_(d)] "_s;
        QTest::newRow("in brackets, with brackets of its own")
            << u"(https://a.b/c_(d)). "_s << u"([https://a.b/c_(d)>https://a.b/c_(d)]). "_s;
        QTest::newRow("a name with a point") << u"readme.txt "_s << u"readme.txt "_s;
        QTest::newRow("another scheme") << u"ftp://a.b "_s << u"ftp://a.b "_s;
        QTest::newRow("no host") << u"https:// "_s << u"https:// "_s;
        QTest::newRow("not ended yet") << u"https://a.b"_s << u"https://a.b"_s;
    }

    void addressesBecomeLinksAsTheyAreWritten()
    {
        QFETCH(QString, typed);
        QFETCH(QString, expected);
        show(u""_s);
        QTest::keyClicks(&editor(), typed);
        QTRY_COMPARE(marked(content()), expected);
        if (typed != expected) {
            QCOMPARE(editor().undoNames().undoName(), u"Insert Link"_s);
            editor().undo();
            QCOMPARE(marked(content()), typed);
            QTest::keyClicks(&editor(), u"on "_s); // and it stays as it was wanted
            QCoreApplication::processEvents();
            QCOMPARE(marked(content()), typed + u"on "_s);
        }
    }

    void aPastedAddressIsALink()
    {
        show(u"see "_s);
        editor().moveCursor(QTextCursor::End);
        QGuiApplication::clipboard()->setText(u"https://example.org"_s);
        editor().paste();
        QTRY_COMPARE(marked(content()), u"see [https://example.org>https://example.org]"_s);
        editor().undo();
        QCOMPARE(marked(content()), u"see https://example.org"_s);
        editor().undo();
        editor().redo();
        QCoreApplication::processEvents();
        QCOMPARE(marked(content()), u"see https://example.org"_s);
        QVERIFY(content().isRedoAvailable());
    }

    void linksAreOpenedByTheirKind_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QUrl>("opened");
        QTest::addColumn<QString>("told");
        const auto refused = u"This link cannot be opened from a document."_s;
        QTest::newRow("https") << u"https://a.b/c"_s << QUrl(u"https://a.b/c"_s) << u""_s;
        QTest::newRow("mail") << u"mailto:a@b.c"_s << QUrl(u"mailto:a@b.c"_s) << u""_s;
        QTest::newRow("no scheme") << u"www.a.b"_s << QUrl(u"https://www.a.b"_s) << u""_s;
        QTest::newRow("a program") << u"javascript:alert(1)"_s << QUrl() << refused;
        QTest::newRow("another protocol") << u"smb://a/b"_s << QUrl() << refused;
        QTest::newRow("a place in the text") << u"#top"_s << QUrl() << refused;
        QTest::newRow("a file") << u"file:///a/b%20c.txt"_s << QUrl()
                                << u"Do you want to open a file of this computer?"_s;
        QTest::newRow("a file elsewhere") << u"file://host/a"_s << QUrl() << refused;
    }

    void linksAreOpenedByTheirKind()
    {
        QFETCH(QString, address);
        QFETCH(QUrl, opened);
        QFETCH(QString, told);
        show(u"[link>"_s + address + u"]"_s);
        m_window->setReadOnly(true); // all the same
        select(2, 2);
        action(TextCommand::OpenLink).trigger();
        m_queue.runAll();
        QCOMPARE(m_workspace.opened, opened.isEmpty() ? QList<QUrl>() : QList<QUrl> {opened});
        QCOMPARE(m_sheets->alerts.isEmpty() ? QString() : m_sheets->alerts.first().messageText,
                 told);
        QVERIFY(m_workspace.openedLinkedFiles.isEmpty());
    }

    void aFileIsOpenedOnceItsPathWasAgreedTo()
    {
        show(u"[link>file:///a/b%20c.txt]"_s);
        m_sheets->answers = {AlertAnswer::First, AlertAnswer::Second};
        for (const QStringList &opened : {QStringList(), QStringList(u"/a/b c.txt"_s)}) {
            action(TextCommand::OpenLink).trigger();
            m_queue.runAll();
            QCOMPARE(m_workspace.openedLinkedFiles, opened);
            QVERIFY(m_sheets->alerts.last().informativeText.contains(u"/a/b c.txt"_s));
        }
        m_workspace.opens = false;
        m_sheets->answers = {AlertAnswer::Second};
        action(TextCommand::OpenLink).trigger();
        m_queue.runAll();
        QCOMPARE(m_sheets->alerts.last().messageText, u"The file could not be opened."_s);
    }

    void aClickWithControlOpensAndShowsAHandBefore()
    {
        show(u"a [link>http://a.b]"_s);
        QWidget *view = editor().viewport();
        const QPoint place = placeOf(4);
        QTest::mouseClick(view, Qt::LeftButton, {}, place);
        QVERIFY(m_workspace.opened.isEmpty());
        QMouseEvent move(QEvent::MouseMove, place, view->mapToGlobal(place), Qt::NoButton,
                         Qt::NoButton, Qt::ControlModifier);
        QCoreApplication::sendEvent(view, &move);
        QCOMPARE(view->cursor().shape(), Qt::PointingHandCursor);
        QTest::mouseClick(view, Qt::LeftButton, Qt::ControlModifier, place);
        QCOMPARE(m_workspace.opened, QList<QUrl> {QUrl(u"http://a.b"_s)});
        QTest::mouseClick(view, Qt::LeftButton, Qt::ControlModifier, placeOf(0));
        QCOMPARE(m_workspace.opened.size(), 1);
    }

    void theTipTellsTheAddressAsItIs()
    {
        show(u"[link>http://a.b/<b]"_s);
        const QPoint place = placeOf(2);
        QHelpEvent ask(QEvent::ToolTip, place, editor().viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(editor().viewport(), &ask);
        QVERIFY(QToolTip::text().contains(u"http://a.b/&lt;b<br>Ctrl+click to open"_s));
        m_window->showLockedAppearance();
        QTRY_VERIFY(!QToolTip::isVisible());
    }
};

QTEST_MAIN(TestLinks)
#include "tst_links.moc"
