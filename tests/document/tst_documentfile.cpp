#include "document/documentfile.h"
#include "platform/nskeyedarchiver.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

NSDictionary dictionaryOf(const QByteArray &data)
{
    const std::optional<NSObject> root = NSKeyedUnarchiver::unarchiveObjectWithData(data);
    return root && root->dictionary() ? *root->dictionary() : NSDictionary();
}

NSDictionary wholeDictionary(qint64 version)
{
    const NSObject bytes(QByteArray(16, 'x'));
    return {
        {u"appversion"_s, NSNumber::numberWithLong(version)},
        {u"publicTextData"_s, u"note"_s},
        {u"isEditable"_s, NSNumber::numberWithBool(false)},
        {u"textData"_s, bytes},
        {u"crDate"_s, bytes},
        {u"crMAC"_s, bytes},
        {u"salt"_s, bytes},
        {u"IV"_s, bytes},
        {u"rc"_s, bytes},
        {u"sha1-rc"_s, bytes},
        {u"windowRecHeight"_s, NSNumber::numberWithDouble(400.9)},
        {u"windowRecWidth"_s, NSNumber::numberWithDouble(600)},
        {u"windowRecX"_s, NSNumber::numberWithDouble(100.75)},
        {u"windowRecY"_s, NSNumber::numberWithDouble(-0.5)},
        {u"makeToolbarVisibleAtDecrypt"_s, NSNumber::numberWithBool(false)},
        {u"somebodysOwnKey"_s, NSNumber::numberWithBool(true)},
    };
}

std::optional<DocumentFile> readOf(const NSDictionary &root)
{
    return DocumentFile::fromData(NSKeyedArchiver::archivedDataWithRootObject(NSObject(root)));
}

} // namespace

class TestDocumentFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theVersionDecidesWhichEntriesAreTaken_data();
    void theVersionDecidesWhichEntriesAreTaken();
    void coordinatesLoseTheirFractionOnReading();
    void missingEntriesAreAbsentAndAMissingVersionIsZero();
    void anEntryOfTheWrongClassMakesTheFileUnreadable_data();
    void anEntryOfTheWrongClassMakesTheFileUnreadable();
    void bytesThatAreNoDictionaryAreUnreadable_data();
    void bytesThatAreNoDictionaryAreUnreadable();
    void everythingWrittenIsReadBack();
};

void TestDocumentFile::theVersionDecidesWhichEntriesAreTaken_data()
{
    QTest::addColumn<qint64>("version");
    QTest::addColumn<int>("family");
    QTest::addColumn<bool>("isAes");
    const auto row = [](qint64 version, FormatFamily family, bool isAes) {
        QTest::addRow("%lld", version) << version << static_cast<int>(family) << isAes;
    };
    for (const qint64 version : {1400, 1410, 10402, 10403, 10404}) {
        row(version, FormatFamily::EarlyBlowfish, false);
    }
    for (const qint64 version : {10500, 10600, 10601, 10602, 10603}) {
        row(version, FormatFamily::BlowfishWithWindow, false);
    }
    for (const qint64 version : {10700, 20000, 20001}) {
        row(version, FormatFamily::FirstAes, true);
    }
    for (const qint64 version : {20100, 20101, 20200, 20201, 20300, 20301, 20400}) {
        row(version, FormatFamily::CurrentAes, true);
    }
    for (const qint64 version : {0, 1, 1401, 10405, 10501, 10604, 10699}) {
        row(version, FormatFamily::Unlisted, false);
    }
    for (const qint64 version : {10701, 20002, 20302, 20399}) {
        row(version, FormatFamily::Unlisted, true);
    }
    for (const qint64 version : {qint64(20401), qint64(99999), qint64(1) << 40, qint64(-1)}) {
        row(version, FormatFamily::Newer, true);
    }
}

void TestDocumentFile::theVersionDecidesWhichEntriesAreTaken()
{
    QFETCH(qint64, version);
    QFETCH(int, family);
    QFETCH(bool, isAes);
    const std::optional<DocumentFile> file = readOf(wholeDictionary(version));
    QVERIFY(file);
    const FormatFamily found = familyOf(file->appversion);
    QCOMPARE(static_cast<int>(found), family);
    const bool isNewer = found == FormatFamily::Newer;
    const bool isListed = !isNewer && found != FormatFamily::Unlisted;
    const bool isListedAes = found == FormatFamily::FirstAes || found == FormatFamily::CurrentAes;
    QCOMPARE(file->publicTextData.has_value(), !isNewer);
    QCOMPARE(file->textData.has_value(), !isNewer);
    QCOMPARE(file->isEditable.has_value(), isListed);
    QCOMPARE(file->windowRec.has_value(), isListed && found != FormatFamily::EarlyBlowfish);
    QCOMPARE(file->salt.has_value(), isListedAes);
    QCOMPARE(file->sha1Rc.has_value(), isListedAes);
    QCOMPARE(file->makeToolbarVisibleAtDecrypt.has_value(), found == FormatFamily::CurrentAes);
    if (!isNewer) {
        QCOMPARE(cipherOf(static_cast<qint64>(file->appversion)) == CipherFamily::Aes, isAes);
    }
}

void TestDocumentFile::coordinatesLoseTheirFractionOnReading()
{
    const std::optional<DocumentFile> file = readOf(wholeDictionary(20400));
    QVERIFY(file && file->windowRec);
    QCOMPARE(*file->windowRec, (NSRect {100, 0, 600, 400}));
    NSDictionary none = wholeDictionary(20400);
    for (const auto &key :
         {u"windowRecHeight"_s, u"windowRecWidth"_s, u"windowRecX"_s, u"windowRecY"_s}) {
        none.remove(key);
    }
    QCOMPARE(readOf(none)->windowRec, std::optional(NSRect()));
}

void TestDocumentFile::missingEntriesAreAbsentAndAMissingVersionIsZero()
{
    const std::optional<DocumentFile> file = readOf({{u"textData"_s, QByteArray("12345678")}});
    QVERIFY(file);
    QCOMPARE(file->appversion, quint64(0));
    QCOMPARE(file->textData, std::optional(QByteArray("12345678")));
    QVERIFY(!file->publicTextData && !file->windowRec && !file->isEditable);
}

void TestDocumentFile::anEntryOfTheWrongClassMakesTheFileUnreadable_data()
{
    QTest::addColumn<QString>("key");
    const QStringList keys = wholeDictionary(20400).keys();
    for (const QString &key : keys) {
        if (key != "somebodysOwnKey"_L1) {
            QTest::addRow("%s", qPrintable(key)) << key;
        }
    }
}

void TestDocumentFile::anEntryOfTheWrongClassMakesTheFileUnreadable()
{
    QFETCH(QString, key);
    NSDictionary root = wholeDictionary(20400);
    root.insert(key, NSObject(NSDate {1.0}));
    QVERIFY(!readOf(root));
}

void TestDocumentFile::bytesThatAreNoDictionaryAreUnreadable_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("text") << QByteArray("Dear diary, bplist00");
    QTest::newRow("an archive of a string")
        << NSKeyedArchiver::archivedDataWithRootObject(NSObject(u"text"_s));
    QTest::newRow("an archive of nothing")
        << NSKeyedArchiver::archivedDataWithRootObject(NSObject());
    QTest::newRow("half a document") << DocumentFile().toData().left(60);
}

void TestDocumentFile::bytesThatAreNoDictionaryAreUnreadable()
{
    QFETCH(QByteArray, data);
    QVERIFY(!DocumentFile::fromData(data));
}

void TestDocumentFile::everythingWrittenIsReadBack()
{
    DocumentFile file;
    file.publicTextData = u"Prüfung 密码 😀"_s;
    file.isEditable = true;
    file.textData = QByteArray("body");
    file.salt = QByteArray(8, 's');
    file.windowRec = NSRect {1, 2, 300, 400};
    file.makeToolbarVisibleAtDecrypt = true;
    const QByteArray data = file.toData();
    const std::optional<DocumentFile> read = DocumentFile::fromData(data);
    QVERIFY(read);
    QCOMPARE(read->appversion, currentFormatVersion);
    QCOMPARE(read->publicTextData, file.publicTextData);
    QCOMPARE(read->isEditable, file.isEditable);
    QCOMPARE(read->textData, file.textData);
    QCOMPARE(read->salt, file.salt);
    QCOMPARE(read->windowRec, file.windowRec);
    QCOMPARE(read->makeToolbarVisibleAtDecrypt, file.makeToolbarVisibleAtDecrypt);
    const NSDictionary root = dictionaryOf(data);
    QVERIFY2(!root.contains(u"rc"_s), "an absent field is an absent entry");
    QVERIFY(root.value(u"windowRecX"_s).number()->isDouble());
    QVERIFY(root.value(u"isEditable"_s).number()->isBool());
}

QTEST_GUILESS_MAIN(TestDocumentFile)
#include "tst_documentfile.moc"
