#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/richtextexport.h"
#include "richtext/textproperties.h"

#include <QBuffer>
#include <QImage>
#include <QTest>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>
#include <QTextTable>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

FlatRtfdEntry file(const QByteArray &name, const QByteArray &bytes)
{
    return {name, FlatRtfdEntry::Kind::File, bytes, {}};
}

QByteArray attachmentGroup(const QByteArray &name)
{
    return "{{\\NeXTGraphic " + name + " \\width400 \\height200\n}\xac}";
}

/// A text with these attachments in a row.
void fill(QTextDocument &document, const FlatRtfdEntries &files)
{
    QByteArray rtf = "{\\rtf1 ";
    for (const FlatRtfdEntry &entry : files) {
        rtf += attachmentGroup(entry.name);
    }
    FlatRtfdEntries entries = files;
    entries.push_back(file("TXT.rtf", rtf + '}'));
    readBody(writeFlatRtfd(entries), document);
}

QByteArray png(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG") ? bytes : QByteArray();
}

} // namespace

class TestRichTextExport : public QObject
{
    Q_OBJECT

private slots:
    void aPackageHoldsTextAndFilesUnchanged();
    void namesAreMadeHarmlessInTextAndFolder_data();
    void namesAreMadeHarmlessInTextAndFolder();
    void aPackageIsReadAsABody();
    void imagesStandInTheTextAndOtherFilesDoNot();
    void theTextIsPlainAsciiWithAFallback();
    void listsAndLinksAreInTheDialect();
    void tablesThatNoReaderTakesBecomeParagraphs_data();
    void tablesThatNoReaderTakesBecomeParagraphs();
};

void TestRichTextExport::aPackageHoldsTextAndFilesUnchanged()
{
    QTextDocument document;
    const FlatRtfdEntry folder {
        "f", FlatRtfdEntry::Kind::Directory, {}, {file(".", "told"), file("inner", "side")}};
    fill(document, {file("a b.png", "png"), folder});
    const PackageEntries entries = packageFromDocument(document);
    QCOMPARE(entries.size(), std::size_t(3));
    QVERIFY(entries[0] == (PackageEntry {"a b.png", false, "png", {}}));
    QVERIFY(entries[1]
            == (PackageEntry {"f", true, {}, {PackageEntry {"inner", false, "side", {}}}}));
    QCOMPARE(entries[2].name, "TXT.rtf");
    QVERIFY(entries[2].bytes.contains("{{\\NeXTGraphic a b.png \\width400 \\height200 "));
}

void TestRichTextExport::namesAreMadeHarmlessInTextAndFolder_data()
{
    QTest::addColumn<QByteArrayList>("names");
    QTest::addColumn<QByteArrayList>("written");
    const auto row = [](const char *title, const QByteArrayList &names,
                        const QByteArrayList &written) {
        QTest::newRow(title) << names << written;
    };
    row("nothing but dots", {"..."}, {"_..."});
    row("a path above", {"../../x"}, {".._.._x"});
    row("an absolute path", {"/etc/passwd"}, {"_etc_passwd"});
    row("another system's path", {"C:\\\\x"}, {"C__x"});
    row("the text's own name", {"txt.RTF"}, {"1__#$!@%!#__txt.RTF"});
    row("names that differ in case", {"a.png", "A.png"}, {"a.png", "1__#$!@%!#__A.png"});
    row("names that differ in composition", {"\\u228 ", "a\\u776 "},
        {"\xc3\xa4", "1__#$!@%!#__a\xcc\x88"});
    row("a name that is made by another's change", {"a", "1__#$!@%!#__A", "A"},
        {"a", "1__#$!@%!#__A", "2__#$!@%!#__A"});
}

void TestRichTextExport::namesAreMadeHarmlessInTextAndFolder()
{
    QFETCH(QByteArrayList, names);
    QFETCH(QByteArrayList, written);
    FlatRtfdEntries files;
    QByteArray rtf = "{\\rtf1\\uc0 ";
    for (const QByteArray &name : names) {
        rtf += attachmentGroup(name);
        QTextDocument reading; // How the name reads is the reader's affair.
        readBody(writeFlatRtfd({file("TXT.rtf", "{\\rtf1\\uc0 " + attachmentGroup(name) + '}')}),
                 reading);
        QTextCursor cursor(&reading);
        cursor.setPosition(1);
        const QString read = cursor.charFormat().stringProperty(AttachmentName);
        files.push_back(file(read.toUtf8(), "bytes of " + name));
    }
    files.push_back(file("TXT.rtf", rtf + '}'));
    QTextDocument document;
    readBody(writeFlatRtfd(files), document);

    const PackageEntries entries = packageFromDocument(document);
    QCOMPARE(qsizetype(entries.size()), names.size() + 1);
    for (qsizetype i = 0; i < names.size(); ++i) {
        QCOMPARE(entries[std::size_t(i)].name, written[i]);
    }
    QTextDocument again;
    readBody(bodyFromPackage(entries), again);
    for (int i = 0; i < names.size(); ++i) {
        QTextCursor cursor(&again);
        cursor.setPosition(i + 1);
        const QString name = cursor.charFormat().stringProperty(AttachmentName);
        const FlatRtfdEntry *entry = AttachmentStore::of(again).entry(name);
        QVERIFY(entry);
        QCOMPARE(entry->bytes, "bytes of " + names[i]);
    }
}

void TestRichTextExport::aPackageIsReadAsABody()
{
    const PackageEntries entries {
        {"a.png", false, "png", {}},
        {"folder", true, {}, {{"inner", false, "side", {}}}},
        {"txt.rtf", false, "{\\rtf1 see " + attachmentGroup("a.png") + "}", {}}};
    QTextDocument document;
    readBody(bodyFromPackage(entries), document);
    QCOMPARE(document.toPlainText(), u"see \ufffc"_s);
    QCOMPARE(AttachmentStore::of(document).entry(u"a.png"_s)->bytes, "png");
    QVERIFY(AttachmentStore::of(document).entry(u"folder"_s));
}

void TestRichTextExport::imagesStandInTheTextAndOtherFilesDoNot()
{
    QTextDocument document;
    const QByteArray image = png(3, 2);
    fill(document, {file("a.png", image), file("b.pdf", "%PDF-1.4"), file("c.png", "broken")});
    const QByteArray rtf = rtfFromDocument(document);
    QCOMPARE(rtf.count("\\pict"), 1);
    QVERIFY(rtf.contains("{\\pict\\pngblip\\picw3\\picwgoal400\\pich2\\pichgoal200\n89504e47"));
    const qsizetype start = rtf.indexOf("\\pichgoal200") + 12;
    const QByteArray hex = rtf.sliced(start, rtf.indexOf('}', start) - start);
    QCOMPARE(QByteArray::fromHex(hex), image);
    QVERIFY(!rtf.contains("NeXTGraphic"));
}

void TestRichTextExport::theTextIsPlainAsciiWithAFallback()
{
    QTextDocument document;
    QTextCursor(&document).insertText(u"\u3042\U0001F600\u2028\u00e9\u00a0\ufb01"_s);
    const QByteArray rtf = rtfFromDocument(document);
    QVERIFY(rtf.contains("\\u12354?\\u-10179?\\u-8704?\\line \\'e9\\~\\u-1279?}"));
    QCOMPARE(plainTextFromBody(rtf), u"\u3042\U0001F600\u2028\u00e9\u00a0\ufb01"_s);
}

void TestRichTextExport::listsAndLinksAreInTheDialect()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    QTextListFormat list;
    list.setStyle(QTextListFormat::ListDecimal);
    cursor.createList(list);
    QTextCharFormat link;
    link.setAnchor(true);
    link.setAnchorHref(u"https://a.b/"_s);
    cursor.insertText(u"see"_s, link);
    cursor.insertBlock();
    cursor.insertText(u"two"_s, QTextCharFormat());
    const QByteArray rtf = packageFromDocument(document).back().bytes;
    const auto from = [&rtf](const char *start) {
        return rtf.sliced(rtf.indexOf(start));
    };
    QVERIFY(from("{\\*\\listtable")
                .startsWith(
                    "{\\*\\listtable{\\list\\listtemplateid1\\listhybrid{\\listlevel\\levelnfc0"
                    "\\levelnfcn0\\leveljc0\\leveljcn0\\levelfollow0\\levelstartat1"
                    "\\levelspace360\\levelindent0{\\*\\levelmarker \\{decimal\\}.}"
                    "{\\leveltext\\leveltemplateid100\\'02\\'00.;}{\\levelnumbers\\'01;}"
                    "\\fi-360\\li720\\lin720 }{\\listname ;}\\listid1}}\n{\\*\\listoverridetable"
                    "{\\listoverride\\listid1\\listoverridecount0\\ls1}}\n"));
    QCOMPARE(from("\\li720\\fi-720"),
             "\\li720\\fi-720\\pardirnatural\\partightenfactor0\n\\ls1\\ilvl0\n{\\listtext\t1.\t}"
             "{\\field{\\*\\fldinst{HYPERLINK \"https://a.b/\"}}{\\fldrslt \\cf0 see}}\\\n"
             "\\cf0 {\\listtext\t2.\t}two}");
}

void TestRichTextExport::tablesThatNoReaderTakesBecomeParagraphs_data()
{
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("depth");
    QTest::newRow("too many columns") << 600 << 1;
    QTest::newRow("too deep") << 1 << 40;
}

void TestRichTextExport::tablesThatNoReaderTakesBecomeParagraphs()
{
    QFETCH(int, columns);
    QFETCH(int, depth);
    QTextDocument document;
    QTextCursor cursor(&document);
    for (int i = 0; i < depth; ++i) {
        cursor = cursor.insertTable(1, columns)->cellAt(0, columns - 1).firstCursorPosition();
    }
    cursor.insertText(u"kept"_s);
    QVERIFY(plainTextFromBody(rtfFromDocument(document)).contains(u"kept"));
    QTextDocument again;
    readBody(bodyFromDocument(document), again);
    QVERIFY(again.toPlainText().contains(u"kept"));
}

QTEST_MAIN(TestRichTextExport)
#include "tst_richtextexport.moc"
