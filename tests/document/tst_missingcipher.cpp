#include "crypto/blowfish.h"
#include "crypto/qvcommoncrypto.h"
#include "documentfixture.h"
#include "platform/nskeyedarchiver.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

/// A machine whose OpenSSL has no legacy provider.
class TestMissingCipher : public QObject
{
    Q_OBJECT

private Q_SLOTS:

    void initTestCase() { qputenv("OPENSSL_MODULES", "/nowhere"); } // before the first look

    void anOldDocumentTellsThatItsCipherIsMissing();
    void theCurrentCipherWorksAllTheSame();
};

void TestMissingCipher::anOldDocumentTellsThatItsCipherIsMissing()
{
    QVERIFY(!isBlowfishAvailable());
    NSDictionary root;
    root.insert("textData"_L1, NSObject(QByteArray(16, 'x')));
    World world;
    MyDocument document(world.surroundings());
    QVERIFY(document.readFromData(NSKeyedArchiver::archivedDataWithRootObject(NSObject(root))));
    document.setPlainPassword(u"secret"_s);
    QCOMPARE(document.Decript(), 1);
    QCOMPARE(world.alerts.shown.size(), 1);
    QCOMPARE(world.alerts.shown.first().messageText,
             u"The cipher of this document is missing on this computer"_s);
}

void TestMissingCipher::theCurrentCipherWorksAllTheSame()
{
    QVCommonCrypto engine(u"secret"_s);
    QCOMPARE(engine.decrypt(engine.encrypt(QByteArray("text")).data).data, QByteArray("text"));
}

QTEST_GUILESS_MAIN(TestMissingCipher)
#include "tst_missingcipher.moc"
