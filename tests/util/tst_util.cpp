#include "platform/nskeyedarchiver.h"
#include "platform/nsurlbookmark.h"
#include "util/qvdatetagelaborated.h"
#include "util/qvstringutils.h"
#include "util/valuetransformers.h"

#include <QFontMetricsF>
#include <QImage>
#include <QTemporaryFile>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

using Transformer = std::shared_ptr<NSValueTransformer>;
Q_DECLARE_METATYPE(Transformer)

namespace {

const QVariant nil;
const QDateTime evening(QDate(2005, 3, 7), QTime(9, 5, 2));

template <typename T, typename... Arguments> Transformer made(Arguments... arguments)
{
    return std::make_shared<T>(arguments...);
}

} // namespace

class TestUtil : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTransformerGives_data();
    void aTransformerGives();
    void aReversedTransformerGives_data();
    void aReversedTransformerGives();
    void bookmarksGivePathAndName();
    void imagesGoToBytesAndBack();
    void namesFindTheirTransformer();
    void dateTagsAreWrittenIn_data();
    void dateTagsAreWrittenIn();
    void stringsBecome_data();
    void stringsBecome();
    void aTextIsCutToFit();
    void timesCountTheirSerials();
};

void TestUtil::aTransformerGives_data()
{
    QTest::addColumn<Transformer>("transformer");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("result");
    const auto row = [](const char *name, const Transformer &transformer, const QVariant &value,
                        const QVariant &result) {
        QTest::newRow(name) << transformer << value << result;
    };
    row("an int is true", made<QVIntToBool>(), -3, true);
    row("nil is a false int", made<QVIntToBool>(), nil, false);
    row("zero is a true negation", made<QVNegateIntToBool>(), 0, true);
    row("one element is not counted", made<QVOneIfOneInArray>(), QVariantList {1}, 0);
    row("two elements are", made<QVOneIfOneInArray>(), QVariantList {1, 2}, 1);
    row("no list", made<QVOneIfOneInArray>(), nil, 0);
    row("nil as a path", made<QVPathFromBookmark>(), nil, u""_s);
    row("nil as a name", made<QVNameFromBookmark>(), nil, u""_s);
    row("a bookmark that leads nowhere", made<QVPathFromBookmark>(), QByteArray("x"), nil);
    row("1 if not 0", made<QV1IfNot0>(), 7, 1);
    row("a boolean as number", made<QVNumberBoolToNumberNum>(), true, 1);
    row("equal to the reference", made<QV1IfEqualToRef>(3), 3, 1);
    row("nil stays nil", made<QV1IfEqualToRef>(0), nil, nil);
    row("65536 compares as 0", made<QVValueIsEqualToRef>(0), 65536, 1);
    row("40000 compares as -25536", made<QVValueIsEqualToRef>(-25536), 40000, 1);
    row("a reference beyond 16 bits is never equal", made<QVValueIsEqualToRef>(40000), 40000, 0);
    row("a digit of its own", made<QVValueIs3>(), 3, 1);
    row("a digit with another reference", made<QVValueIs3>(5), 3, 0);
    row("greater is strict", made<QVValueIsGreaterOfRef>(3), 3, 0);
    row("greater", made<QVValueIsGreaterOfRef>(3), 4, 1);
    row("smaller is strict", made<QVValueIsSmallerOfRef>(3), 3, 0);
    row("smaller", made<QVValueIsSmallerOfRef>(3), 2, 1);
    row("not equal", made<QVValueNotEqualToRef>(0), 9, 1);
    row("a string whatever comes", made<QVReturnInitStr>(u"s"_s), nil, u"s"_s);
    row("a product of floats", made<QVValueMultipliedBy>(QVariant(1.5)), 3, 4.5F);
    row("nil times something", made<QVValueMultipliedBy>(QVariant(1.5)), nil, nil);
    row("the row of size 13", made<QVHeightForFontSize>(), 13, 20);
    row("the row of size 24", made<QVHeightForFontSize>(), 24, 35);
    row("an equal string", made<QVValueIsEqualToStr>(u"a"_s), u"a"_s, true);
    row("a string in another case", made<QVValueIsEqualToStr>(u"a"_s), u"A"_s, false);
    row("an archived string", made<QVUnarchivieFromDataToText>(),
        NSKeyedArchiver::archivedDataWithRootObject(NSObject(u"text"_s)), u"text"_s);
    row("nil as an archive", made<QVUnarchivieFromDataToText>(), nil, nil);
    row("a member of the set", made<QVValueIsInSet>(QVariantList {1, u"a"_s}), u"a"_s, true);
    row("no element of the array", made<QVValueIsInArray>(QVariantList {1, 2}), 3, false);
    row("blanks alone are empty", made<QVEmptyTrimmedString>(), u"   "_s, true);
    row("a tab is content", made<QVEmptyTrimmedString>(), u"\t"_s, false);
    row("nil is empty", made<QVEmptyTrimmedString>(), nil, true);
    row("nil is not filled", made<QVFilledTrimmedString>(), nil, false);
    row("a letter fills", made<QVFilledTrimmedString>(), u" a "_s, true);
}

void TestUtil::aTransformerGives()
{
    QFETCH(const Transformer, transformer);
    QFETCH(const QVariant, value);
    QFETCH(const QVariant, result);
    const QVariant given = transformer->transformedValue(value);
    QCOMPARE(given, result);
    QCOMPARE(given.typeId(), result.typeId());
}

void TestUtil::aReversedTransformerGives_data()
{
    QTest::addColumn<Transformer>("transformer");
    QTest::addColumn<bool>("isReversible");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("result");
    const auto row = [](const char *name, const Transformer &transformer, const QVariant &value,
                        const QVariant &result, bool isReversible = true) {
        QTest::newRow(name) << transformer << isReversible << value << result;
    };
    row("true is 1, whatever it was", made<QVIntToBool>(), true, 1);
    row("true negated is 0", made<QVNegateIntToBool>(), true, 0);
    row("the array is always empty", made<QVOneIfOneInArray>(), 1, QVariantList());
    row("a number as boolean", made<QVNumberBoolToNumberNum>(), 5, true);
    row("false is nil and not 0", made<QVValueIsEqualToRef>(3), false, nil);
    row("true is the reference", made<QVValueIs3>(), true, 3);
    row("one way only", made<QV1IfNot0>(), 1, nil, false);
    row("the date goes one way only", made<QVDateTagElaborated>(), u"05"_s, nil, false);
}

void TestUtil::aReversedTransformerGives()
{
    QFETCH(const Transformer, transformer);
    QFETCH(const bool, isReversible);
    QFETCH(const QVariant, value);
    QFETCH(const QVariant, result);
    QCOMPARE(transformer->allowsReverseTransformation(), isReversible);
    QCOMPARE(transformer->reverseTransformedValue(value), result);
}

void TestUtil::bookmarksGivePathAndName()
{
    QTemporaryFile file;
    QVERIFY(file.open());
    const auto bookmark = nsurlbookmark::bookmarkData(file.fileName(), BookmarkAccess::ReadWrite);
    QVERIFY(bookmark);
    QCOMPARE(QVPathFromBookmark().transformedValue(*bookmark), QVariant(file.fileName()));
    QCOMPARE(QVNameFromBookmark().transformedValue(*bookmark),
             QVariant(QFileInfo(file.fileName()).fileName()));
}

void TestUtil::imagesGoToBytesAndBack()
{
    const QVariant empty = QVImgData().transformedValue(nil);
    QCOMPARE(empty.typeId(), static_cast<int>(QMetaType::QImage));
    QCOMPARE(QVImgData().reverseTransformedValue(empty), nil);
    QImage image(3, 2, QImage::Format_RGBA8888);
    image.fill(QColor(1, 2, 3, 4));
    const QByteArray tiff = QVImgData().reverseTransformedValue(image).toByteArray();
    QVERIFY(tiff.startsWith(QByteArray("MM\0\x2a", 4)));
    QCOMPARE(tiff.mid(8, 24), QByteArray("\1\2\3\4", 4).repeated(6));
    QCOMPARE(tiff.size(), 8 + 24 + 8 + 2 + 10 * 12 + 4);
}

void TestUtil::namesFindTheirTransformer()
{
    QCOMPARE(NSValueTransformer::valueTransformerForName(u"valueNot0"_s), nullptr);
    NSValueTransformer::setValueTransformer(std::make_unique<QVValueNotEqualToRef>(0),
                                            u"valueNot0"_s);
    const NSValueTransformer *found = NSValueTransformer::valueTransformerForName(u"valueNot0"_s);
    QVERIFY(found);
    QCOMPARE(found->transformedValue(1), QVariant(1));
}

void TestUtil::dateTagsAreWrittenIn_data()
{
    QTest::addColumn<QVariant>("text");
    QTest::addColumn<QString>("result");
    QTest::newRow("all of them") << QVariant(u"<yy> <YY> <mm> <dd> <hh> <ii> <ss>"_s)
                                 << u"05 2005 03 07 09 05 02"_s;
    QTest::newRow("each as often as it stands") << QVariant(u"<dd><dd>"_s) << u"0707"_s;
    QTest::newRow("no tags") << QVariant(u"a <MM> <DD> <Yy> b"_s) << u"a <MM> <DD> <Yy> b"_s;
    QTest::newRow("empty") << QVariant(u""_s) << u""_s;
    QTest::newRow("nil") << nil << u""_s;
}

void TestUtil::dateTagsAreWrittenIn()
{
    QFETCH(const QVariant, text);
    QFETCH(const QString, result);
    const QVDateTagElaborated transformer([] { return evening; });
    QCOMPARE(transformer.transformedValue(text), QVariant(result));
}

void TestUtil::stringsBecome_data()
{
    QTest::addColumn<QString>("given");
    QTest::addColumn<QString>("result");
    const auto row = [](const char *name, const std::optional<QString> &given,
                        const std::optional<QString> &result) {
        QTest::newRow(name) << given.value_or(u"nil"_s) << result.value_or(u"nil"_s);
    };
    using S = QVStringUtils;
    const QString blanks = u" \t "_s;
    row("allowed characters stay", S::trimString(u"a-1-b-2"_s, u"12"_s), u"12"_s);
    row("nothing is allowed", S::trimString(u"ab"_s, u""_s), u""_s);
    row("leading white space goes", S::removeInitialSpaces(u" \t a b"_s), u"a b"_s);
    row("a line end is no blank", S::removeInitialSpaces(u"\na"_s), u"\na"_s);
    row("white space alone is nil", S::removeInitialSpaces(blanks), std::nullopt);
    row("nothing is nil", S::removeInitialSpaces(u""_s), std::nullopt);
    row("blanks go at both ends", S::trimLateralSpace(u"  a b "_s), u"a b"_s);
    row("tabs stay", S::removeLateralSpace(blanks), u"\t"_s);
    row("quotes go at both ends", S::trimLateralQuote(u"\"\"a\"b\""_s), u"a\"b"_s);
    row("zeros lead", S::addLeading0(u"7"_s, 3), u"007"_s);
    row("long enough", S::addLeading0(u"1234"_s, 3), u"1234"_s);
    row("zeros alone", S::addLeading0(u""_s, 2), u"00"_s);
    row("a negative length", S::addLeading0(u"a"_s, -1), u"a"_s);
    row("the moment as digits", S::uniqueTimeString(evening), u"20050307090502"_s);
    row("a tab counts as filled", S::spaceTrimmedNotEmpy(u"\t"_s) ? u"yes"_s : u"no"_s, u"yes"_s);
    row("blanks do not", S::spaceTrimmedNotEmpy(u"  "_s) ? u"yes"_s : u"no"_s, u"no"_s);
    row("nil does not", S::spaceTrimmedNotEmpy(std::nullopt) ? u"yes"_s : u"no"_s, u"no"_s);
}

void TestUtil::stringsBecome()
{
    QFETCH(const QString, given);
    QFETCH(const QString, result);
    QCOMPARE(given, result);
}

void TestUtil::aTextIsCutToFit()
{
    const QFont font(u"DejaVu Sans"_s, 12);
    const QFontMetricsF metrics(font);
    const QString text = u"harbour"_s;
    const auto wide = static_cast<qint32>(std::ceil(metrics.horizontalAdvance(text)));
    QCOMPARE(QVStringUtils::trimStringToFit(text, wide, font), text);
    const QString cut = QVStringUtils::trimStringToFit(text, wide - 1, font);
    QVERIFY(cut.endsWith(u".."_s) && text.startsWith(cut.chopped(2)) && cut.size() > 3);
    QVERIFY(metrics.horizontalAdvance(cut) <= wide - 1);
    QCOMPARE(QVStringUtils::trimStringToFit(text, 0, font), u"h.."_s);
}

void TestUtil::timesCountTheirSerials()
{
    QCOMPARE(QVStringUtils::getNewSerialForTimeString(u""_s), u"1"_s); // as if it were repeated
    const QString time = QVStringUtils::uniqueTimeString(evening);
    for (const QString &serial : {u"0"_s, u"1"_s, u"2"_s}) {
        QCOMPARE(QVStringUtils::uniqueTimeSerialString(evening), time + serial);
    }
    QVERIFY(QVStringUtils::uniqueTimeSerialString(evening.addSecs(1)).endsWith(u"030"_s));
    const QString random = QVStringUtils::uniqueTimeRandString(evening);
    QVERIFY(random.startsWith(time) && random.size() >= time.size() + 5);
    QVERIFY(QVStringUtils::uniqueUUIDString() != QVStringUtils::createUUIDString());
}

QTEST_MAIN(TestUtil)
#include "tst_util.moc"
