#include "editor/copiedtext.h"
#include "editor/heightestimate.h"
#include "editor/objectselection.h"
#include "editor/texteditor.h"
#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/textproperties.h"

#include <QApplication>
#include <QBuffer>
#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QTest>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

#include <map>
#include <memory>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

using EditorPtr = std::unique_ptr<TextEditor>;

constexpr QClipboard::Mode modes[] = {QClipboard::Clipboard, QClipboard::Selection};

QByteArray bodyWithFiles(const QByteArray &rtf)
{
    const auto file = [](const QByteArray &name, const QByteArray &bytes) {
        return FlatRtfdEntry {name, FlatRtfdEntry::Kind::File, bytes, {}};
    };
    const FlatRtfdEntry folder {
        "folder", FlatRtfdEntry::Kind::Directory, {}, {file("inner", "within")}};
    return writeFlatRtfd({file("a.bin", "first"), folder, file("TXT.rtf", rtf)});
}

const QByteArray attachmentsText = "{\\rtf1{\\fonttbl{\\f0 DejaVu Serif;}}"
                                   "{\\colortbl;\\red255\\green0\\blue0;}\\f0\\fs36 one\\\n"
                                   "\\pard\\qc {\\b bold}{\\cf1 red}{{\\NeXTGraphic a.bin "
                                   "\\width400 \\height300\n}\xac}{{\\NeXTGraphic folder "
                                   "\\width20 \\height30\n}\xac}\\\n\\pard last}";

EditorPtr editorOf(const QByteArray &body)
{
    auto editor = std::make_unique<TextEditor>();
    auto document = std::make_unique<QTextDocument>();
    readBody(body, *document);
    if (editor->showDocument(std::move(document)) != TextEditor::ShowResult::Shown) {
        return nullptr;
    }
    return editor;
}

std::map<QByteArray, FlatRtfdEntry> entriesOf(const QByteArray &body)
{
    std::map<QByteArray, FlatRtfdEntry> entries;
    const FlatRtfd folder = readFlatRtfd(body).value_or(FlatRtfd());
    for (const FlatRtfdEntry &entry : folder.entries) {
        if (entry.name != ".") {
            entries.insert({entry.name, entry});
        }
    }
    return entries;
}

QByteArray pictureOf(Qt::GlobalColor colour, const char *format = "PNG")
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(colour);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, format);
    return png.data();
}

QByteArray bodyWithPicture(const QByteArray &file, const QByteArray &size)
{
    return writeFlatRtfd({{"a.png", FlatRtfdEntry::Kind::File, file, {}},
                          {"TXT.rtf",
                           FlatRtfdEntry::Kind::File,
                           "{\\rtf1 {{\\NeXTGraphic a.png " + size + "\n}\xac}}",
                           {}}});
}

/// Text and look, a paragraph each, as far as they are shown.
QStringList looksOf(const QTextDocument &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        QString line = QString::number(int(block.blockFormat().alignment()));
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            QTextCharFormat format = part.fragment().charFormat();
            format.clearProperty(AttachmentId);
            QString look;
            QDebug(&look) << format.properties();
            line += u" ["_s + look + u']' + part.fragment().text();
        }
        lines << line;
    }
    return lines;
}

std::unique_ptr<QTextDocument> reopened(const QTextDocument &document)
{
    auto again = std::make_unique<QTextDocument>();
    readBody(bodyFromDocument(document), *again);
    return again;
}

} // namespace

class TestCopiedText : public QObject
{
    Q_OBJECT

private slots:
    void whatALockedTextGaveToAClipboardIsGone();
    void whatOthersGaveToAClipboardStays_data();
    void whatOthersGaveToAClipboardStays();
    void plainTextHasItsVeryCharacters_data();
    void plainTextHasItsVeryCharacters();
    void aCutAndPastedTextIsWhatItWas();
    void aCopyInAnotherEditorIsWhatItWas();
    void aCopyBesideItsOriginalHasAFileOfItsOwn();
    void aParagraphKeepsItsAlignment();
    void pastedHtmlLooksAsItWillWhenReopened_data();
    void pastedHtmlLooksAsItWillWhenReopened();
    void attachmentsTakeTheRoomThatWasEstimated_data();
    void attachmentsTakeTheRoomThatWasEstimated();
    void aPictureIsDrawn();
    void onlyTheSelectedPictureHasTheColourOfTheSelection();
    void textInUtf8AloneIsTaken();
    void whatSaysMostIsTaken_data();
    void whatSaysMostIsTaken();
    void aDragGivesOutNothingOnceItsTextIsHidden();
    void aPictureAloneIsOfferedAsOne_data();
    void aPictureAloneIsOfferedAsOne();
    void wordsOfAnItemAreNoItem();
};

void TestCopiedText::whatALockedTextGaveToAClipboardIsGone()
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    const EditorPtr editor = editorOf("secret");
    editor->selectAll();
    editor->copy();
    QCOMPARE(clipboard->text(), u"secret"_s);
    if (clipboard->supportsSelection()) {
        QTest::keyClick(editor.get(), Qt::Key_A, Qt::ControlModifier);
    }
    editor->setContentHidden(true);
    for (const QClipboard::Mode mode : modes) {
        QCOMPARE(clipboard->text(mode), QString());
    }
}

void TestCopiedText::whatOthersGaveToAClipboardStays_data()
{
    QTest::addColumn<bool>("isEditor");
    QTest::newRow("another editor of the program") << true;
    QTest::newRow("a text that came from elsewhere") << false;
}

void TestCopiedText::whatOthersGaveToAClipboardStays()
{
    QFETCH(bool, isEditor);
    const EditorPtr editor = editorOf("secret");
    const EditorPtr other = editorOf("other");
    editor->selectAll();
    editor->copy();
    if (isEditor) {
        other->selectAll();
        other->copy();
    } else {
        QGuiApplication::clipboard()->setText(u"other"_s);
    }
    editor->setContentHidden(true);
    QCOMPARE(QGuiApplication::clipboard()->text(), u"other"_s);
}

void TestCopiedText::plainTextHasItsVeryCharacters_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");
    const auto exact = [](const char *name, const QString &text) {
        QTest::newRow(name) << text.toUtf8() << text;
    };
    exact("spaces of every kind", u"a\u00a0b\u2009c\u3000d\t"_s);
    exact("line ends of every kind", u"\na\u2028b\fc\n\n"_s);
    exact("characters that the toolkit uses itself", u"a\ufdd0b\ufdd1c\ufffdd"_s);
    QTest::newRow("attachments") << bodyWithFiles(attachmentsText)
                                 << u"one\nboldred\ufffc\ufffc\nlast"_s;
    QTest::newRow("cells") << QByteArray("{\\rtf1 x\\par\\trowd\\cellx99\\cellx999 "
                                         "\\intbl a\\~\\cell b\\cell\\row\\pard y}")
                           << u"x\na\u00a0\tb\ny"_s;
    QTest::newRow("items of a list") << QByteArray("{\\rtf1{\\pntext 1.\\tab}{\\*\\pn\\pnlvlbody"
                                                   "\\pndec}a\\par b}")
                                     << u"a\nb"_s;
}

void TestCopiedText::plainTextHasItsVeryCharacters()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, text);
    const EditorPtr editor = editorOf(body);
    editor->selectAll();
    editor->copy();
    QCOMPARE(QGuiApplication::clipboard()->text(), text);
}

void TestCopiedText::aCutAndPastedTextIsWhatItWas()
{
    const EditorPtr editor = editorOf(bodyWithFiles(attachmentsText));
    const QStringList before = looksOf(*editor->content());
    const QByteArray body = bodyFromDocument(*editor->content());
    editor->selectAll();
    editor->cut();
    QCOMPARE(editor->toPlainText(), QString());
    editor->paste();
    QCOMPARE(looksOf(*editor->content()), before);
    QCOMPARE(entriesOf(bodyFromDocument(*editor->content())), entriesOf(body));
    editor->undo();
    QCOMPARE(editor->toPlainText(), QString());
    editor->undo();
    QCOMPARE(looksOf(*editor->content()), before);
}

void TestCopiedText::aCopyInAnotherEditorIsWhatItWas()
{
    const EditorPtr editor = editorOf(bodyWithFiles(attachmentsText));
    const EditorPtr other = editorOf(QByteArray());
    editor->selectAll();
    editor->copy();
    other->paste();
    QCOMPARE(looksOf(*other->content()), looksOf(*editor->content()));
    QCOMPARE(entriesOf(bodyFromDocument(*other->content())),
             entriesOf(bodyFromDocument(*editor->content())));
}

void TestCopiedText::aCopyBesideItsOriginalHasAFileOfItsOwn()
{
    const EditorPtr editor = editorOf(bodyWithFiles(attachmentsText));
    const EditorPtr other =
        editorOf(writeFlatRtfd({{"a.bin", FlatRtfdEntry::Kind::File, "of the other", {}},
                                {"TXT.rtf",
                                 FlatRtfdEntry::Kind::File,
                                 "{\\rtf1 {{\\NeXTGraphic a.bin \\width20 \\height30\n}\xac}}",
                                 {}}}));
    editor->selectAll();
    editor->copy();
    other->moveCursor(QTextCursor::End);
    other->paste();
    const auto entries = entriesOf(bodyFromDocument(*other->content()));
    QCOMPARE(entries.size(), 4U);
    QCOMPARE(entries.at("a.bin").bytes, "of the other");
    QCOMPARE(entries.at("1__#$!@%!#__a.bin").bytes, "first");
    QCOMPARE(entries.at("folder").children.front().bytes, "within");
}

void TestCopiedText::aParagraphKeepsItsAlignment()
{
    const EditorPtr editor = editorOf(bodyWithFiles(attachmentsText));
    const EditorPtr other = editorOf("x\n\ny");
    QTextCursor cursor(editor->content()->findBlockByNumber(1));
    cursor.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    editor->setTextCursor(cursor);
    editor->copy();
    other->setTextCursor(QTextCursor(other->content()->findBlockByNumber(1)));
    other->paste();
    QCOMPARE(other->toPlainText(), u"x\nboldred\ufffc\ufffc\ny"_s);
    QCOMPARE(looksOf(*other->content()).at(1), looksOf(*editor->content()).at(1));
}

void TestCopiedText::pastedHtmlLooksAsItWillWhenReopened_data()
{
    QTest::addColumn<QString>("html");
    QTest::addColumn<QString>("text");
    QTest::newRow("an image within the text")
        << u"a<img src='data:image/gif;base64,R0lGODlhAQABAAAAACw='>b"_s << u"ab"_s;
    QTest::newRow("a sign for an object, without one") << u"a&#xfffc;b"_s << u"ab"_s;
    QTest::newRow("a table") << u"x<table><tr><td>a</td><td>b</td></tr></table>y"_s
                             << u"x\na\nb\ny"_s;
    QTest::newRow("bullets") << u"<ul><li>a</li><li>b</li></ul>"_s << u"a\nb"_s;
    QTest::newRow("items without a mark")
        << u"<ul style='list-style-type:none'><li>a</li><li>b</li></ul>"_s << u"a\nb"_s;
    QTest::newRow("looks that are not kept")
        << u"<s>a</s><span style='background-color:#ff0000'>b</span><sup>c</sup>"_s << u"abc"_s;
    QTest::newRow("looks that are kept")
        << u"<h1 align=center>a</h1><p><b>b</b><i>c</i><font color=red>d</font></p>"_s
        << u"a\nbcd"_s;
}

void TestCopiedText::pastedHtmlLooksAsItWillWhenReopened()
{
    QFETCH(QString, html);
    QFETCH(QString, text);
    const EditorPtr editor = editorOf(QByteArray());
    auto data = std::make_unique<QMimeData>();
    data->setHtml(html);
    QGuiApplication::clipboard()->setMimeData(data.release());
    editor->paste();
    QCOMPARE(editor->toPlainText(), text);
    QCOMPARE(looksOf(*reopened(*editor->content())), looksOf(*editor->content()));
}

void TestCopiedText::attachmentsTakeTheRoomThatWasEstimated_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<double>("least");
    QTest::newRow("a picture") << pictureOf(Qt::red) << QByteArray("\\width1500 \\height3000")
                               << 195.0;
    QTest::newRow("a picture said to be huge")
        << pictureOf(Qt::red) << QByteArray("\\width100000 \\height2000000000") << 4000.0;
    QTest::newRow("a picture without a size") << pictureOf(Qt::red) << QByteArray() << 40.0;
    QTest::newRow("another file") << QByteArray("%PDF") << QByteArray("\\width20 \\height20")
                                  << 40.0;
}

void TestCopiedText::attachmentsTakeTheRoomThatWasEstimated()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, size);
    QFETCH(double, least);
    const EditorPtr editor = editorOf(bodyWithPicture(file, size));
    editor->resize(TextEditor::referenceWidth, 600);
    editor->show();
    const double shown = editor->content()->size().height();
    QVERIFY2(shown >= least, qPrintable(QString::number(shown)));
    const double estimated =
        HeightEstimate(TextEditor::referenceWidth, editor->viewport()).of(*editor->content()).wide;
    QVERIFY2(shown <= estimated, qPrintable(QString::number(estimated)));
}

void TestCopiedText::aPictureIsDrawn()
{
    const EditorPtr editor =
        editorOf(bodyWithPicture(pictureOf(Qt::red), "\\width1500 \\height1500"));
    editor->resize(400, 300);
    editor->show();
    const QImage shown = editor->viewport()->grab().toImage();
    QCOMPARE(shown.pixelColor(64, 64), QColor(Qt::red));
}

void TestCopiedText::onlyTheSelectedPictureHasTheColourOfTheSelection()
{
    const QByteArray body =
        writeFlatRtfd({{"a.png", FlatRtfdEntry::Kind::File, pictureOf(Qt::red), {}},
                       {"TXT.rtf",
                        FlatRtfdEntry::Kind::File,
                        "{\\rtf1 {{\\NeXTGraphic a.png \\width600 \\height600\n}\xac}"
                        "{{\\NeXTGraphic a.png \\width1500 \\height1500\n}\xac}}",
                        {}}});
    const EditorPtr editor = editorOf(body);
    const ObjectSelection selection(*editor);
    editor->resize(400, 300);
    editor->show();
    QTextCursor cursor(editor->content());
    cursor.setPosition(1, QTextCursor::KeepAnchor);
    editor->setTextCursor(cursor);
    const QImage shown = editor->viewport()->grab().toImage();
    const QColor paper = editor->palette().color(QPalette::Base);
    QCOMPARE(shown.pixelColor(34, 24), paper); // above it
    QVERIFY(shown.pixelColor(34, 94) != paper);
}

void TestCopiedText::textInUtf8AloneIsTaken()
{
    const EditorPtr editor = editorOf(QByteArray());
    auto data = std::make_unique<QMimeData>();
    data->setData(u"text/plain;charset=utf-8"_s, u"d\u00e9j\u00e0"_s.toUtf8());
    QGuiApplication::clipboard()->setMimeData(data.release());
    QVERIFY(editor->canPaste());
    editor->paste();
    QCOMPARE(editor->toPlainText(), u"d\u00e9j\u00e0"_s);
}

void TestCopiedText::whatSaysMostIsTaken_data()
{
    using Offers = QMap<QString, QByteArray>;
    QTest::addColumn<Offers>("offers");
    QTest::addColumn<QString>("text");
    const QByteArray rtf = "{\\rtf1 {\\b rich}}";
    QTest::newRow("RTF before HTML and text")
        << Offers {{u"text/plain"_s, "text"}, {u"text/html"_s, "<i>html</i>"}, {u"text/rtf"_s, rtf}}
        << u"rich"_s;
    QTest::newRow("RTF as office programs call it")
        << Offers {{u"text/plain"_s, "text"}, {u"text/richtext"_s, rtf}} << u"rich"_s;
    QTest::newRow("HTML before what is called RTF and is none")
        << Offers {{u"text/html"_s, "<i>html</i>"}, {u"text/rtf"_s, "rich"}} << u"html"_s;
    QTest::newRow("names of files are no text")
        << Offers {{u"text/plain"_s, "/a.rtf"}, {u"text/uri-list"_s, "file:///a.rtf\r\n"}} << u""_s;
    QTest::newRow("an address is")
        << Offers {{u"text/plain"_s, "http://a/"}, {u"text/uri-list"_s, "http://a/\r\n"}}
        << u"http://a/"_s;
}

void TestCopiedText::whatSaysMostIsTaken()
{
    using Offers = QMap<QString, QByteArray>;
    QFETCH(Offers, offers);
    QFETCH(QString, text);
    const EditorPtr editor = editorOf(QByteArray());
    auto data = std::make_unique<QMimeData>();
    for (auto offer = offers.cbegin(); offer != offers.cend(); ++offer) {
        data->setData(offer.key(), offer.value());
    }
    QGuiApplication::clipboard()->setMimeData(data.release());
    editor->paste();
    QCOMPARE(editor->toPlainText(), text);
    QCOMPARE(editor->textCursor().charFormat().fontWeight() == QFont::Bold, text == u"rich"_s);
}

void TestCopiedText::aDragGivesOutNothingOnceItsTextIsHidden()
{
    const EditorPtr editor = editorOf("secret");
    editor->selectAll();
    auto common = std::make_unique<QMimeData>();
    common->setText(u"secret"_s);
    const CopiedText dragged(std::move(common), editor->textCursor(), editor.get());
    for (const bool hidden : {false, true}) {
        editor->setContentHidden(hidden);
        const QStringList formats = dragged.formats();
        QVERIFY(formats.contains(u"text/rtf"_s) && formats.contains(u"application/rtf"_s));
        for (const QString &format : formats) {
            QCOMPARE(dragged.data(format).contains("secret"), !hidden);
        }
    }
}

void TestCopiedText::aPictureAloneIsOfferedAsOne_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("size");
    QTest::addColumn<QString>("words"); // beside it
    QTest::addColumn<QStringList>("types");
    const QByteArray shown = "\\width1500 \\height1500";
    const QStringList none;
    QTest::newRow("a PNG is its file")
        << pictureOf(Qt::red) << shown << QString() << QStringList {u"image/png"_s};
    QTest::newRow("a JPEG is its file, and a PNG")
        << pictureOf(Qt::red, "JPG") << shown << QString()
        << QStringList {u"image/jpeg"_s, u"image/png"_s};
    QTest::newRow("words beside it say more") << pictureOf(Qt::red) << shown << u"words"_s << none;
    QTest::newRow("a file that stands as an icon")
        << pictureOf(Qt::red) << QByteArray() << QString() << none;
    QTest::newRow("a file that is no picture") << QByteArray("bytes") << shown << QString() << none;
}

void TestCopiedText::aPictureAloneIsOfferedAsOne()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, size);
    QFETCH(QString, words);
    QFETCH(QStringList, types);
    const EditorPtr editor = editorOf(bodyWithPicture(file, size));
    editor->moveCursor(QTextCursor::End);
    editor->insertText(words);
    editor->selectAll();
    editor->copy();
    const QMimeData *copied = QGuiApplication::clipboard()->mimeData();
    QCOMPARE(copied->formats().filter(u"image/"_s), types);
    for (const QString &type : types) {
        const QByteArray given = copied->data(type);
        QCOMPARE(given == file, type == types.first());
        QCOMPARE(QImage::fromData(given).size(), QSize(8, 8));
        QVERIFY(QImage::fromData(given).pixelColor(4, 4).red() > 250);
    }
    const EditorPtr other = editorOf("");
    other->paste();
    QCOMPARE(entriesOf(bodyFromDocument(*other->content())).at("a.png").bytes, file);
    const CopiedText dragged(std::make_unique<QMimeData>(), editor->textCursor(), editor.get());
    editor->setContentHidden(true);
    for (const QString &format : dragged.formats()) {
        QCOMPARE(dragged.data(format), QByteArray());
    }
    copied = QGuiApplication::clipboard()->mimeData();
    QVERIFY(!copied || copied->formats().isEmpty());
}

void TestCopiedText::wordsOfAnItemAreNoItem()
{
    const EditorPtr editor = editorOf("one\ntwo");
    editor->selectAll();
    editor->textCursor().createList(QTextListFormat::ListDisc);
    const EditorPtr other = editorOf("xy");
    const auto copyTo = [&](int from, int to) {
        QTextCursor cursor(editor->content());
        cursor.setPosition(from);
        cursor.setPosition(to, QTextCursor::KeepAnchor);
        editor->setTextCursor(cursor);
        editor->copy();
        other->paste();
    };
    other->moveCursor(QTextCursor::Right);
    copyTo(0, 2);
    QCOMPARE(other->toPlainText(), u"xony"_s);
    other->selectAll();
    other->textCursor().removeSelectedText();
    copyTo(1, 7);
    QCOMPARE(other->toPlainText(), u"ne\ntwo"_s);
    QVERIFY(!other->content()->begin().textList() && other->content()->lastBlock().textList());
    other->selectAll();
    copyTo(0, 7);
    QCOMPARE(other->toPlainText(), u"one\ntwo"_s);
    QVERIFY(other->content()->begin().textList());
    other->moveCursor(QTextCursor::Start);
    copyTo(4, 7);
    QCOMPARE(other->toPlainText(), u"twoone\ntwo"_s);
}

QTEST_MAIN(TestCopiedText)
#include "tst_copiedtext.moc"
