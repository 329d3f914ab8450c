#include "richtext/attachmentstore.h"
#include "richtext/body.h"
#include "richtext/listmarks.h"
#include "richtext/richtextexport.h"
#include "richtext/textproperties.h"
#include "support/describedtext.h"

#include <QRandomGenerator>
#include <QTest>
#include <QTextCursor>

using namespace quorvane;

namespace {

constexpr int texts = 60;

/// Makes documents of all that the editor offers, the same ones for the same seed.
class RandomText final
{
public:
    explicit RandomText(quint32 seed)
        : m_random(seed)
    { }

    void fill(QTextDocument &document)
    {
        QTextCursor cursor(&document);
        document.setUndoRedoEnabled(false);
        m_lists.clear();
        insertAll(cursor, 2 + below(8), 0);
    }

private:
    int below(int limit) { return int(m_random.bounded(limit)); }

    bool sometimes(int often = 6) { return below(often) == 0; }

    QColor colour() { return QColor::fromRgb(m_random.generate() | 1); } // never black

    double pixels(int twips) { return (1 + below(twips)) / 15.0; }

    void insertAll(QTextCursor &cursor, int pieces, int depth)
    {
        for (int i = 0; i < pieces; ++i) {
            if (i > 0) {
                cursor.insertBlock(QTextBlockFormat(), QTextCharFormat());
            }
            insertParagraph(cursor);
            if (depth < 3 && sometimes()) {
                insertTable(cursor, depth);
                insertParagraph(cursor);
            }
        }
    }

    void insertParagraph(QTextCursor &cursor)
    {
        const bool isItem = sometimes(3);
        cursor.setBlockFormat(paragraphFormat(isItem));
        if (isItem) {
            addToList(cursor);
        }
        for (int runs = below(5); runs > 0; --runs) {
            insertRun(cursor);
        }
    }

    QTextBlockFormat paragraphFormat(bool isItem)
    {
        QTextBlockFormat format;
        constexpr Qt::AlignmentFlag alignments[] = {Qt::AlignLeft, Qt::AlignRight, Qt::AlignHCenter,
                                                    Qt::AlignJustify};
        const auto apply = [&](auto set) {
            if (sometimes()) {
                set();
            }
        };
        apply([&] { format.setAlignment(alignments[below(4)]); });
        apply([&] { format.setLeftMargin(pixels(2000)); });
        apply([&] { format.setRightMargin(pixels(2000)); });
        apply([&] { format.setTopMargin(pixels(500)); });
        apply([&] { format.setBottomMargin(pixels(500)); });
        apply([&] { format.setBackground(colour()); });
        apply([&] { format.setHeadingLevel(1 + below(6)); });
        apply([&] { format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore); });
        apply([&] { format.setLayoutDirection(sometimes(2) ? Qt::RightToLeft : Qt::LeftToRight); });
        apply([&] {
            format.setLineHeight(100.0 + 50 * below(4), QTextBlockFormat::ProportionalHeight);
        });
        apply([&] { format.setLineHeight(pixels(600), 2 + below(3)); });
        apply([&] { setTabs(format); });
        apply([&] {
            if (isItem) {
                format.setProperty(ListFirstIndent, -360);
            } else {
                format.setTextIndent(-pixels(900));
            }
        });
        return format;
    }

    void setTabs(QTextBlockFormat &format)
    {
        QList<QTextOption::Tab> tabs;
        QByteArray leaders;
        for (int i = 0; i <= below(3); ++i) {
            const auto type = QTextOption::TabType(below(4));
            tabs.append(QTextOption::Tab((10.0 + 90 * i + below(80)), type,
                                         type == QTextOption::DelimiterTab ? u'.' : QChar()));
            leaders += char('0' + below(7));
        }
        format.setTabPositions(tabs);
        if (leaders.count('0') < leaders.size()) {
            format.setProperty(TabLeaders, leaders);
        }
    }

    void addToList(QTextCursor &cursor)
    {
        QTextList *last = m_lists.isEmpty() ? nullptr : m_lists.last();
        // Bullets have no numbers that go on behind something else: there a list is a new one.
        const bool goesOn = last
            && (isNumbered(listKind(last->format()))
                || cursor.block().previous().textList() == last);
        if (goesOn && !sometimes(3)) {
            last->add(cursor.block());
            return;
        }
        QTextListFormat format;
        const auto kind = QTextListFormat::Style(-1 - below(8));
        format.setIndent(1 + below(4));
        if (isNumbered(kind) && sometimes(2)) {
            format.setNumberPrefix(u"(\u00a7"_s);
            format.setNumberSuffix(u")"_s);
        }
        if (isNumbered(kind) && sometimes()) {
            format.setProperty(ListStart, 2 + below(20));
        }
        if (kind == QTextListFormat::ListDisc && sometimes(2)) {
            format.setProperty(ListMarker, u"\u2043"_s);
        }
        setListKind(format, kind);
        m_lists.append(cursor.createList(format));
    }

    void insertRun(QTextCursor &cursor)
    {
        static const QString pieces[] = {
            u"plain "_s,      u"{}\\;'"_s, u"\u00e9\u20ac\u00a0"_s, u"\u3042\U0001F600\u05d0"_s,
            u"a\tb\u2028c"_s, u"\f1 23"_s, u"\u00ad\u200b\ufffe"_s};
        cursor.insertText(pieces[below(int(std::size(pieces)))], runFormat());
        if (sometimes(8)) {
            insertAttachment(cursor);
        }
    }

    void insertAttachment(QTextCursor &cursor)
    {
        AttachmentStore &store = AttachmentStore::of(*cursor.document());
        QTextCharFormat format = runFormat();
        format.setObjectType(attachmentObjectType);
        format.setProperty(
            AttachmentName,
            store.add(u"\u00fc {%1}.png"_s.arg(below(5)), QByteArray(below(9), 'b')));
        format.setProperty(AttachmentId, store.nextId());
        format.setProperty(AttachmentWidth, 20 + below(5000));
        format.setProperty(AttachmentHeight, 20 + below(5000));
        cursor.insertText(QString(QChar::ObjectReplacementCharacter), format);
    }

    QTextCharFormat runFormat()
    {
        QTextCharFormat format;
        static const QString families[] = {u"Helvetica"_s, u"Times New Roman"_s, u"Odd; \u00e9"_s};
        const auto apply = [&](auto set) {
            if (sometimes()) {
                set();
            }
        };
        apply([&] { format.setFontFamilies({families[below(3)]}); });
        apply([&] { format.setFontPointSize((1 + below(300)) / 4.0); });
        apply([&] { format.setFontWeight(QFont::Bold); });
        apply([&] { format.setFontItalic(true); });
        apply([&] { format.setForeground(colour()); });
        apply([&] { format.setBackground(sometimes() ? QColor(Qt::white) : colour()); });
        apply([&] { setUnderline(format); });
        apply([&] { setStrike(format); });
        apply(
            [&] { format.setVerticalAlignment(QTextCharFormat::VerticalAlignment(1 + below(2))); });
        apply([&] {
            format.setFontCapitalization(sometimes(2) ? QFont::AllUppercase : QFont::SmallCaps);
        });
        apply([&] { format.setFontKerning(false); });
        apply([&] {
            format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
            format.setFontLetterSpacing(pixels(60));
        });
        apply([&] {
            format.setProperty(CharacterWords,
                               QByteArray("\\outl\\strokewidth60\\strokec#ff102030"));
        });
        apply([&] { setLink(format); });
        return format;
    }

    void setUnderline(QTextCharFormat &format)
    {
        const UnderlineKind &kind = underlineKinds[below(int(std::size(underlineKinds)))];
        format.setUnderlineStyle(kind.style);
        const bool isFirst =
            std::none_of(std::begin(underlineKinds), &kind,
                         [&](const UnderlineKind &k) { return k.style == kind.style; });
        if (!isFirst) {
            format.setProperty(UnderlineWord, QByteArray(kind.word));
        }
        if (sometimes(2)) {
            format.setUnderlineColor(colour());
        }
    }

    void setStrike(QTextCharFormat &format)
    {
        format.setFontStrikeOut(true);
        if (sometimes(2)) {
            format.setProperty(DoubleStrike, true);
        }
        if (sometimes(2)) {
            format.setProperty(StrikeColour, colour());
        }
    }

    void setLink(QTextCharFormat &format)
    {
        format.setAnchor(true);
        format.setAnchorHref(sometimes(2) ? u"#place"_s : u"https://x.org/\u00e9?a={1}&b=\\2"_s);
        const bool hasLook = format.hasProperty(QTextFormat::ForegroundBrush)
            || format.hasProperty(QTextFormat::TextUnderlineStyle);
        if (!hasLook) {
            format.setForeground(QColor(linkColour));
            format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
            format.setProperty(LinkLook, true);
        }
    }

    void insertTable(QTextCursor &cursor, int depth)
    {
        const int rows = 1 + below(4);
        const int columns = 1 + below(4);
        QTextTableFormat format;
        format.setBorder(0);
        format.setBorderCollapse(true);
        format.setCellSpacing(0);
        format.setCellPadding(0);
        QList<QTextLength> lengths;
        for (int i = 0; i < columns; ++i) {
            lengths.append(QTextLength(QTextLength::FixedLength, 20 + below(200)));
        }
        format.setColumnWidthConstraints(lengths);
        if (sometimes()) {
            format.setHeaderRowCount(1);
        }
        if (sometimes()) {
            format.setLeftMargin(pixels(600));
        }
        QTextTable *table = cursor.insertTable(rows, columns, format);
        if (sometimes(2)) {
            const int row = below(rows);
            const int column = below(columns);
            table->mergeCells(row, column, 1 + below(rows - row), 1 + below(columns - column));
        }
        for (int i = 0; i < rows * columns; ++i) {
            QTextTableCell cell = table->cellAt(i / columns, i % columns);
            if (cell.row() == i / columns && cell.column() == i % columns) {
                QTextCursor inner = cell.firstCursorPosition();
                insertAll(inner, 1 + below(2), depth + 1);
                setLook(cell);
            }
        }
        cursor.setPosition(table->lastPosition() + 1);
    }

    void setLook(QTextTableCell &cell)
    {
        QTextTableCellFormat format = cell.format().toTableCellFormat();
        if (sometimes(3)) {
            format.setBackground(colour());
        }
        if (sometimes(3)) {
            format.setVerticalAlignment(sometimes(2) ? QTextCharFormat::AlignMiddle
                                                     : QTextCharFormat::AlignBottom);
        }
        if (sometimes(3)) {
            format.setBottomPadding(pixels(300));
        }
        if (sometimes(3)) {
            format.setLeftBorder(pixels(60));
            format.setLeftBorderStyle(QTextFrameFormat::BorderStyle_Dashed);
            format.setLeftBorderBrush(colour());
        }
        cell.setFormat(format);
    }

    QRandomGenerator m_random;
    QList<QTextList *> m_lists;
};

QString difference(quint32 seed, const QString &actual, const QString &expected)
{
    const auto at = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    const qsizetype from = std::max<qsizetype>(at.first - actual.begin() - 60, 0);
    return u"seed %1\nread    %2\nwritten %3"_s.arg(seed).arg(actual.mid(from, 200),
                                                              expected.mid(from, 200));
}

} // namespace

class TestRtfRoundTrip : public QObject
{
    Q_OBJECT

private slots:
    void aDocumentComesBackEqual();
    void textForOthersIsStableAfterTheFirstPass();
};

void TestRtfRoundTrip::aDocumentComesBackEqual()
{
    for (quint32 seed = 1; seed <= texts; ++seed) {
        QTextDocument first;
        RandomText(seed).fill(first);
        const QByteArray body = bodyFromDocument(first);
        QTextDocument second;
        readBody(body, second);
        const QString expected = DescribedText::of(first);
        const QString actual = DescribedText::of(second);
        QVERIFY2(actual == expected, qPrintable(difference(seed, actual, expected)));
        QCOMPARE(bodyFromDocument(second), body);
    }
}

void TestRtfRoundTrip::textForOthersIsStableAfterTheFirstPass()
{
    for (quint32 seed = 1; seed <= texts; ++seed) {
        QTextDocument document;
        RandomText(seed).fill(document);
        const auto again = [&document] {
            const QByteArray rtf = rtfFromDocument(document);
            readBody(rtf, document);
            return rtf;
        };
        again();
        const QByteArray rtf = again();
        QVERIFY2(again() == rtf, qPrintable(u"seed %1"_s.arg(seed)));
    }
}

QTEST_MAIN(TestRtfRoundTrip)
#include "tst_rtfroundtrip.moc"
