#include "crypto/qvcrypto.h"
#include "document/documentfile.h"
#include "documentfixture.h"
#include "platform/nskeyedarchiver.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr qint32 wrongPadding = 2;

QByteArray oldFile(const QByteArray &textData)
{
    NSDictionary root;
    root.insert("appversion"_L1, NSObject(NSNumber::numberWithUnsignedLong(10603)));
    root.insert("textData"_L1, NSObject(textData));
    return NSKeyedArchiver::archivedDataWithRootObject(NSObject(root));
}

QByteArray encrypted(const QByteArray &body)
{
    return QVCrypto(QVCrypto::documentVector, u"secret"_s).cryptData(body).value_or("failed");
}

} // namespace

class TestLegacyDocuments : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOldDocumentCountsAsMadeAtItsUnlocking_data();
    void anOldDocumentCountsAsMadeAtItsUnlocking();
    void theFirstSaveOfAnUnlockedOldDocumentMovesItOn();
    void theFirstLockOfAnUnlockedOldDocumentMovesItOn();
};

void TestLegacyDocuments::anOldDocumentCountsAsMadeAtItsUnlocking_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<qint32>("result");
    QTest::newRow("with the right password") << u"secret"_s << 0;
    QTest::newRow("and with a wrong one all the same") << u"Secret"_s << wrongPadding;
}

void TestLegacyDocuments::anOldDocumentCountsAsMadeAtItsUnlocking()
{
    QFETCH(QString, password);
    World world;
    MyDocument document(world.surroundings());
    QVERIFY(document.readFromData(oldFile(encrypted("body"))));
    QCOMPARE(document.releaseToDecryptDoc(), 10603);
    document.setPlainPassword(password);
    const NSDate before = NSDate::date();
    QTEST(document.Decript(), "result");
    QVERIFY(document.myCrDate()->timeIntervalSinceReferenceDate
            >= before.timeIntervalSinceReferenceDate);
    QCOMPARE(document.myTextViewData().has_value(), password == u"secret"_s);
}

void TestLegacyDocuments::theFirstSaveOfAnUnlockedOldDocumentMovesItOn()
{
    World world;
    MyDocument document(world.surroundings());
    QVERIFY(document.readFromData(oldFile(encrypted("body"))));
    document.setPlainPassword(u"secret"_s);
    QCOMPARE(document.Decript(), 0);
    QCOMPARE(document.plainPasswordInserted(), u""_s);
    document.decryptDone();
    const auto file = DocumentFile::fromData(document.dataOfType().value_or(QByteArray()));
    QVERIFY(file && file->salt && file->iv && file->rc && file->sha1Rc && file->crDate);
    QCOMPARE(file->appversion, currentFormatVersion);
    QCOMPARE(document.releaseToDecryptDoc(), 20400);
}

void TestLegacyDocuments::theFirstLockOfAnUnlockedOldDocumentMovesItOn()
{
    World world;
    WindowedDocument windowed(world, oldFile(encrypted("body")));
    MyDocument &document = *windowed.document;
    document.submitPasswordToDecrypt(u"secret"_s);
    QVERIFY(!document.isEncrypted());
    document.doLockDocument();
    QCOMPARE(document.releaseToDecryptDoc(), 20400);
    document.submitPasswordToDecrypt(u"Secret"_s);
    QVERIFY(document.isEncrypted());
    document.submitPasswordToDecrypt(u"secret"_s);
    QCOMPARE(document.myTextViewData(), QByteArray("body"));
}

QTEST_GUILESS_MAIN(TestLegacyDocuments)
#include "tst_legacydocuments.moc"
