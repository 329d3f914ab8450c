#include "richtext/body.h"
#include "richtext/plaintextsink.h"
#include "richtext/rtfreader.h"

#include <QTest>
#include <QTextDocument>

#include <functional>

#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

constexpr qsizetype large = 4 << 20;
constexpr qsizetype veryLarge = 16 << 20;

QString textOf(const QByteArray &rtf)
{
    PlainTextSink sink;
    RtfReader(rtf, sink).read();
    return sink.text();
}

QByteArray repeated(const QByteArray &piece, qsizetype size)
{
    return piece.repeated(size / piece.size());
}

long peakMegabytes()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

const QByteArray sample =
    "{\\rtf1\\ansi\\ansicpg1252{\\fonttbl\\f0\\fswiss\\fcharset0 Helvetica;\\f1\\fcharset128 "
    "Osaka;}"
    "{\\colortbl;\\red255\\green0\\blue0;}{\\*\\expandedcolortbl;\\cssrgb\\c100000\\c0\\c0;}"
    "{\\stylesheet{\\s1\\b\\sbasedon0 heading 1;}}{\\*\\listtable{\\list{\\listlevel\\levelnfc0"
    "{\\leveltext\\'02\\'00.;}}\\listid1}}{\\*\\listoverridetable{\\listoverride\\listid1\\ls1}}"
    "\\pard\\qc\\tqr\\tx99\\f0\\fs24 \\cf1 One \\b two\\b0\\\n\\f1 \\'82\\'a0\\uc0\\u55357 "
    "\\u56832 "
    "{\\upr{a}{\\*\\ud{b}}}{\\footnote f}{{\\NeXTGraphic i.png \\width20 \\height20\n}\xac}\\'e9"
    "\\par\\pard\\s1\\ls1{\\listtext "
    "1.\\tab}item\\par\\trowd\\clvmgf\\clbrdrt\\brdrs\\cellx900\\clmgf"
    "\\cellx1800\\clmrg\\cellx2700\\intbl c\\cell\\itap2 n\\nestcell\\nestrow\\itap1 "
    "d\\cell\\cell\\row"
    "\\pard{\\field{\\*\\fldinst{HYPERLINK \"u\"}}{\\fldrslt l}}{\\pict\\pngblip\\bin3 {}\\}.}";

/// Rows and their cells are parted in one way in text and in another one in documents.
QString flat(QString text)
{
    return text.remove(u'\n').remove(u'\t');
}

} // namespace

class TestRtfMalice : public QObject
{
    Q_OBJECT

private slots:
    void largeAndDeepInputIsReadInBoundedMemory_data();
    void largeAndDeepInputIsReadInBoundedMemory();
    void groupsBeyondTheBoundStillKeepTheirText();
    void tablesOfEveryShapeKeepTheirText_data();
    void tablesOfEveryShapeKeepTheirText();
    void aFileCutAnywhereIsRead();
    void aFileWithAnyByteChangedIsRead();
};

void TestRtfMalice::largeAndDeepInputIsReadInBoundedMemory_data()
{
    QTest::addColumn<QByteArray>("piece");
    QTest::newRow("group starts") << QByteArray("{");
    QTest::newRow("group ends") << QByteArray("}");
    QTest::newRow("backslashes and starts") << QByteArray("\\*{\\*");
    QTest::newRow("alternatives in alternatives") << QByteArray("{\\upr");
    QTest::newRow("alternatives without the better one") << QByteArray("{\\upr{a");
    QTest::newRow("closed alternatives") << QByteArray("{\\upr{a}}");
    QTest::newRow("footnotes in footnotes") << QByteArray("{\\footnote a");
    QTest::newRow("many footnotes") << QByteArray("{\\footnote a}");
    QTest::newRow("skipped groups") << QByteArray("{\\*\\x");
    QTest::newRow("font tables") << QByteArray("{\\fonttbl\\f1 a;");
    QTest::newRow("colours") << QByteArray("{\\colortbl;;;;");
    QTest::newRow("growing paragraph words") << QByteArray("{\\li1\\par");
    QTest::newRow("cells without rows") << QByteArray("\\cell");
    QTest::newRow("pictures without an end") << QByteArray("{\\NeXTGraphic a ");
    QTest::newRow("lengths of bytes") << QByteArray("\\bin2147483647 ");
    QTest::newRow("digits") << QByteArray("9");
}

void TestRtfMalice::largeAndDeepInputIsReadInBoundedMemory()
{
    QFETCH(QByteArray, piece);
    const QByteArray rtf = "{\\rtf1\\fs" + repeated(piece, piece == "{" ? veryLarge : large) + "x";
    const long before = peakMegabytes();
    textOf(rtf);
    QVERIFY2(peakMegabytes() - before < 200, qPrintable(QString::number(peakMegabytes() - before)));
}

void TestRtfMalice::groupsBeyondTheBoundStillKeepTheirText()
{
    const qsizetype depth = 200'000;
    const QByteArray rtf = "{\\rtf1 " + QByteArray(depth, '{')
        + "deep{\\fonttbl\\f0 A;}{\\*\\x y}er" + QByteArray(depth, '}') + "\\b after}";
    QCOMPARE(textOf(rtf), u"deeperafter"_s);
}

void TestRtfMalice::tablesOfEveryShapeKeepTheirText_data()
{
    QTest::addColumn<QByteArray>("rtf");
    const auto built = [](int count, const std::function<QByteArray(int)> &piece) {
        QByteArray rtf;
        for (int i = 0; i < count; ++i) {
            rtf += piece(i);
        }
        return rtf;
    };
    QTest::newRow("more cells than are made")
        << "\\trowd\\cellx99 " + repeated("a\\cell\\row", 3 << 20);
    QTest::newRow("one row of cells without end") << repeated("a\\cell ", 1 << 20);
    QTest::newRow("edges of its own in each row") << built(3000, [](int i) {
        return "\\trowd\\cellx" + QByteArray::number(100 + i * 31)
            + "\\cellx99999 a\\cell b\\cell\\row";
    });
    QTest::newRow("a long row among short ones")
        << repeated("a\\cell ", 1 << 16) + "\\row" + repeated("a\\cell\\row", 1 << 16);
    QTest::newRow("a long definition that hardly changes")
        << "\\trowd" + repeated("\\cellx9", 1 << 16) + built(20'000, [](int i) {
               return "\\trgaph" + QByteArray::number(i) + " a\\cell\\row";
           });
    QTest::newRow("merged cells all over") << built(2000, [](int i) {
        return "\\trowd\\clvmgf\\cellx" + QByteArray::number(99 + i % 7 * 100)
            + "\\clmgf\\cellx2000\\clmrg\\cellx3000 a\\cell b\\cell c\\cell\\row";
    });
    QTest::newRow("tables in tables") << built(2000, [](int i) {
        const QByteArray depth = "\\itap" + QByteArray::number(i * 7 % 40);
        return depth + " a\\par b\\nestcell c\\nestrow" + depth + "\\cell";
    });
    QTest::newRow("many fonts, each in many places") << built(400'000, [](int i) {
        const QByteArray number = QByteArray::number(i % 50'000);
        const QByteArray entry = "{\\fonttbl\\f" + number + " F" + number + ";}";
        return (i < 50'000 ? entry : QByteArray()) + "\\f" + number + " a";
    });
    QTest::newRow("lists in cells")
        << QByteArray(
               "{\\*\\listtable{\\list{\\listlevel\\levelnfc0{\\leveltext\\'01\\'00;}}\\listid1}}"
               "{\\*\\listoverridetable{\\listoverride\\listid1\\ls1}}\\ls1 ")
            + repeated("a\\par b\\cell\\row", 1 << 16);
}

void TestRtfMalice::tablesOfEveryShapeKeepTheirText()
{
    QFETCH(QByteArray, rtf);
    const QByteArray whole = "{\\rtf1 " + rtf + "x}";
    QTextDocument document;
    const long before = peakMegabytes();
    readBody(whole, document);
    QVERIFY2(peakMegabytes() - before < 500, qPrintable(QString::number(peakMegabytes() - before)));
    QCOMPARE(flat(document.toPlainText()), flat(textOf(whole)));
}

void TestRtfMalice::aFileCutAnywhereIsRead()
{
    const QString whole = textOf(sample);
    QCOMPARE(whole, u"One two\n\u3042\U0001F600b\ufffc\u00e9\nitem\nc\tn\nd\nl\ufffc.\nf"_s);
    QTextDocument document;
    qsizetype longest = 0;
    for (qsizetype length = 5; length <= sample.size(); ++length) {
        const QString text = textOf(sample.first(length));
        readBody(sample.first(length), document);
        QCOMPARE(flat(document.toPlainText()), flat(text));
        longest = std::max(longest, text.size());
    }
    QCOMPARE(longest, whole.size());
}

void TestRtfMalice::aFileWithAnyByteChangedIsRead()
{
    QTextDocument document;
    for (qsizetype at = 5; at < sample.size(); ++at) {
        for (const char c : {'{', '}', '\\', '9'}) {
            QByteArray changed = sample;
            changed[at] = c;
            readBody(changed, document);
            QCOMPARE(flat(plainTextFromBody(bodyFromDocument(document))),
                     flat(plainTextFromBody(changed)));
        }
    }
}

QTEST_MAIN(TestRtfMalice)
#include "tst_rtfmalice.moc"
