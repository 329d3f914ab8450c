#include "platform/nskeyedarchiver.h"
#include "platform/xmlarchive.h"

#include <QFile>
#include <QTest>

#include <limits>
#include <numbers>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr qint64 smallest = std::numeric_limits<qint64>::min();
constexpr quint64 largest = std::numeric_limits<quint64>::max();

NSObject boolean(bool value)
{
    return NSNumber::numberWithBool(value);
}

NSObject integer(qint64 value)
{
    return NSNumber::numberWithLong(value);
}

NSObject real(double value)
{
    return NSNumber::numberWithDouble(value);
}

QByteArray fixture(const QByteArray &name)
{
    QFile file(QStringLiteral(QUORVANE_TEST_DATA "/archives/") + QString::fromLatin1(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<NSObject> read(const QByteArray &archive)
{
    return NSKeyedUnarchiver::unarchiveObjectWithData(archive);
}

} // namespace

class TestNSKeyedArchiver final : public QObject
{
    Q_OBJECT

private slots:
    void archivesOfOthersGiveWhatTheyHold_data();
    void archivesOfOthersGiveWhatTheyHold();
    void formsThatAReaderMeets_data();
    void formsThatAReaderMeets();
    void whatIsWrittenIsReadAgain_data();
    void whatIsWrittenIsReadAgain();
    void nilAndUnknownEntriesAreNotWritten();
    void theWrittenBytesStayAsTheyAre_data();
    void theWrittenBytesStayAsTheyAre();
    void numbersConvertToTheNearestThatFits();
    void equalityLooksAtClassAndValue();
};

void TestNSKeyedArchiver::archivesOfOthersGiveWhatTheyHold_data()
{
    QTest::addColumn<char>("rootUid"); // another object of the file can be made the root
    QTest::addColumn<std::optional<NSObject>>("expected");
    const auto row = [](const char *file, std::optional<NSObject> expected, char rootUid = 1) {
        QTest::addRow("%s, object %d", file, rootUid) << rootUid << std::move(expected);
    };
    const NSObject unknown = NSObject::unknown();
    const NSObject fields = NSDictionary {
        {u"appversion"_s, integer(20400)},
        {u"flag"_s, boolean(true)},
        {u"ratio"_s, real(0.5)},
        {u"blob"_s, QByteArray("\0\1raw", 5)},
        {u"mblob"_s, QByteArray("\2mutable")},
        {u"note"_s, u"grüße"_s},
        {u"mnote"_s, u"mutable ✓"_s},
    };
    row("dict.bin", fields);
    row("dict.xml", fields);
    row("date.bin", NSDate {0.25});
    row("date.xml", NSDate {0.25});
    row("date-gnustep-shape.bin", NSDate {1});

    row("NSMutableAttributedString.archive", u"0123456789"_s); // its characters
    row("NSMutableAttributedString.archive", u"0123456789"_s, 2);
    row("NSMutableAttributedString.archive", NSDictionary(), 5);
    row("NSMutableAttributedString.archive",
        NSDictionary {{u"Size"_s, integer(123)}, {u"Font"_s, u"Helvetica"_s}}, 7);
    row("NSMutableAttributedString.archive", QByteArray("\1\0\1\1\4\2\2\1\1\3\1\0", 12), 17);
    row("NSIndexSet-ManyRanges.archive",
        QByteArray("\0\x32\x64\x32\xE8\7\x32\xCD\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F\x32", 17), 2);
    row("NSSet-Empty.archive", unknown);
    row("NSKeyedUnarchiver-ComplexTest.plist",
        NSDictionary {{u"array"_s, unknown},
                      {u"string"_s, u"hello"_s},
                      {u"url"_s, unknown},
                      {u"uuid"_s, unknown}});
    row("NSKeyedUnarchiver-UUIDTest.plist", unknown);

    const NSObject unkeyed =
        NSDictionary {{u"int"_s, integer(1)}, {u"string"_s, u"string"_s}, {u"array"_s, unknown}};
    row("unkeyed-dict.bin", unkeyed);
    row("unkeyed-dict.xml", unkeyed);
    row("unkeyed-onevalue.bin", boolean(true));
    row("unkeyed-onevalue.xml", boolean(true));
    row("unkeyed-primitives.bin", integer(1));
    row("unkeyed-primitives.xml", integer(1));
    row("nsmutabledata_archive.plist", QByteArray("hello"));
    row("circular_archive.plist", unknown);
    row("no_root_archive.plist", NSObject(u"yo"_s), 2); // the single entry counts
    for (const char *damaged :
         {"invalid_type_archive.plist", "invalid_uid_archive.plist",
          "invalid_version_archive.plist", "missing_uid_archive.plist",
          "no_class_meta_archive.plist", "no_class_name_archive.plist", "no_objects_archive.plist",
          "no_top_archive.plist", "unkeyed-broken_plist.xml", "unkeyed-missing_archiver.xml",
          "unkeyed-missing_objects.xml", "unkeyed-missing_top.xml", "unkeyed-missing_version.xml",
          "unkeyed-wrong_archiver.xml", "unkeyed-wrong_version.xml"}) {
        row(damaged, std::nullopt);
    }
}

void TestNSKeyedArchiver::archivesOfOthersGiveWhatTheyHold()
{
    QFETCH(char, rootUid);
    QFETCH(std::optional<NSObject>, expected);
    const QByteArray row = QTest::currentDataTag();
    QByteArray archive = fixture(row.first(row.indexOf(',')));
    QVERIFY(!archive.isEmpty());
    if (rootUid != 1) {
        const qsizetype root = archive.indexOf("\x80\x01");
        QVERIFY(root >= 0 && root == archive.lastIndexOf("\x80\x01"));
        archive[root + 1] = rootUid;
    }
    QVERIFY(read(archive) == expected);
}

void TestNSKeyedArchiver::formsThatAReaderMeets_data()
{
    using namespace xmlarchive;
    QTest::addColumn<QByteArray>("objects");
    QTest::addColumn<std::optional<NSObject>>("expected");
    const auto row = [](const char *name, const QByteArray &objects,
                        std::optional<NSObject> expected) {
        QTest::newRow(name) << objects << std::move(expected);
    };
    const auto number = [&](const char *name, const QByteArray &entries, const NSObject &expected) {
        row(name, instance(entries, 2) + classEntry("NSNumber", "NSValue") + "<integer>7</integer>",
            expected);
    };
    number("NS.boolval may be an integer", entry("NS.boolval", "<integer>1</integer>"),
           boolean(true));
    number("NS.intval", entry("NS.intval", "<integer>-7</integer>"), integer(-7));
    number("NS.dblval may be an integer", entry("NS.dblval", "<integer>2</integer>"), real(2));
    number("NS.number by UID", entry("NS.number", uid(3)), integer(7));
    number("NS.number inline", entry("NS.number", "<real>0.5</real>"), real(0.5));
    number("a number with none of them is a stranger", {}, NSObject::unknown());

    const QByteArray mutableData = classEntry("NSMutableData", "NSData");
    row("data beside the instance",
        instance(entry("NS.data", uid(3)), 2) + mutableData + "<data>AQ==</data>",
        QByteArray("\1"));
    row("data as NS.bytes", instance(entry("NS.bytes", "<data> A\nQ== </data>"), 2) + mutableData,
        QByteArray("\1"));
    row("a subclass is known by its ancestor",
        instance(entry("NS.data", "<data></data>"), 2) + classEntry("Leaf", "NSMutableData"),
        QByteArray());
    row("a string as UTF-8 bytes, U+FEFF in front",
        instance(entry("NS.bytes", "<data>77u/w7w=</data>"), 2) + classEntry("NSString"),
        u"\uFEFFü"_s);
    row("a string beside the instance",
        instance(entry("NS.string", uid(3)), 2) + classEntry("NSString") + "<string>a</string>",
        u"a"_s);
    row("a date of whole seconds",
        instance(entry("NS.time", "<integer>3</integer>"), 2) + classEntry("NSDate"), NSDate {3});
    row("a date as it is", "<date>2024-02-29T12:00:01Z</date>", NSDate {730900801});

    const QByteArray k = "<string>k</string>";
    const QByteArray v = "<string>v</string>";
    const NSObject kv = NSDictionary {{u"k"_s, u"v"_s}};
    const QByteArray plain = classEntry("NSDictionary");
    row("numbered keys in any order",
        instance(entry("NS.object.1", uid(4)) + entry("NS.key.0", uid(3))
                     + entry("NS.key.1", uid(4)) + entry("NS.object.0", uid(4)),
                 2)
            + plain + k + v,
        NSDictionary {{u"k"_s, u"v"_s}, {u"v"_s, u"v"_s}});
    row("class hints are passed over",
        dictionary({3}, {4}, 2)
            + "<dict><key>$classhints</key><array/><key>$classname</key><string>NSDictionary</"
              "string></dict>"
            + k + v,
        kv);
    row("an entry whose key is no string is left out",
        dictionary({5, 3}, {4, 4}, 2) + plain + k + v + "<integer>1</integer>", kv);
    row("an entry whose value is nil is left out", dictionary({3, 4}, {4, 0}, 2) + plain + k + v,
        kv);
    row("of two entries with one key the last counts",
        dictionary({3, 3}, {3, 4}, 2) + plain + k + v, kv);
    row("values of unknown classes are kept as such",
        dictionary({3}, {5}, 2) + plain + k + v + instance({}, 6) + classEntry("Stranger"),
        NSDictionary {{u"k"_s, NSObject::unknown()}});
    row("keys are taken as they are",
        dictionary({3}, {4}, 2) + plain + "<string>$$class</string>" + v,
        NSDictionary {{u"$$class"_s, u"v"_s}});

    row("text in XML",
        "<string>&lt;&amp;&#65;&#x1F600;<![CDATA[<b>]]><!-- no text -->\r\n </string>",
        u"<&A😀<b>\r\n "_s);
    row("integers in hexadecimal", "<integer> -0x10 </integer>", integer(-16));
    row("the smallest integer", "<integer>-9223372036854775808</integer>", integer(smallest));
    row("an integer above the signed range", "<integer>18446744073709551615</integer>",
        NSNumber::numberWithUnsignedLong(largest));
    row("infinity", "<real>-Infinity</real>", real(-std::numeric_limits<double>::infinity()));
    row("tags with an end of their own", "<true ></true >", boolean(true));
}

void TestNSKeyedArchiver::formsThatAReaderMeets()
{
    QFETCH(QByteArray, objects);
    QFETCH(std::optional<NSObject>, expected);
    QVERIFY(read(xmlarchive::archive(objects)) == expected);
}

void TestNSKeyedArchiver::whatIsWrittenIsReadAgain_data()
{
    QTest::addColumn<NSObject>("object");
    QTest::newRow("nil") << NSObject();
    QTest::newRow("no") << boolean(false);
    QTest::newRow("one is not yes") << integer(1);
    QTest::newRow("1.0 is not one") << real(1);
    QTest::newRow("pi") << real(std::numbers::pi);
    for (const qint64 value : {qint64(0), qint64(255), qint64(256), qint64(65535), qint64(65536),
                               qint64(4294967295), qint64(4294967296), qint64(-1), smallest}) {
        QTest::addRow("%lld", value) << integer(value);
    }
    QTest::newRow("the largest") << NSObject(NSNumber::numberWithUnsignedLong(largest));
    QTest::newRow("a small unsigned one") << NSObject(NSNumber::numberWithUnsignedLong(5));
    QTest::newRow("a date to the last bit") << NSObject(NSDate {-0.1 / 3});
    QTest::newRow("no bytes") << NSObject(QByteArray());
    for (const int size : {14, 15, 255, 256, 65536}) {
        QTest::addRow("%d bytes", size) << NSObject(QByteArray(size, '\xFF'));
        QTest::addRow("%d ASCII characters", size) << NSObject(QString(size, u'a'));
        QTest::addRow("%d wide characters", size) << NSObject(QString(size, u'ä'));
    }
    QTest::newRow("no text") << NSObject(QString());
    QTest::newRow("unpaired surrogates")
        << NSObject(QString(QChar(0xD800)) + QChar(0xDC00) + QChar(0xDC00));
    QTest::newRow("a zero within text") << NSObject(u"a\0b"_s);
    QTest::newRow("the word for nil") << NSObject(NSDictionary {{u"$null"_s, u"$null"_s}});
    QTest::newRow("U+FEFF and U+FFFE") << NSObject(u"\uFEFFa\uFFFE"_s);

    NSDictionary many;
    for (int i = 0; i < 40000; ++i) {
        many.insert(QString::number(i), i % 2 == 0 ? integer(i) : NSObject(QString::number(i)));
    }
    QTest::newRow("references of four bytes") << NSObject(many);
    NSObject nested = NSDate {1};
    for (int depth = 0; depth < 60; ++depth) {
        nested = NSDictionary {{u"in"_s, nested}, {u"at"_s, integer(depth)}};
    }
    QTest::newRow("dictionaries sixty deep") << nested;
}

void TestNSKeyedArchiver::whatIsWrittenIsReadAgain()
{
    QFETCH(NSObject, object);
    QVERIFY(read(NSKeyedArchiver::archivedDataWithRootObject(object)) == object);
}

void TestNSKeyedArchiver::nilAndUnknownEntriesAreNotWritten()
{
    const NSObject full =
        NSDictionary {{u"a"_s, NSObject()}, {u"b"_s, NSObject::unknown()}, {u"c"_s, boolean(true)}};
    QVERIFY(read(NSKeyedArchiver::archivedDataWithRootObject(full))
            == NSObject(NSDictionary {{u"c"_s, boolean(true)}}));
}

// Objects in the order of the platform's own writer: an instance, its keys, its values with all
// that they hold, and its class after the first instance of it.
void TestNSKeyedArchiver::theWrittenBytesStayAsTheyAre_data()
{
    QTest::addColumn<NSObject>("object");
    QTest::newRow("written-date.bin") << NSObject(NSDate {0.25});
    QTest::newRow("written-dict.bin")
        << NSObject(NSDictionary {{u"d"_s, NSDictionary {{u"k"_s, integer(-1)}}},
                                  {u"n"_s, u"ü"_s},
                                  {u"t"_s, boolean(true)},
                                  {u"u"_s, NSDictionary()}});
}

void TestNSKeyedArchiver::theWrittenBytesStayAsTheyAre()
{
    QFETCH(NSObject, object);
    const QByteArray archive = NSKeyedArchiver::archivedDataWithRootObject(object);
    QCOMPARE(archive.toHex(), fixture(QTest::currentDataTag()).toHex());
}

void TestNSKeyedArchiver::numbersConvertToTheNearestThatFits()
{
    const NSNumber huge = NSNumber::numberWithDouble(1e300);
    QCOMPARE(huge.intValue(), std::numeric_limits<qint32>::max());
    QCOMPARE(huge.longValue(), std::numeric_limits<qint64>::max());
    QCOMPARE(huge.unsignedLongValue(), largest);
    const NSNumber negative = NSNumber::numberWithDouble(-1e300);
    QCOMPARE(negative.longValue(), smallest);
    QCOMPARE(negative.unsignedLongValue(), 0U);
    QCOMPARE(NSNumber::numberWithDouble(0x1p63).longValue(), std::numeric_limits<qint64>::max());
    QCOMPARE(NSNumber::numberWithDouble(-1.9).longValue(), -1);
    QCOMPARE(NSNumber::numberWithDouble(20400.5).unsignedLongValue(), 20400U);
    QCOMPARE(NSNumber::numberWithDouble(qQNaN()).longValue(), 0);
    QCOMPARE(NSNumber::numberWithDouble(0.5).boolValue(), true);
    QCOMPARE(NSNumber::numberWithLong(smallest).intValue(), std::numeric_limits<qint32>::min());
    QCOMPARE(NSNumber::numberWithLong(-1).unsignedLongValue(), 0U);
    QCOMPARE(NSNumber::numberWithUnsignedLong(largest).longValue(),
             std::numeric_limits<qint64>::max());
    QCOMPARE(NSNumber::numberWithUnsignedLong(largest).doubleValue(), 0x1p64);
    QCOMPARE(NSNumber::numberWithBool(true).intValue(), 1);
    QCOMPARE(NSNumber::numberWithBool(true).doubleValue(), 1.0);
}

void TestNSKeyedArchiver::equalityLooksAtClassAndValue()
{
    const NSObject inner = NSDictionary {{u"k"_s, u"v"_s}};
    const NSObject one = NSDictionary {{u"d"_s, inner}};
    const NSObject same = NSDictionary {{u"d"_s, NSDictionary {{u"k"_s, u"v"_s}}}};
    const NSObject other = NSDictionary {{u"d"_s, NSDictionary {{u"k"_s, u"w"_s}}}};
    QVERIFY(one == same);
    QVERIFY(one != other);
    QVERIFY(NSObject(u"a"_s) != NSObject(QByteArray("a")));
    QVERIFY(boolean(true) != integer(1));
    QVERIFY(NSObject() != NSObject::unknown());
    QVERIFY(!NSObject::unknown().string() && !NSObject::unknown().isNil() && NSObject().isNil());
}

QTEST_GUILESS_MAIN(TestNSKeyedArchiver)

#include "tst_nskeyedarchiver.moc"
