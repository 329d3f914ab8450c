#include "platform/nskeyedarchiver.h"
#include "platform/peakmemory.h"
#include "platform/propertylistwriter.h"
#include "platform/xmlarchive.h"

#include <QFile>
#include <QTest>
#include <QtEndian>

#include <algorithm>

using namespace quorvane;
using namespace Qt::StringLiterals;
using namespace xmlarchive;

namespace {

constexpr qint64 mebibyte = 1048576;
// What any reading may take: a multiple of the archive, and room for small ones.
constexpr qint64 greatestMultiple = 16;

const QByteArray plainDictionary = classEntry("NSDictionary");
const QByteArray key = "<string>k</string>";

/// A binary archive whose $objects may refer to anything by number, themselves too.
class BinaryArchive final
{
public:
    using Reference = PropertyListWriter::Reference;

    PropertyListWriter writer;
    std::vector<Reference> objects = {writer.addString(u"$null"_s)};

    Reference string(const char *text) { return writer.addString(QString::fromLatin1(text)); }

    Reference dictionary(const std::vector<Reference> &keysAndValues)
    {
        const Reference result = writer.addDictionary();
        writer.setKeysAndValues(result, keysAndValues);
        return result;
    }

    /// The UID of a class entry put among the objects.
    Reference addClass(const char *name)
    {
        objects.push_back(dictionary({string("$classname"), string(name)}));
        return writer.addUid(static_cast<quint32>(objects.size() - 1));
    }

    QByteArray bytes(quint32 root)
    {
        const Reference top = dictionary({string("root"), writer.addUid(root)});
        return writer.data(dictionary({string("$version"), string("$archiver"), string("$top"),
                                       string("$objects"), writer.addInteger(100000),
                                       string("NSKeyedArchiver"), top, writer.addArray(objects)}));
    }
};

QByteArray levels(int depth, int width)
{
    QByteArray objects;
    for (int level = 0; level < depth; ++level) {
        QByteArray keys;
        QByteArray values;
        for (int i = 0; i < width; ++i) {
            keys += uid(depth + 3 + i);
            values += uid(level + 2);
        }
        objects += instance(entry("NS.keys", "<array>" + keys + "</array>")
                                + entry("NS.objects", "<array>" + values + "</array>"),
                            depth + 2);
    }
    objects += "<true/>" + plainDictionary;
    for (int i = 0; i < width; ++i) {
        objects += "<string>" + QByteArray::number(i) + "</string>";
    }
    return archive(objects);
}

/// Many dictionaries that all hold the same two long arrays.
QByteArray sharedArrays(int dictionaries, int entries)
{
    BinaryArchive archive;
    PropertyListWriter &writer = archive.writer;
    const auto classUid = archive.addClass("NSDictionary");
    std::vector<PropertyListWriter::Reference> keys;
    for (int i = 0; i < entries; ++i) {
        archive.objects.push_back(writer.addString(QString::number(i)));
        keys.push_back(writer.addUid(static_cast<quint32>(archive.objects.size() - 1)));
    }
    const auto leaves = writer.addArray(keys);
    const auto names = {archive.string("NS.keys"), archive.string("NS.objects"),
                        archive.string("$class")};
    const auto instanceOf = [&](PropertyListWriter::Reference k, PropertyListWriter::Reference v) {
        std::vector<PropertyListWriter::Reference> members = names;
        members.insert(members.end(), {k, v, classUid});
        archive.objects.push_back(archive.dictionary(members));
        return writer.addUid(static_cast<quint32>(archive.objects.size() - 1));
    };
    std::vector<PropertyListWriter::Reference> values;
    for (int i = 0; i < dictionaries; ++i) {
        values.push_back(instanceOf(leaves, leaves));
    }
    keys.resize(static_cast<size_t>(dictionaries));
    instanceOf(writer.addArray(keys), writer.addArray(values));
    return archive.bytes(static_cast<quint32>(archive.objects.size() - 1));
}

/// Many strings that all have the same long text inside.
QByteArray sharedText(int strings, int length)
{
    BinaryArchive archive;
    PropertyListWriter &writer = archive.writer;
    const auto classUid = archive.addClass("NSMutableString");
    const auto dictionaryClass = archive.addClass("NSDictionary");
    const auto text = writer.addString(QString(length, u'x'));
    const auto name = archive.string("NS.string");
    const auto className = archive.string("$class");
    std::vector<PropertyListWriter::Reference> keys;
    std::vector<PropertyListWriter::Reference> values;
    for (int i = 0; i < strings; ++i) {
        archive.objects.push_back(archive.dictionary({name, className, text, classUid}));
        values.push_back(writer.addUid(static_cast<quint32>(archive.objects.size() - 1)));
        archive.objects.push_back(writer.addString(QString::number(i)));
        keys.push_back(writer.addUid(static_cast<quint32>(archive.objects.size() - 1)));
    }
    archive.objects.push_back(
        archive.dictionary({archive.string("NS.keys"), archive.string("NS.objects"), className,
                            writer.addArray(keys), writer.addArray(values), dictionaryClass}));
    return archive.bytes(static_cast<quint32>(archive.objects.size() - 1));
}

/// A dictionary that holds one instance of many entries many times.
QByteArray manyUses(size_t uses, size_t entries)
{
    BinaryArchive archive;
    PropertyListWriter &writer = archive.writer;
    const auto className = archive.string("$class");
    std::vector<PropertyListWriter::Reference> members(2 * entries, className);
    members[entries] = archive.addClass("Stranger");
    std::fill_n(members.begin() + 1, entries - 1, archive.string("x"));
    archive.objects.push_back(archive.dictionary(members));
    const auto value = writer.addUid(static_cast<quint32>(archive.objects.size() - 1));
    archive.objects.push_back(archive.string("key"));
    const auto name = writer.addUid(static_cast<quint32>(archive.objects.size() - 1));
    const auto keys = writer.addArray(std::vector(uses, name));
    const auto values = writer.addArray(std::vector(uses, value));
    const auto root =
        archive.dictionary({archive.string("NS.keys"), archive.string("NS.objects"), className,
                            keys, values, archive.addClass("NSDictionary")});
    archive.objects.push_back(root);
    return archive.bytes(static_cast<quint32>(archive.objects.size() - 1));
}

QByteArray realArchive()
{
    QFile file(QStringLiteral(QUORVANE_TEST_DATA "/archives/dict.bin"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The real archive with one of the words of its trailer replaced.
QByteArray withTrailer(int fromEnd, quint64 value)
{
    QByteArray result = realArchive();
    qToBigEndian(value, result.data() + result.size() - fromEnd);
    return result;
}

/// The real archive with bytes put in place of as many others.
QByteArray with(const QByteArray &before, const QByteArray &after)
{
    return realArchive().replace(before, after);
}

} // namespace

class TestHostileArchives final : public QObject
{
    Q_OBJECT

private slots:
    void hostileArchivesAreRefusedInLittleMemory_data();
    void hostileArchivesAreRefusedInLittleMemory();
    void theSameShapesInSmallAreRead();
    void everyTruncationIsRefused();
    void everyFlippedByteEndsWell();
    void aLargeBodyIsCopiedOnce();
};

void TestHostileArchives::hostileArchivesAreRefusedInLittleMemory_data()
{
    QTest::addColumn<QByteArray>("bytes");
    const auto row = [](const char *name, const QByteArray &bytes) {
        QTest::newRow(name) << bytes;
    };
    const auto objects = [&](const char *name, const QByteArray &xml) {
        row(name, archive(xml));
    };
    row("nothing", {});
    row("the magic alone", "bplist00");
    row("neither binary nor XML", QByteArray(1000, 'x'));
    row("bytes behind a binary archive", realArchive() + 'x');
    row("offsets of no bytes", withTrailer(26, 0x0001ULL << 48));
    row("offsets of 255 bytes", withTrailer(26, 0xFF01ULL << 48));
    row("more objects than the table has", withTrailer(24, 1ULL << 62));
    row("fewer objects than the table has", withTrailer(24, 1));
    row("a top object that is not there", withTrailer(16, 1ULL << 63));
    row("an offset table behind the end", withTrailer(8, ~0ULL));
    row("an offset table at the start", withTrailer(8, 8));
    row("a text longer than the file",
        with("\x5A"
             "appversion",
             "\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01"));
    row("a count that is no integer",
        with("\x5A"
             "appversion",
             "\x5F\x5A"
             "ppversion"));
    row("a byte beyond ASCII in ASCII", with("appversion", "appversi\xC3\xB6"));
    row("a class entry that is a dictionary of another kind", with("\x80\x12", "\x80\x01"));

    objects("a root that is not there", {});
    objects("an instance without a class", "<dict/>");
    objects("a class that is not there", instance({}, 9));
    objects("a class by a huge UID",
            "<dict>"
                + entry("$class",
                        "<dict><key>CF$UID</key><integer>18446744073709551615</integer></dict>")
                + "</dict>");
    objects("a negative UID",
            "<dict>" + entry("$class", "<dict><key>CF$UID</key><integer>-1</integer></dict>")
                + "</dict>");
    objects("a class that is its own instance", instance({}, 1));
    objects("a UID instead of an object", uid(1));
    objects("a dictionary that holds itself", dictionary({3}, {1}, 2) + plainDictionary + key);
    objects("a dictionary that is its own key", dictionary({1}, {3}, 2) + plainDictionary + key);
    objects("two dictionaries that hold each other",
            dictionary({3}, {4}, 2) + plainDictionary + key + dictionary({3, 3}, {1, 1}, 2));
    objects("data that refers to itself",
            instance(entry("NS.data", uid(1)), 2) + classEntry("NSData"));
    objects("a value that is not there", dictionary({3}, {4}, 2) + plainDictionary + key);
    objects("more keys than values", dictionary({3, 3}, {3}, 2) + plainDictionary + key);
    objects("keys without values", instance(entry("NS.keys", array({})), 2) + plainDictionary);
    objects("a numbered key without its value",
            instance(entry("NS.key.0", uid(3)), 2) + plainDictionary + key);
    objects("a gap among numbered keys",
            instance(entry("NS.key.1", uid(3)) + entry("NS.object.1", uid(3)), 2) + plainDictionary
                + key);
    objects("data that is a string",
            instance(entry("NS.data", "<string/>"), 2) + classEntry("NSData"));
    objects("a time that is a string",
            instance(entry("NS.time", "<string>1</string>"), 2) + classEntry("NSDate"));
    objects("a string of bytes that are no UTF-8",
            instance(entry("NS.bytes", "<data>wyg=</data>"), 2) + classEntry("NSString"));

    objects("a key outside a dictionary", "<true/><key>k</key>");
    objects("a dictionary that ends after a key", "<true/><dict><key>k</key></dict>");
    objects("text between values", "<true/>x");
    objects("an unknown element", "<true/><widget/>");
    objects("tags crossed", "<true/><string>a</data>");
    objects("an element within text", "<true/><string>a<true/></string>");
    objects("text that is no UTF-8", "<string>\xC3(</string>");
    objects("text cut off in CDATA", "<true/><string><![CDATA[a]]");
    objects("half a surrogate by number", "<string>&#xD800;</string>");
    objects("an unknown entity", "<string>&lol;</string>");
    objects("an integer of 65 bits", "<integer>18446744073709551616</integer>");
    objects("data that is no Base64", "<data>A?==</data>");
    objects("a day that never was", "<date>2023-02-29T00:00:00Z</date>");
    row("values behind the end of XML", archive("<true/>") + "<true/>");
    row("XML that declares entities",
        archive("<true/>",
                "<!DOCTYPE plist [<!ENTITY a \"xxxxxxxxxx\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;\">]>"));

    row("dictionaries a thousand deep", levels(1000, 1));
    row("dictionaries that double sixty times", levels(60, 2));
    row("dictionaries that grow tenfold seven times", levels(7, 10));
    row("two thousand dictionaries of the same two thousand entries", sharedArrays(2000, 2000));
    row("two thousand strings of the same long text", sharedText(2000, 100000));
    row("two hundred thousand uses of an instance of as many entries", manyUses(200000, 200000));
    row("400000 nested arrays as a class",
        archive(instance({}, 2) + QByteArray("<array>").repeated(400000)
                + QByteArray("</array>").repeated(400000)));
    row("200000 arrays left open", archive(QByteArray("<array>").repeated(200000)));
    QByteArray attributes = "<true";
    for (int i = 0; i < 50000; ++i) {
        attributes += " a" + QByteArray::number(i) + "=''";
    }
    row("fifty thousand attributes, then nothing", archive(attributes));
}

void TestHostileArchives::hostileArchivesAreRefusedInLittleMemory()
{
    QFETCH(QByteArray, bytes);
    const PeakMemory peak;
    const std::optional<NSObject> object = NSKeyedUnarchiver::unarchiveObjectWithData(bytes);
    const qint64 taken = peak.bytes();
    QVERIFY(!object);
    QVERIFY2(taken <= greatestMultiple * bytes.size() + 2 * mebibyte,
             qPrintable(u"%1 for %2 bytes"_s.arg(taken).arg(bytes.size())));
}

void TestHostileArchives::theSameShapesInSmallAreRead()
{
    for (const QByteArray &bytes : {levels(60, 1), levels(8, 2), sharedArrays(20, 20),
                                    sharedText(20, 100), manyUses(20, 20)}) {
        const std::optional<NSObject> object = NSKeyedUnarchiver::unarchiveObjectWithData(bytes);
        QVERIFY(object && object->dictionary() != nullptr);
        QVERIFY(!object->dictionary()->isEmpty());
    }
}

void TestHostileArchives::everyTruncationIsRefused()
{
    for (const QByteArray &whole :
         {realArchive(), archive(dictionary({3}, {3}, 2) + plainDictionary + key).trimmed()}) {
        QVERIFY(NSKeyedUnarchiver::unarchiveObjectWithData(whole));
        for (qsizetype size = 0; size < whole.size(); ++size) {
            QVERIFY2(!NSKeyedUnarchiver::unarchiveObjectWithData(whole.first(size)),
                     qPrintable(QString::number(size)));
        }
    }
}

// A flipped byte within a value is another value, so the result is free; what is read must be
// writable all the same.
void TestHostileArchives::everyFlippedByteEndsWell()
{
    const QByteArray whole = realArchive();
    int refused = 0;
    for (qsizetype at = 0; at < whole.size(); ++at) {
        for (const int mask : {0x01, 0x10, 0x80, 0xFF}) {
            QByteArray damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ mask);
            const PeakMemory peak;
            const std::optional<NSObject> object =
                NSKeyedUnarchiver::unarchiveObjectWithData(damaged);
            QVERIFY(peak.bytes() <= greatestMultiple * whole.size());
            refused += object ? 0 : 1;
            const QByteArray again =
                NSKeyedArchiver::archivedDataWithRootObject(object.value_or(NSObject()));
            QVERIFY(NSKeyedUnarchiver::unarchiveObjectWithData(again));
        }
    }
    QVERIFY(refused > whole.size());
}

void TestHostileArchives::aLargeBodyIsCopiedOnce()
{
    const qint64 slack = 65536;
    const NSObject object = NSDictionary {{u"textData"_s, QByteArray(8 * mebibyte, 'x')}};
    const PeakMemory peakOfWriting;
    const QByteArray written = NSKeyedArchiver::archivedDataWithRootObject(object);
    QVERIFY(peakOfWriting.bytes() < 8 * mebibyte + slack);
    QVERIFY(peakOfWriting.bytes() >= written.size());

    const PeakMemory peakOfReading;
    const std::optional<NSObject> again = NSKeyedUnarchiver::unarchiveObjectWithData(written);
    QVERIFY(peakOfReading.bytes() < 8 * mebibyte + slack);
    QVERIFY(again == object);
}

QTEST_GUILESS_MAIN(TestHostileArchives)

#include "tst_hostilearchives.moc"
