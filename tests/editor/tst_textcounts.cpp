#include "editor/textcounts.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

class TestTextCounts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wordsAreCountedAsReadersDo_data();
    void wordsAreCountedAsReadersDo();
};

void TestTextCounts::wordsAreCountedAsReadersDo_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<TextCounts>("counts");
    QTest::newRow("nothing is no paragraph") << QString() << TextCounts {0, 0, 0};
    QTest::newRow("blanks are no paragraph") << u" \t "_s << TextCounts {0, 3, 0};
    QTest::newRow("punctuation makes no word") << u"one, two – three!"_s << TextCounts {3, 17, 1};
    QTest::newRow("hyphens and apostrophes join") << u"don’t re-do it's"_s << TextCounts {3, 16, 1};
    QTest::newRow("signs alone are no word") << u"'quoted' - dash-"_s << TextCounts {2, 16, 1};
    QTest::newRow("dashes part") << u"one—two–three"_s << TextCounts {3, 13, 1};
    QTest::newRow("an address is one word") << u"see https://a.b/c?d=e"_s << TextCounts {2, 21, 1};
    QTest::newRow("numbers are words") << u"12 a4"_s << TextCounts {2, 5, 1};
    QTest::newRow("each ideograph is a word") << u"漢字 kana かな"_s << TextCounts {5, 10, 1};
    QTest::newRow("a surrogate pair is one character") << u"\U0001F600 x"_s << TextCounts {1, 3, 1};
    QTest::newRow("marks belong to their letter") << u"nai\u0308ve"_s << TextCounts {1, 6, 1};
}

void TestTextCounts::wordsAreCountedAsReadersDo()
{
    QFETCH(QString, text);
    QTEST(countsOf(text), "counts");
}

QTEST_APPLESS_MAIN(TestTextCounts)
#include "tst_textcounts.moc"
