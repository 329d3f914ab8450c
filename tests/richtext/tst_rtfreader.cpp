#include "richtext/plaintextsink.h"
#include "richtext/rtfreader.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

QString textOf(const QByteArray &rtf)
{
    PlainTextSink sink;
    RtfReader(rtf, sink).read();
    return sink.text();
}

} // namespace

class TestRtfReader : public QObject
{
    Q_OBJECT

private slots:
    void givesTheText_data();
    void givesTheText();
    void decodesByTheFontsCodePage_data();
    void decodesByTheFontsCodePage();
    void everyBytePageKeepsEveryByte();
};

void TestRtfReader::givesTheText_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const QByteArray &rtf, const QString &text) {
        QTest::newRow(name) << rtf << text;
    };
    // Characters.
    row("line ends are no text", "{\\rtf1 a\nb\r\nc}", u"abc"_s);
    row("backslash and line end is a paragraph", "{\\rtf1 a\\\nb\\\r\nc\\\rd}", u"a\nb\nc\nd"_s);
    row("symbols", "{\\rtf1 \\{\\}\\\\\\~\\_\\-\\emdash\\bullet  x}",
        u"{}\\\u00a0\u2011\u00ad\u2014\u2022 x"_s);
    row("breaks", "{\\rtf1 a\\par b\\line c\\tab d\te\\page f}", u"a\nb\u2028c\td\te\ff"_s);
    row("markup of other languages is text", "{\\rtf1 <b>&amp;</b>}", u"<b>&amp;</b>"_s);
    row("an unknown symbol stays", "{\\rtf1 a\\;b\\7c}", u"a;b7c"_s);
    row("a broken byte escape takes nothing with it", "{\\rtf1 a\\'zb}", u"azb"_s);
    row("zero bytes are padding", QByteArray("{\\rtf1 a\0b}\0\0", 13), u"ab"_s);
    // Unicode.
    row("unicode without a fallback", "{\\rtf1\\uc0\\u8232 \\u12354 x}", u"\u2028\u3042x"_s);
    row("unicode above 32767 and negative", "{\\rtf1\\uc0\\u65024 \\u-512 x}", u"\ufe00\ufe00x"_s);
    row("a pair of surrogates", "{\\rtf1\\uc0\\u55357 \\u56832 }", u"\U0001F600"_s);
    row("a number beyond 16 bits", "{\\rtf1\\uc0\\u128512 }", u"\U0001F600"_s);
    row("one fallback character", "{\\rtf1 \\u8364?x\\u8364 ?x\\u8364\\'80x}",
        u"\u20acx\u20acx\u20acx"_s);
    row("two fallback bytes", "{\\rtf1\\uc2 \\u12354\\'82\\'a0x}", u"\u3042x"_s);
    row("a fallback ends at a group's end", "{\\rtf1 {\\u8364}x}", u"\u20acx"_s);
    row("a fallback is no control word", "{\\rtf1 \\u8364\\par x}", u"\u20ac\nx"_s);
    row("the length of fallbacks belongs to the group", "{\\rtf1{\\uc0 \\u65 }\\u66?c}", u"ABc"_s);
    row("the better alternative", "{\\rtf1{\\upr{old}{\\*\\ud{new \\u8364?}}}x}", u"new \u20acx"_s);
    row("no better alternative", "{\\rtf1{\\upr{old}}x}", u"oldx"_s);
    // Destinations.
    row("tables at the head are no text",
        "{\\rtf1{\\fonttbl{\\f0 A;}\\f1 B;}{\\colortbl;\\red1;}{\\*\\expandedcolortbl;;}"
        "{\\stylesheet{\\s0 Normal;}}{\\info{\\title T}}{\\*\\generator G;}x}",
        u"x"_s);
    row("an unknown word keeps the text", "{\\rtf1{\\foo a}\\bar3 b}", u"ab"_s);
    row("an unknown starred group goes", "{\\rtf1{\\*\\foo a{b}}c}", u"c"_s);
    row("a star amid a group means nothing", "{\\rtf1 a\\*\\foo b}", u"ab"_s);
    row("a destination amid the outer group means nothing", "{\\rtf1 a\\info b}", u"ab"_s);
    row("a field shows its result",
        "{\\rtf1{\\field{\\*\\fldinst HYPERLINK \"u\"}{\\fldrslt link}}x}", u"linkx"_s);
    const auto symbol = [](const QByteArray &instruction, const QByteArray &result) {
        return "{\\rtf1 A{\\field{\\*\\fldinst{SYMBOL " + instruction + "}}" + result + "}B}";
    };
    row("a symbol without a result", symbol("74 \\\\f \"Wingdings\" \\\\s 11", ""), u"A\uf04aB"_s);
    row("a symbol with an empty result", symbol("0xB7 \\\\f Symbol", "{\\fldrslt\\f1\\fs22}"),
        u"A\uf0b7B"_s);
    row("a symbol with a result", symbol("74 \\\\f Wingdings", "{\\fldrslt{\\f1 J}}"), u"AJB"_s);
    row("a symbol in Unicode", symbol("128512 \\\\u", "{\\fldrslt}"), u"A\U0001F600B"_s);
    row("a symbol of a font of letters", symbol("128 \\\\f Arial", ""), u"A\u20acB"_s);
    row("a symbol that is cut off", "{\\rtf1 A{\\field{\\*\\fldinst SYMBOL 65}{\\fldrslt", u"AA"_s);
    row("labels of lists are text", "{\\rtf1{\\listtext\t\\uc0\\u8226 \t}a\\\n}",
        u"\t\u2022\ta\n"_s);
    row("cells and rows", "{\\rtf1\\trowd a\\cell b\\cell\\row\\trowd\\cell c\\cell\\row d}",
        u"a\tb\n\tc\nd"_s);
    row("footnotes and headers follow", "{\\rtf1{\\header H\\par}{\\footer\\par}a{\\footnote F}b}",
        u"ab\nH\nF"_s);
    row("a header beside no text", "{\\rtf1{\\header H\\par}}", u"H"_s);
    row("the text of a box follows once",
        "{\\rtf1 a{\\shp{\\*\\shpinst{\\sp{\\sn n}{\\sv v}}{\\shptxt B}}{\\shprslt B}}c}",
        u"ac\nB"_s);
    row("a picture is one character", "{\\rtf1 a{\\pict\\pngblip 8950\n4e47}b}", u"a\ufffcb"_s);
    row("a picture without bytes is none", "{\\rtf1 a{\\pict\\pngblip}b}", u"ab"_s);
    row("binary bytes are skipped by count", "{\\rtf1 a{\\*\\x\\bin4 }}{{}b\\bin2 {{c}", u"abc"_s);
    row("deleted text goes", "{\\rtf1 a{\\deleted b}c}", u"ac"_s);
    row("hidden text stays", "{\\rtf1 a{\\v b}c}", u"abc"_s);
    row("an attachment is one character",
        "{\\rtf1 a{{\\NeXTGraphic x y.png \\width20 \\height20\n}\xac}\xac}", u"a\ufffc\u00ac"_s);
    row("the placeholder may be escaped", "{\\rtf1 {{\\NeXTGraphic x.png\n}\\'ac}b}", u"\ufffcb"_s);
    // Broken files.
    row("too many ends", "{\\rtf1 a}}} b\\par c}", u"a b\nc"_s);
    row("no end", "{\\rtf1{a", u"a"_s);
    row("text behind the end is none", "{\\rtf1 a}\n trailer", u"a"_s);
    row("a length of bytes that lies", "{\\rtf1 a\\bin99999 b\\bin-5 c}", u"abc"_s);
    row("numbers beyond all bounds",
        "{\\rtf1\\fs99999999999999999999\\b-99999999999999 a\\cf99999 b}", u"ab"_s);
    row("a huge fallback takes a little only",
        "{\\rtf1\\uc99999999 \\u65" + QByteArray(16, '?') + "b}", u"Ab"_s);
}

void TestRtfReader::givesTheText()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, text);
    QCOMPARE(textOf(rtf), text);
}

void TestRtfReader::decodesByTheFontsCodePage_data()
{
    QTest::addColumn<QByteArray>("head");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("text");
    const auto charset = [](int number) {
        return "\\ansi\\ansicpg1252{\\fonttbl\\f0\\fnil\\fcharset" + QByteArray::number(number)
            + " A;}\\f0 ";
    };
    QTest::newRow("Windows Latin")
        << charset(0) << QByteArray("\\'80\\'e9\xe9\\'81") << u"\u20ac\u00e9\u00e9\u0081"_s;
    QTest::newRow("Mac Roman by the head")
        << QByteArray("\\mac ") << QByteArray("\\'8e") << u"\u00e9"_s;
    QTest::newRow("code page 437 by the head")
        << QByteArray("\\pc ") << QByteArray("\\'82") << u"\u00e9"_s;
    QTest::newRow("Cyrillic by the head")
        << QByteArray("\\ansi\\ansicpg1251 ") << QByteArray("\\'cf") << u"\u041f"_s;
    QTest::newRow("Mac Roman by the font") << charset(77) << QByteArray("\\'8e") << u"\u00e9"_s;
    QTest::newRow("Cyrillic by the font")
        << charset(204) << QByteArray("\\'cf\\'f0") << u"\u041f\u0440"_s;
    QTest::newRow("Thai") << charset(222) << QByteArray("\\'a1") << u"\u0e01"_s;
    QTest::newRow("Japanese") << charset(128) << QByteArray("\\'82\\'a0\\'b1") << u"\u3042\uff71"_s;
    QTest::newRow("Mac Japanese") << charset(78) << QByteArray("\\'82\\'a0") << u"\u3042"_s;
    QTest::newRow("a second byte that is a backslash")
        << charset(128) << QByteArray("\\'83\\\\x") << u"\u30bdx"_s;
    QTest::newRow("a second byte that is a letter")
        << charset(128) << QByteArray("\\'83Ax") << u"\u30a2x"_s;
    QTest::newRow("Korean") << charset(129) << QByteArray("\\'b0\\'a1") << u"\uac00"_s;
    QTest::newRow("Chinese, simplified") << charset(134) << QByteArray("\\'c4\\'e3") << u"\u4f60"_s;
    QTest::newRow("Chinese, traditional")
        << charset(136) << QByteArray("\\'a7\\'41") << u"\u4f60"_s;
    QTest::newRow("a lone first byte stays")
        << charset(128) << QByteArray("\\'82\\'a0\\'82\\par x") << u"\u3042\u201a\nx"_s;
    QTest::newRow("a page of the font itself")
        << QByteArray("{\\fonttbl{\\f3\\fcharset0\\cpg1253 A;}}\\f3 ") << QByteArray("\\'e1")
        << u"\u03b1"_s;
    QTest::newRow("the default font")
        << QByteArray("\\deff1{\\fonttbl\\f1\\fcharset238 A;}\\plain ") << QByteArray("\\'b9")
        << u"\u0105"_s;
    QTest::newRow("symbols") << charset(2) << QByteArray("a\\'b7\\'e0") << u"a\u2022\uf0e0"_s;
    QTest::newRow("UTF-8") << QByteArray("\\ansicpg65001 ") << QByteArray("\xe2\x82\xac")
                           << u"\u20ac"_s;
    QTest::newRow("an unknown page is Windows Latin")
        << QByteArray("\\ansicpg31337 ") << QByteArray("\\'80") << u"\u20ac"_s;
}

void TestRtfReader::decodesByTheFontsCodePage()
{
    QFETCH(QByteArray, head);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, text);
    QCOMPARE(textOf("{\\rtf1" + head + bytes + "}"), text);
}

void TestRtfReader::everyBytePageKeepsEveryByte()
{
    for (const int codePage : {437, 850, 852, 866, 874, 1250, 1251, 1252, 1253, 1254, 1255, 1256,
                               1257, 1258, 10000, 10006, 10007, 10029, 10081}) {
        QByteArray all;
        for (int byte = 1; byte < 256; ++byte) {
            all.append(char(byte));
        }
        QString text;
        RtfCodePages().decode(codePage, all, text);
        QCOMPARE(text.size(), 255);
        QVERIFY(!text.contains(QChar::ReplacementCharacter));
        QCOMPARE(text.first(127), QString::fromLatin1(all.first(127)));
        QString latin;
        RtfCodePages().decode(windowsLatin, all, latin);
        QVERIFY2((text == latin) == (codePage == windowsLatin),
                 qPrintable(QString::number(codePage)));
    }
}

QTEST_GUILESS_MAIN(TestRtfReader)
#include "tst_rtfreader.moc"
