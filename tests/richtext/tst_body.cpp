#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/flatrtfd.h"
#include "richtext/textproperties.h"

#include <QRandomGenerator>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>
#include <QTextTable>

#include <memory>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

QString describe(const QTextCharFormat &format)
{
    QStringList parts {format.fontFamilies().toStringList().join(u','),
                       format.fontPointSize() > 0 ? QString::number(format.fontPointSize())
                                                  : QString(),
                       format.fontWeight() >= QFont::DemiBold ? u"bold"_s : QString(),
                       format.fontItalic() ? u"italic"_s : QString(),
                       format.fontUnderline() ? u"underlined"_s : QString()};
    if (format.foreground().style() != Qt::NoBrush) {
        parts << format.foreground().color().name(QColor::HexArgb);
    }
    const std::pair<int, QString> properties[] = {
        {AttachmentName, u"file "_s},     {AttachmentWidth, u"width "_s},
        {AttachmentHeight, u"height "_s}, {AttachmentNoOrient, u"no orient "_s},
        {OriginalUnit, u"unit "_s},       {FontName, u"name "_s}};
    for (const auto &[property, label] : properties) {
        const QString value = format.property(property).toString();
        parts << (value.isEmpty() ? QString() : label + value);
    }
    parts.removeAll(QString());
    return parts.join(u' ');
}

/// All that a document holds and we promise to keep.
QStringList describe(const QTextDocument &document)
{
    QStringList lines;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        const QTextBlockFormat format = block.blockFormat();
        QString line = format.hasProperty(QTextFormat::BlockAlignment)
            ? QString::number(int(format.alignment()))
            : u"natural"_s;
        line += QString::fromLatin1(format.property(ParagraphWords).toByteArray());
        if (block.length() <= 1) {
            line += u" empty "_s + describe(block.charFormat());
        }
        std::optional<QString> last;
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const QString look = describe(it.fragment().charFormat());
            line += look == last ? QString() : u" ["_s + look + u"]"_s;
            line += it.fragment().text();
            last = look;
        }
        lines << line;
    }
    return lines;
}

QString textOf(const QTextDocument &document)
{
    QStringList paragraphs;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        paragraphs << block.text();
    }
    return paragraphs.join(u'\n');
}

QByteArray rtfOf(const QByteArray &body)
{
    const std::optional<FlatRtfd> folder = readFlatRtfd(body);
    for (const FlatRtfdEntry &entry : folder->entries) {
        if (entry.name == "TXT.rtf") {
            return entry.bytes;
        }
    }
    return {};
}

QString formatOf(const QByteArray &rtf)
{
    QTextDocument document;
    readBody("{\\rtf1\\ansi" + rtf + "}", document);
    const QTextBlock block = document.begin();
    return block.begin().atEnd() ? describe(block.charFormat())
                                 : describe(block.begin().fragment().charFormat());
}

QTextCharFormat randomFormat(QRandomGenerator &random)
{
    QTextCharFormat format;
    const QStringList families {u"Helvetica"_s, u"Times New Roman"_s,
                                u"Odd; \u00e9\u3042 {font}\f\u00a0x"_s};
    if (random.bounded(4) > 0) {
        format.setFontFamilies({families.at(random.bounded(3))});
    }
    if (random.bounded(4) > 0) {
        format.setFontPointSize((1 + random.bounded(60'000)) / 1000.0);
    }
    if (random.bounded(2) > 0) {
        format.setFontWeight(QFont::Bold);
    }
    if (random.bounded(3) == 0) {
        format.setFontItalic(true);
    }
    if (random.bounded(3) == 0) {
        format.setFontUnderline(true);
    }
    if (random.bounded(3) == 0) {
        format.setForeground(
            QColor(random.bounded(256), random.bounded(256), 7, 1 + random.bounded(255)));
    }
    return format;
}

QString randomText(QRandomGenerator &random)
{
    const QString odd =
        u"\\{};'*\t\f \u00a0\u00ad\u2028\u0001\u0000\u007f\u0085\u20ac\u00e9\u00ac\u3042\ufffd"
        u"\ufdd0\ufdd1\ufffc\uffff\U0001F600\xd800"_s;
    QString text;
    for (int i = random.bounded(12); i > 0; --i) {
        text += random.bounded(2) ? odd.at(random.bounded(int(odd.size())))
                                  : QChar(u'a' + random.bounded(26));
    }
    // The two internal units come in by our own reader only.
    return text.remove(QChar(0xfdd0)).remove(QChar(0xfdd1));
}

void fill(QTextDocument &document, QRandomGenerator &random)
{
    QTextCursor cursor(&document);
    for (int blocks = random.bounded(6); blocks >= 0; --blocks) {
        for (int runs = random.bounded(4); runs > 0; --runs) {
            cursor.insertText(randomText(random), randomFormat(random));
        }
        if (blocks > 0) {
            QTextBlockFormat format;
            if (random.bounded(2)) {
                const Qt::Alignment alignments[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter,
                                                    Qt::AlignJustify};
                format.setAlignment(alignments[random.bounded(4)]);
            }
            if (random.bounded(4) == 0) {
                format.setProperty(ParagraphWords, QByteArray("\\pardeftab720\\keepn"));
            }
            cursor.insertBlock(format, randomFormat(random));
        }
    }
}

QByteArray bodyWithFiles(const QByteArray &rtf)
{
    const auto file = [](const QByteArray &name, const QByteArray &bytes) {
        return FlatRtfdEntry {name, FlatRtfdEntry::Kind::File, bytes, {}};
    };
    const FlatRtfdEntry folder {"folder", FlatRtfdEntry::Kind::Directory, {}, {file("in", "side")}};
    const QByteArray records =
        writeFlatRtfdAttributes({{"a b.png", 1234, 0644, 0, 0}, {"TXT.rtf", 5, 0666, 0, 0}});
    return writeFlatRtfd({file("a b.png", QByteArray(5000, '\x89')), file("stray.bin", "stray"),
                          folder, file(u"Ä{x}\\.pdf"_s.toUtf8(), "pdf"), file(".", records),
                          file("TXT.rtf", rtf)});
}

const QByteArray attachmentText = "{\\rtf1 see {{\\NeXTGraphic a b.png \\width400 \\height300 "
                                  "\\noorient \\appleattachmentpadding0 "
                                  "\\appleembedtype0 \\appleaqc\n}\xac}{{\\NeXTGraphic \\uc0\\u196 "
                                  "\\{x\\}\\\\.pdf \\width20 \\height30\n}\xac}"
                                  "\\\n{{\\NeXTGraphic a b.png \\width1 \\height2\n}\xac}.}";

} // namespace

class TestBody : public QObject
{
    Q_OBJECT

private slots:
    void theFirstBytesTellTheForm();
    void plainTextKeepsEveryCharacter_data();
    void plainTextKeepsEveryCharacter();
    void everyUnitOfUnicodeComesBack();
    void looksAreRead_data();
    void looksAreRead();
    void paragraphsAreRead();
    void writesTheDialectWordForWord();
    void theEmptyTextIsWrittenAsThePlatformDoes();
    void whatIsWrittenReadsBackEqual();
    void aTextWithoutFormatsReadsBackWithoutFormats();
    void attachmentsComeBackWithNameAndBytes();
    void aDeletedAttachmentIsNotWritten();
    void textTypedBehindAnAttachmentIsText();
    void cellsAreOneLineOfPlainTextAndItemsHaveNoMarker();
    void theDocumentIsAsFreshAndUndoAsItWas();
    void aBodyOfOneFileIsItsText();
    void aFlatBodyCutAnywhereIsRead();
};

void TestBody::theFirstBytesTellTheForm()
{
    QCOMPARE(formOf(""), BodyForm::Empty);
    QCOMPARE(formOf("rtfd"), BodyForm::FlatRtfd);
    QCOMPARE(formOf("{\\rtf"), BodyForm::Rtf);
    QCOMPARE(formOf("{\\rt"), BodyForm::PlainText);
    QCOMPARE(plainTextFromBody("rtfd is a word"), u"rtfd is a word"_s);
}

void TestBody::plainTextKeepsEveryCharacter_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("UTF-8") << u"ä\U0001F600"_s.toUtf8() << u"ä\U0001F600"_s;
    QTest::newRow("Windows-1252") << QByteArray("\xe4\x80\x81\xff") << u"ä\u20ac\u0081ÿ"_s;
    QTest::newRow("all line ends") << QByteArray("a\nb\rc\r\nd\n\n") << u"a\nb\nc\nd\n\n"_s;
    QTest::newRow("zeros and controls")
        << QByteArray("a\0b\x01\x0b\x0c\x1b", 7) << QString::fromLatin1("a\0b\x01\x0b\x0c\x1b", 7);
    QTest::newRow("markup") << QByteArray("<b>x</b>&lt;") << u"<b>x</b>&lt;"_s;
    QTest::newRow("line separators stay") << u"a\u2028b"_s.toUtf8() << u"a\u2028b"_s;
}

void TestBody::plainTextKeepsEveryCharacter()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, text);
    QTextDocument document;
    readBody(body, document);
    QCOMPARE(textOf(document), text);
    QCOMPARE(plainTextFromBody(body), text);
    QCOMPARE(plainTextFromBody(bodyFromDocument(document)), text);
}

void TestBody::everyUnitOfUnicodeComesBack()
{
    QString text;
    for (int unit = 0; unit <= 0xffff; ++unit) {
        if (unit != u'\r' && unit != u'\n' && unit != 0x2029) {
            text += u'<' + QString(QChar(char16_t(unit))) + u'>';
        }
    }
    text += QString::fromUcs4(U"\U00010000\U0001FFFE\U0010FFFF");
    QByteArray rtf = "{\\rtf1\\uc0 ";
    for (const QChar c : text) {
        rtf += "\\u" + QByteArray::number(c.unicode());
    }
    QTextDocument document;
    readBody(rtf + '}', document);
    QCOMPARE(document.blockCount(), 1);
    QCOMPARE(textOf(document).size(), text.size());
    QCOMPARE(plainTextFromBody(bodyFromDocument(document)), text);
}

void TestBody::looksAreRead_data()
{
    QTest::addColumn<QByteArray>("rtf");
    QTest::addColumn<QString>("look");
    const QByteArray fonts = "{\\fonttbl\\f0 Helvetica-Bold;{\\f1 ArialMT;}\\f2 "
                             "HelveticaNeue-Light;\\f3 Semi\\'3bcolon;}";
    const QByteArray colours =
        "{\\colortbl;\\red255\\green255\\blue255;\\red0\\green0\\blue0;\\red10\\green20\\blue30;"
        "\\red1;}"
        "{\\*\\expandedcolortbl;;;\\cssrgb\\c100000\\c0\\c0\\c50196;\\cname textColor;}";
    const auto row = [](const char *name, const QByteArray &rtf, const QString &look) {
        QTest::newRow(name) << rtf << look;
    };
    row("nothing said", "x", u""_s);
    row("a PostScript name is its family", fonts + "\\f0\\b x", u"Helvetica bold"_s);
    row("a table with inner groups", fonts + "\\f1 x", u"Arial"_s);
    row("a face beyond bold and italic is kept", fonts + "\\f2 x",
        u"Helvetica Neue name HelveticaNeue-Light"_s);
    row("a semicolon in a name", fonts + "\\f3 x", u"Semi;colon"_s);
    row("a font that is not in the table", fonts + "\\f9 x", u""_s);
    row("half points", "\\fs25 x", u"12.5"_s);
    row("thousandths of a point", "\\fs29\\fsmilli14667 x", u"14.667"_s);
    row("a default font brings the default size", "\\deff1" + fonts + "x", u"Arial 12"_s);
    row("traits", "\\b\\i\\ul x", u"bold italic underlined"_s);
    row("traits ended", "\\b\\i\\ul\\b0\\i0\\ulnone x", u""_s);
    row("traits of a group end with it", "{\\b\\i}x", u""_s);
    row("plain ends all", fonts + "\\f1\\fs30\\b\\cf1\\plain x", u""_s);
    row("a colour", colours + "\\cf1 x", u"#ffffffff"_s);
    row("the expanded colour is the truer one", colours + "\\cf3 x", u"#80ff0000"_s);
    row("automatic", colours + "\\cf1\\cf0 x", u""_s);
    row("plain black is automatic", colours + "\\cf2 x", u""_s);
    row("the system's text colour is automatic", colours + "\\cf4 x", u""_s);
    row("a colour that is not in the table", colours + "\\cf77 x", u""_s);
    row("the look of an empty text", "\\fs30\\b ", u"15 bold"_s);
}

void TestBody::looksAreRead()
{
    QFETCH(QByteArray, rtf);
    QFETCH(QString, look);
    QCOMPARE(formatOf(rtf), look);
}

void TestBody::paragraphsAreRead()
{
    QTextDocument document;
    readBody("{\\rtf1\\pard\\keepn\\qc a\\\n\\\n\\pard\\ql\\qnatural b\\par\\ql c\\par"
             "\\pard{\\qj d\\par}e\\fs40\\par}",
             document);
    const QString centred = QString::number(int(Qt::AlignHCenter)) + u"\\keepn"_s;
    const QStringList expected {centred + u" []a"_s,
                                centred + u" empty "_s,
                                u"natural []b"_s,
                                QString::number(int(Qt::AlignLeft)) + u" []c"_s,
                                QString::number(int(Qt::AlignJustify)) + u" []d"_s,
                                u"natural []e"_s,
                                u"natural empty 20"_s};
    QCOMPARE(describe(document), expected);
}

void TestBody::writesTheDialectWordForWord()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    QTextCharFormat plain;
    plain.setFontFamilies({u"Helvetica"_s});
    plain.setFontPointSize(12);
    QTextCharFormat loud = plain;
    loud.setFontWeight(QFont::Bold);
    loud.setFontPointSize(14.667);
    loud.setForeground(QColor(255, 0, 51));
    cursor.setBlockCharFormat(plain);
    cursor.insertText(u"a{\u00e9\u20ac\u2028\u3042\U0001F600b\u00a0\u00ad\tc"_s, plain);
    cursor.insertText(u"loud"_s, loud);
    cursor.insertBlock(cursor.blockFormat(), plain);
    QTextBlockFormat centred;
    centred.setAlignment(Qt::AlignHCenter);
    cursor.insertBlock(centred, plain);
    cursor.insertText(u"end"_s, plain);
    const QByteArray tabs =
        "\\pard\\tx560\\tx1120\\tx1680\\tx2240\\tx2800\\tx3360\\tx3920\\tx4480\\tx5040"
        "\\tx5600\\tx6160\\tx6720\\pardirnatural";
    QCOMPARE(
        rtfOf(bodyFromDocument(document)),
        "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709\n\\cocoatextscaling0\\cocoaplatform0"
        "{\\fonttbl\\f0\\fswiss\\fcharset0 Helvetica;}\n"
        "{\\colortbl;\\red255\\green255\\blue255;\\red255\\green0\\blue51;}\n"
        "{\\*\\expandedcolortbl;;\\cssrgb\\c100000\\c0\\c20000;}\n"
            + tabs
            + "\\partightenfactor0\n\n\\f0\\fs24 \\cf0 a\\{\\'e9\\'80\\uc0\\u8232 \\u12354 "
              "\\u55357 "
              "\\u56832 b\\~\\'ad\tc\\b\\fs29\\fsmilli14667 \\cf2 loud\\\n\\b0\\fs24 \\cf0 \\\n"
            + tabs + "\\qc\\partightenfactor0\n\nend}");
}

void TestBody::theEmptyTextIsWrittenAsThePlatformDoes()
{
    QTextDocument document;
    const QByteArray rtf = rtfOf(bodyFromDocument(document));
    QCOMPARE(bodyFromDocument(document).size(), 235);
    QVERIFY(rtf.endsWith(
        "{\\fonttbl}\n{\\colortbl;\\red255\\green255\\blue255;}\n{\\*\\expandedcolortbl;;}\n}"));
    readBody(bodyFromDocument(document), document);
    QCOMPARE(describe(document), describe(QTextDocument()));
}

void TestBody::whatIsWrittenReadsBackEqual()
{
    QRandomGenerator random(20061122);
    for (int round = 0; round < 1500; ++round) {
        QTextDocument first;
        fill(first, random);
        const QByteArray body = bodyFromDocument(first);
        QTextDocument second;
        readBody(body, second);
        QCOMPARE(describe(second), describe(first));
        QCOMPARE(bodyFromDocument(second), body);
        QCOMPARE(plainTextFromBody(body), textOf(first));
    }
}

void TestBody::aTextWithoutFormatsReadsBackWithoutFormats()
{
    for (const QByteArray text : {"a", "a\n", "\n", "\n\n\na\n\n\n"}) {
        QTextDocument first;
        readBody(text, first);
        QTextDocument second;
        readBody(bodyFromDocument(first), second);
        QCOMPARE(describe(second), describe(first));
        QCOMPARE(textOf(second).toUtf8(), text);
    }
}

void TestBody::attachmentsComeBackWithNameAndBytes()
{
    QTextDocument document;
    readBody(bodyWithFiles(attachmentText), document);
    QCOMPARE(textOf(document), u"see \ufffc\ufffc\n\ufffc."_s);
    const QByteArray body = bodyFromDocument(document);

    const FlatRtfdEntries before = readFlatRtfd(bodyWithFiles(attachmentText))->entries;
    const FlatRtfdEntries after = readFlatRtfd(body)->entries;
    QCOMPARE(after.size(), before.size());
    for (std::size_t i = 0; i < 4; ++i) {
        QVERIFY(after[i] == before[i]);
    }
    QCOMPARE(readFlatRtfdAttributes(after[4].bytes)[0].modified, 1234u);
    QVERIFY(after[5].bytes.contains(
        "{{\\NeXTGraphic a b.png \\width400 \\height300 \\noorient "
        "\\appleattachmentpadding0 \\appleembedtype0 \\appleaqc\n}\xac}{{"));

    QTextDocument again;
    readBody(body, again);
    QCOMPARE(describe(again), describe(document));
    QCOMPARE(bodyFromDocument(again), body);
    QCOMPARE(AttachmentStore::find(again)->entry(u"A\u0308{x}\\.pdf"_s)->bytes, "pdf");
}

void TestBody::aDeletedAttachmentIsNotWritten()
{
    QTextDocument document;
    readBody(bodyWithFiles(attachmentText), document);
    QTextCursor cursor(&document);
    cursor.setPosition(5);
    cursor.deleteChar(); // The PDF; the image stands twice.
    const QByteArray body = bodyFromDocument(document);
    QVERIFY(!body.contains("x}\\.pdf"));
    QVERIFY(body.contains("stray.bin"));
    document.undo();
    QVERIFY(bodyFromDocument(document).contains("pdf"));
}

void TestBody::textTypedBehindAnAttachmentIsText()
{
    QTextDocument document;
    readBody(bodyWithFiles(attachmentText), document);
    QTextCursor cursor(&document);
    cursor.movePosition(QTextCursor::End);
    cursor.setPosition(6);
    cursor.insertText(u"typed\ufffc"_s);
    QTextDocument again;
    readBody(bodyFromDocument(document), again);
    QCOMPARE(textOf(again), u"see \ufffc\ufffctyped\ufffc\n\ufffc."_s);
}

void TestBody::cellsAreOneLineOfPlainTextAndItemsHaveNoMarker()
{
    QTextDocument document;
    QTextCursor cursor(&document);
    cursor.insertText(u"before"_s);
    QTextTable *table = cursor.insertTable(1, 2);
    table->cellAt(0, 0).firstCursorPosition().insertText(u"left"_s);
    table->cellAt(0, 1).firstCursorPosition().insertText(u"right"_s);
    cursor.movePosition(QTextCursor::End);
    cursor.insertList(QTextListFormat::ListDisc);
    cursor.insertText(u"item"_s);
    QCOMPARE(plainTextFromBody(bodyFromDocument(document)), u"before\nleft\tright\n\nitem"_s);
}

void TestBody::theDocumentIsAsFreshAndUndoAsItWas()
{
    for (const bool undo : {true, false}) {
        QTextDocument document;
        document.setUndoRedoEnabled(undo);
        QTextCursor(&document).insertText(u"old"_s);
        readBody("{\\rtf1 new\\par text}", document);
        QCOMPARE(textOf(document), u"new\ntext"_s);
        QCOMPARE(document.isUndoRedoEnabled(), undo);
        QVERIFY(!document.isUndoAvailable());
        QVERIFY(!document.isModified());
    }
}

void TestBody::aBodyOfOneFileIsItsText()
{
    const auto file = [](const QByteArray &name, const QByteArray &bytes) {
        return FlatRtfdEntry {name, FlatRtfdEntry::Kind::File, bytes, {}};
    };
    const QByteArray one =
        writeFlatRtfd({file("__@PreferredName@__", "n.rtf"), file("..", "{\\rtf1 text}")});
    QCOMPARE(plainTextFromBody(one), u"text"_s);
    QCOMPARE(plainTextFromBody(writeFlatRtfd({file("TXT.rtf", "no RTF")})), u"no RTF"_s);
}

void TestBody::aFlatBodyCutAnywhereIsRead()
{
    const QByteArray body = bodyWithFiles("{\\rtf1 text}");
    QTextDocument document;
    for (qsizetype length = 0;
         length<body.size(); length += length> 200 && length < 4200 ? 97 : 1) {
        readBody(body.first(length), document);
        QVERIFY(bodyFromDocument(document).startsWith("rtfd"));
    }
    readBody(body.chopped(3), document);
    QCOMPARE(textOf(document), plainTextFromBody(body.chopped(3)));
    QCOMPARE(textOf(document), u"te"_s);
}

QTEST_MAIN(TestBody)
#include "tst_body.moc"
