#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "support/describedtext.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

const QByteArray head =
    "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl\\f0 Arial;}"
    "{\\colortbl;\\red255\\green0\\blue0;\\red0\\green0\\blue0;\\red0\\green0\\blue255;}";
const QByteArray platformHead = "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709"
                                "{\\colortbl;\\red255\\green255\\blue255;\\red255\\green0\\blue0;}";
const QByteArray lists =
    "{\\*\\listtable"
    "{\\list{\\listlevel\\levelnfc23\\levelstartat1{\\leveltext\\'01\\uc0\\u8226 ;}"
    "{\\levelnumbers;}}{\\listlevel\\levelnfc23{\\leveltext\\'01\\uc0\\u9642 ;}}\\listid1}"
    "{\\list{\\listlevel\\levelnfc0\\levelstartat3{\\leveltext\\'02\\'00.;}{\\levelnumbers\\'01;}}"
    "{\\listlevel\\levelnfc4{\\leveltext\\'03(\\'01);}{\\levelnumbers\\'02;}}"
    "{\\listlevel\\levelnfc0{\\leveltext\\'05\\'00.\\'01-\\'02;}}\\listid2}"
    "{\\list{\\listlevel\\levelnfc23{\\leveltext\\'01\\uc0\\u8259 ;}}\\listid3}"
    "{\\list{\\listlevel\\levelnfc255{\\leveltext\\'00;}}\\listid4}}"
    "{\\*\\listoverridetable{\\listoverride\\listid1\\listoverridecount0\\ls1}"
    "{\\listoverride\\listid2\\ls2}{\\listoverride\\listid3\\ls3}{\\listoverride\\listid4\\ls4}}";
const QByteArray png = "{\\pict\\pngblip\\picwgoal300\\pichgoal150\\picscalex200 89504e470d0a1a0a}";

QString read(const QByteArray &rtf)
{
    QTextDocument document;
    readBody(rtf, document);
    return DescribedText::of(document);
}

} // namespace

class TestRtfDocument : public QObject
{
    Q_OBJECT

private slots:
    void looksAreRead_data();
    void looksAreRead();
    void listsAreRead_data();
    void listsAreRead();
    void tablesAreRead_data();
    void tablesAreRead();
    void picturesAreFilesOfTheDocument_data();
    void picturesAreFilesOfTheDocument();
    void whatIsReadIsWrittenAndReadAgain_data();
    void whatIsReadIsWrittenAndReadAgain();
    void whatWouldBeLostIsTold_data();
    void whatWouldBeLostIsTold();

private:
    void lookRows();
    void listRows();
    void tableRows();
};

void TestRtfDocument::lookRows()
{
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text) {
        QTest::newRow(name) << head + rtf + "}" << text;
    };
    row("strike, double and coloured", "\\strike a\\striked1\\strikec1 b\\strike0\\striked0 c",
        u"[strike=true]a[strike=true double=true strikecolour=#ff0000]b[]c"_s);
    row("underline of every kind", "\\ul a\\uldb b\\ulwave\\ulc1 c\\ulnone d",
        u"[line=1]a[line=1 word=uldb]b[linecolour=#ff0000 line=6]c[]d"_s);
    row("high and low", "\\super a\\sub b\\nosupersub c", u"[vertical=1]a[vertical=2]b[]c"_s);
    row("raised and lowered", "\\fs20\\up5 a\\dn6 b\\up0 c",
        u"[10 offset=25 shift=5]a[10 offset=-30 shift=-6]b[10]c"_s);
    row("highlight", "\\highlight3 a\\highlight0 b\\chcbpat2 c\\cb0 d",
        u"[bg=#ff0000ff]a[]b[bg=#ff000000]c[]d"_s);
    row("capitals", "\\caps a\\caps0\\scaps b", u"[caps=1]a[caps=3]b"_s);
    row("spacing", "\\expnd3\\expndtw15 a\\expndtw0 b", u"[spacing=1 by=1]a[]b"_s);
    row("what is only carried",
        "\\outl\\strokewidth60\\strokec1\\lang1036 a\\outl0\\strokewidth0 b",
        u"[words=\\outl\\strokewidth60\\strokec#ffff0000\\lang1036]a"
        "[words=\\strokec#ffff0000\\lang1036]b"_s);
    row("a link is a field",
        "{\\field{\\*\\fldinst{HYPERLINK \"http://x/?a b\" \\\\l \"p\"}}{\\fldrslt\\plain "
        "l\\b m}}n{\\field{\\*\\fldinst PAGE}{\\fldrslt\\cf1 7}}",
        u"[fg=#ff2a7fde line=1 anchor=true to=http://x/?a b#p linklook=true]l"
        "[fg=#ff2a7fde weight=700 line=1 anchor=true to=http://x/?a b#p linklook=true]m[]n"
        "[fg=#ffff0000]7"_s);
    row("a link with a look of its own",
        "{\\field{\\*\\fldinst HYPERLINK u:v}{\\fldrslt\\ul\\cf1 l}}",
        u"[fg=#ffff0000 line=1 anchor=true to=u:v]l"_s);
    row("indents and space", "\\pard\\li720\\fi-360\\ri300\\sb120\\sa60\\qj a",
        u"{align=8 top=8 bottom=4 left=48 right=20 first=-24}a"_s);
    row("lines",
        "\\pard\\sl360\\slmult1 a\\par\\pard\\sl-240 b\\par\\pard\\sl240\\slmaximum300 c"
        "\\par\\pard\\slleading30 d",
        u"{height=150 heightkind=1}a\n{height=16 heightkind=2}b\n"
        "{height=16 heightkind=3 maximum=300}c\n{height=2 heightkind=4}d"_s);
    row("tab stops", "\\pard\\tx720\\tqr\\tldot\\tx1440\\tqc\\tx2160\\tqdec\\tx2880 a",
        u"{tabs=48l,96r,144c,192d leaders=0100}a"_s);
    row("tab stops of an indented paragraph",
        "\\pard\\li720\\fi-360\\tx180\\tx720 a\\par\\pard\\li360\\fi150\\tx1500 b",
        u"{left=48 first=-24 tabs=-12l,24l}a\n{left=24 first=10 tabs=66l}b"_s);
    row("directions", "\\pard\\rtlpar a\\par\\pard\\ltrpar b\\par\\pardirnatural c",
        u"{direction=1}a\n{direction=0}b\nc"_s);
    row("headings and page breaks", "\\pard\\outlinelevel1\\pagebb a\\par\\pard\\cbpat1 b",
        u"{heading=2 break=1}a\n{bg=#ffff0000}b"_s);
    row("paragraph words that are only carried",
        "\\pard\\keepn\\keepn\\brdrb\\brdrs\\brdrw10\\brdrcf1 a",
        u"{rule=100% words=\\keepn\\brdrb\\brdrs\\brdrw10\\brdrcf#ffff0000}a"_s);
    row("a border that is none", "\\pard\\brdrb\\brdrnil\\brdrt\\brdrs a",
        u"{words=\\brdrb\\brdrnil\\brdrt\\brdrs}a"_s);
    row("styles are applied",
        "{\\stylesheet{\\ql\\fs24 Normal;}{\\s1\\qc\\b\\sbasedon0 Heading 3;}"
        "{\\*\\cs5\\i Emphasis;}{\\s2\\li15\\sbasedon1 x;}}"
        "\\pard\\s1 a{\\cs5 b}\\par\\pard\\plain\\s2\\b0 c",
        u"{align=4 heading=3}[12 weight=700]a[12 weight=700 italic=true]b\n"
        "{align=4 left=1 heading=3}[12]c"_s);
    row("footnotes have their number", "a{\\super\\chftn}{\\footnote{\\super\\chftn} n}b",
        u"a[vertical=1]1[]b\n[vertical=1]1[] n"_s);
}

void TestRtfDocument::looksAreRead_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    lookRows();
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text) {
        QTest::newRow(name) << platformHead + rtf + "}" << text;
    };
    row("entry 1 is the platform's paper", "\\cb1 a\\cb2 b\\cb1 c", u"a[bg=#ffff0000]b[]c"_s);
    row("the platform's way to say no kerning", "\\kerning1\\expnd0\\expndtw0 a\\kerning0 b",
        u"a[kerning=false]b"_s);
    row("the platform's tab stops are none",
        "\\pard\\tx560\\tx1120\\tx1680\\tx2240\\tx2800\\tx3360\\tx3920\\tx4480\\tx5040\\tx5600"
        "\\tx6160\\tx6720\\pardeftab720\\pardirnatural a",
        u"{words=\\pardeftab720}a"_s);
}

void TestRtfDocument::looksAreRead()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, text);
    QCOMPARE(read(rtf), text);
}

void TestRtfDocument::listRows()
{
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text) {
        QTest::newRow(name) << head + lists + rtf + "}" << text;
    };
    row("the platform's way",
        "\\pard\\tx220\\tx720\\tx1120\\tx1680\\tx2240\\tx2800\\tx3360\\tx3920\\tx4480\\tx5040"
        "\\tx5600\\tx6160\\tx6720\\li720\\fi-720\\ls1\\ilvl0 {\\listtext\t\\uc0\\u8226 \t}a\\\n"
        "{\\listtext\t\\uc0\\u8226 \t}b\\\n\\pard\\li1440\\fi-1440\\ls1\\ilvl1 c\\\n\\pard d",
        u"item 1{style=0 indent=1 kind=-1}a\nitem 2{style=0 indent=1 kind=-1}b\n"
        "item 1{style=0 indent=2 kind=-3}c\nd"_s);
    row("the label before the paragraph's properties",
        "{\\listtext\\pard\\plain 1.\\tab}\\pard\\plain\\ls2\\ilvl0\\fi-360\\li720 a\\par"
        "\\pard between\\par{\\listtext 2.\\tab}\\pard\\ls2 b",
        u"{listfirst=-360}item 1{style=0 indent=1 start=3 kind=-4}a\nbetween\n"
        "item 2{style=0 indent=1 start=3 kind=-4}b"_s);
    row("levels begin anew, with all kinds of numbers",
        "\\pard\\ls2 a\\par\\ilvl1 b\\par\\ilvl2 c\\par\\ilvl0 d\\par\\ilvl1 e\\par",
        u"item 1{style=0 indent=1 start=3 kind=-4}a\nitem 1{style=-5 indent=2 prefix=( suffix=)}b\n"
        "item 1{style=0 indent=3 suffix= leveltext="_s
            + QString(QChar(0)) + u"."_s + QChar(1) + u"-"_s + QChar(2)
            + u" kind=-4}c\nitem 2{style=0 indent=1 start=3 kind=-4}d\n"
              "item 1{style=-5 indent=2 prefix=( suffix=)}e\n"
              "item 2{style=-5 indent=2 prefix=( suffix=)}"_s);
    row("a list goes on behind deeper items of another one",
        "\\pard\\ls2 a\\par\\ls1\\ilvl1 b\\par\\ls2\\ilvl0 c\\par\\ls3\\ilvl1 d\\par"
        "\\pard\\ls1 e\\par\\ls2\\ilvl1 f\\par\\ls1\\ilvl0 g",
        u"item 1{style=0 indent=1 start=3 kind=-4}a\nitem 1{style=0 indent=2 kind=-3}b\n"
        "item 2{style=0 indent=1 start=3 kind=-4}c\nitem 1{style=0 indent=2 marker=\u2043 "
        "kind=-1}d\n"
        "item 1{style=0 indent=1 kind=-1}e\nitem 1{style=-5 indent=2 prefix=( suffix=)}f\n"
        "item 2{style=0 indent=1 kind=-1}g"_s);
    row("a bullet of its own", "\\pard\\ls3 a",
        u"item 1{style=0 indent=1 marker=\u2043 kind=-1}a"_s);
    row("an indent beyond the level's", "\\pard\\ls1\\li1080\\fi-1080 a",
        u"{left=24}item 1{style=0 indent=1 kind=-1}a"_s);
    row("a list that is not there keeps its label", "\\pard\\ls9{\\listtext 9.\\tab}a", u"9.\ta"_s);
    row("a list without labels is none", "\\pard\\ls4 a", u"a"_s);
    row("an old list",
        "\\pard{\\pntext\\'b7\\tab}{\\*\\pn\\pnlvlblt\\pnindent360{\\pntxtb\\'b7}}\\fi-360\\li720 a"
        "\\par{\\pntext\\'b7\\tab}b\\par\\pard{\\*\\pn\\pnlvlbody\\pndec\\pnstart2{\\pntxta )}}c",
        u"{listfirst=-360}item 1{style=0 indent=1 kind=-1}a\n{listfirst=-360}item 2{style=0 "
        u"indent=1 kind=-1}b\n"
        "item 1{style=0 indent=1 suffix=) start=2 kind=-4}c"_s);
}

void TestRtfDocument::listsAreRead_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    listRows();
}

void TestRtfDocument::listsAreRead()
{
    looksAreRead();
}

void TestRtfDocument::tableRows()
{
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text) {
        QTest::newRow(name) << head + rtf + "}" << text;
    };
    row("a table at the beginning",
        "\\trowd\\trgaph15\\trleft-15\\cellx1500\\cellx2250\\intbl a\\cell b\\par c\\cell\\row"
        "\\intbl d\\cell\\cell\\row\\pard e",
        u"{beforetable=true}\ntable 2x2{columns=101x,50x}\n"
        "({leftpadding=1 rightpadding=1}a)({leftpadding=1 rightpadding=1}b / c)\n"
        "({leftpadding=1 rightpadding=1}d)({leftpadding=1 rightpadding=1})\ne"_s);
    row("a table behind text and at the end",
        "a\\par\\trowd\\trleft30\\trhdr\\trqc\\cellx1530\\intbl b\\cell\\row}",
        u"a\ntable 1x1{align=4 left=2 columns=100x headers=1}\n(b)\n"_s);
    row("merged cells",
        "\\trowd\\clvmgf\\cellx1500\\clmgf\\cellx3000\\clmrg\\cellx4500 a\\cell b\\cell\\cell\\row"
        "\\trowd\\clvmrg\\cellx1500\\cellx3000\\cellx4500\\cell c\\cell d\\cell\\row",
        u"{beforetable=true}\ntable 2x3{columns=100x,100x,100x}\n({rows=2}a)({columns=2}b)(c)(d)\n"_s);
    row("edges that differ from row to row",
        "\\trowd\\cellx3000\\cellx4500 a\\cell b\\cell\\row\\trowd\\cellx1500\\cellx4510 c\\cell "
        "d\\cell\\row",
        u"{beforetable=true}\ntable 2x3{columns=100x,100x,100x}\n({columns=2}a)(b)\n"
        "(c)({columns=2}d)\n"_s);
    row("borders, colours and words of a cell",
        "\\trowd\\trrh300\\trbrdrl\\brdrdb\\brdrw30\\clvertalc\\clcbpat3\\clheight200\\clbrdrt"
        "\\brdrdash\\brdrw15\\brdrcf1\\clbrdrb\\brdrnil\\clpadl30\\cellx1500 a\\cell\\row",
        u"{beforetable=true}\ntable 1x1{columns=100x}\n({bg=#ff0000ff vertical=3 leftpadding=2 "
        "topborder=1 leftborder=2 topstyle=2 481c=4 topbrush=#ffff0000 4820=#ff000000 "
        "words=\\clheight200 rowwords=\\trrh300}a)\n"_s);
    row("widths of other units",
        "\\trowd\\clftsWidth1\\cellx1500\\clftsWidth2\\clwWidth1250\\cellx3000 a\\cell "
        "b\\cell\\row",
        u"{beforetable=true}\ntable 1x2{columns=0v,25%}\n(a)(b)\n"_s);
    row("a table in a table",
        "\\trowd\\cellx3000\\pard\\intbl a\\par\\pard\\intbl\\itap2 b\\nestcell "
        "{\\*\\nesttableprops\\trowd\\cellx1500\\nestrow}{\\nonesttables\\par}"
        "\\pard\\intbl c\\cell\\row\\pard d",
        u"{beforetable=true}\ntable 1x1{columns=200x}\n(a / table 1x1{columns=100x}\n(b) / c)\nd"_s);
    row("cells without edges", "\\trowd\\intbl a\\cell b\\cell\\row\\trowd c\\cell\\row",
        u"{beforetable=true}\ntable 2x2{columns=0v,0v}\n(a)(b)\n(c)()\n"_s);
    row("cells without a row", "\\trowd\\cellx1500 a\\cell b\\par c",
        u"{beforetable=true}\ntable 1x1{columns=0v}\n(a)\nb\nc"_s);
    row("rows without cells", "a\\row b\\row c",
        u"{beforetable=true}\ntable 2x1{columns=0v}\n(a)\n(b)\nc"_s);
    row("text in a cell that is merged into the one above it stays in its place",
        "\\trowd\\clvmgf\\cellx1500\\cellx3000 a\\cell b\\cell\\row"
        "\\trowd\\clvmrg\\cellx1500\\cellx3000 c\\cell d\\cell\\row",
        u"{beforetable=true}\ntable 2x2{columns=100x,100x}\n(a)(b)\n(c)(d)\n"_s);
    row("a column's unit told below merged cells",
        "\\trowd\\clmgf\\cellx1500\\clmrg\\cellx3000 a\\cell\\cell\\row"
        "\\trowd\\clftsWidth1\\cellx1500\\cellx3000 b\\cell c\\cell\\row",
        u"{beforetable=true}\ntable 2x2{columns=0v,100x}\n({columns=2}a)\n(b)(c)\n"_s);
    row("a list in a cell", lists + "\\trowd\\cellx1500\\intbl\\ls1 a\\par\\ls1 b\\cell\\row",
        u"{beforetable=true}\ntable 1x1{columns=100x}\n(item 1{style=0 indent=1 kind=-1}a / "
        "item 2{style=0 indent=1 kind=-1}b)\n"_s);
    row("a table beside the text becomes text",
        "a{\\footnote\\trowd\\cellx9\\intbl b\\cell c\\cell\\row d}", u"a\nb\tc\nd"_s);
}

void TestRtfDocument::tablesAreRead_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    tableRows();
    QTest::newRow("the platform's widths come before the edges")
        << platformHead
            + "\\itap1\\trowd\\clwWidth3000\\clftsWidth3\\cellx4320\\clwWidth1500\\clftsWidth3"
              "\\cellx8640\\pard\\intbl\\itap1 a\\cell\\pard\\intbl\\itap1 b\\cell\\lastrow\\row}"
        << u"{beforetable=true}\ntable 1x2{columns=200x,100x}\n(a)(b)\n"_s;
}

void TestRtfDocument::tablesAreRead()
{
    looksAreRead();
}

void TestRtfDocument::picturesAreFilesOfTheDocument_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");
    const QByteArray bytes = QByteArray::fromHex("89504e470d0a1a0a");
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text,
                        const QByteArray &file) {
        QTest::newRow(name) << "{\\rtf1 a" + rtf + "b}" << text << file;
    };
    row("a PNG", png, u"a[file=Image 1.png w=600 h=150]\ufffc[]b"_s, bytes);
    row("in a shape, and not again for old readers",
        "{\\*\\shppict" + png + "}{\\nonshppict{\\pict\\wmetafile8 00}}",
        u"a[file=Image 1.png w=600 h=150]\ufffc[]b"_s, bytes);
    row("beside the text",
        "{\\shp{\\*\\shpinst{\\sp{\\sn pib}{\\sv " + png + "}}}{\\shprslt{\\pict 00}}}",
        u"a[file=Image 1.png w=600 h=150]\ufffc[]b"_s, bytes);
    row("binary, by its first bytes", "{\\pict\\picw10\\pich20\\bin8 " + bytes + "}",
        u"a[file=Image 1.png w=150 h=300]\ufffc[]b"_s, bytes);
    row("a metafile stays what it is", "{\\pict\\wmetafile8\\picwgoal30\\pichgoal45 0102}",
        u"a[file=Image 1.wmf w=30 h=45]\ufffc[]b"_s, "\1\2");
}

void TestRtfDocument::picturesAreFilesOfTheDocument()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);
    QTextDocument document;
    readBody(rtf, document);
    QCOMPARE(DescribedText::of(document), text);
    const QString name = text.contains(u".png"_s) ? u"Image 1.png"_s : u"Image 1.wmf"_s;
    const FlatRtfdEntry *file = AttachmentStore::find(document)->entry(name);
    QVERIFY(file);
    QCOMPARE(file->bytes, bytes);
}

void TestRtfDocument::whatIsReadIsWrittenAndReadAgain_data()
{
    looksAreRead_data();
    listRows();
    tableRows();
}

void TestRtfDocument::whatIsReadIsWrittenAndReadAgain()
{
    QFETCH(QByteArray, rtf);
    QTextDocument first;
    readBody(rtf, first);
    const QByteArray body = bodyFromDocument(first);
    QTextDocument second;
    readBody(body, second);
    QCOMPARE(DescribedText::of(second), DescribedText::of(first));
    QCOMPARE(bodyFromDocument(second), body);
    QVERIFY(!bodyHoldsSurplus(body));
}

void TestRtfDocument::whatWouldBeLostIsTold_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<bool>("told");
    const auto row = [](const char *name, const QByteArray &rtf, bool told) {
        QTest::newRow(name) << "{\\rtf1 " + rtf + "}" << told;
    };
    row("text beside the text", "a{\\footnote b}", true);
    row("what is embedded", "{\\object{\\*\\objdata 00}{\\result a}}", true);
    row("text that is crossed out", "{\\deleted a}", true);
    row("the entry of an index", "a{\\xe\\v b}", true);
    row("a formula", "{\\mmath{\\*\\moMath{\\mr x}}}", true);
    row("a field that counts", "{\\field{\\*\\fldinst{ PAGE }}{\\fldrslt 1}}", true);
    row("a link", "{\\field{\\*\\fldinst{HYPER}{LINK \"x\"}}{\\fldrslt 1}}", false);
    row("bytes that look like words", "{\\pict\\pngblip\\bin10 {\\footnote}a", false);
    row("styles that nobody uses", "{\\stylesheet{\\s5\\footnote f;}}a\\deleted0", false);
}

void TestRtfDocument::whatWouldBeLostIsTold()
{
    QFETCH(QByteArray, rtf);
    QFETCH(bool, told);
    QCOMPARE(bodyHoldsSurplus(rtf), told);
}

QTEST_MAIN(TestRtfDocument)
#include "tst_rtfdocument.moc"
