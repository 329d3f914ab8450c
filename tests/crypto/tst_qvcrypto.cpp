#include "crypto/blowfish.h"
#include "crypto/qvcrypto.h"

#include <QTest>

#include <limits>

using namespace quorvane;
using namespace Qt::StringLiterals;

// The expected ciphertexts were made once by another program, with the key that stands in the
// password's first 16 bytes of Mac Roman and zeros behind them:
//   openssl enc -bf-cbc -provider legacy -provider default -K <key> -iv 3ea15c07d2964bf8

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

QVCrypto engineOf(const QString &password)
{
    return QVCrypto(QVCrypto::documentVector, password);
}

} // namespace

class TestQVCrypto : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void ciphertextsAreThoseOfAnotherProgram_data();
    void ciphertextsAreThoseOfAnotherProgram();
    void whatCannotBeDecryptedHasItsCode_data();
    void whatCannotBeDecryptedHasItsCode();
    void withoutPasswordOrVectorNothingIsEncryptedButDecrypted();
    void aPasswordBeyondMacRomanNeitherEncryptsNorDecrypts();
    void ofNoBytesComesNoneWithAnyPassword();
    void numbersComeBackWithTheirSign_data();
    void numbersComeBackWithTheirSign();
    void stringsGoInAsMacRomanAndComeOutInTheSystemsEncoding();
};

void TestQVCrypto::ciphertextsAreThoseOfAnotherProgram_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("plain");
    QTest::addColumn<QByteArray>("expected");
    const QByteArray diary("Dear diary");
    const auto row = [](const char *name, const QString &password, const QByteArray &plain,
                        const char *digits) {
        QTest::newRow(name) << password << plain << hex(digits);
    };
    row("a short password is filled up with zeros", u"secret"_s, diary,
        "a11ec34529a59789c92fc02548a789a6");
    row("and is the same with the zeros typed", u"secret\0\0\0\0\0\0\0\0\0\0"_s, diary,
        "a11ec34529a59789c92fc02548a789a6");
    row("sixteen bytes are the key", u"sixteen letters!"_s, diary,
        "39ce3fb832c1fc62bedf8a39aceaa6d8");
    row("twenty-five are cut to sixteen", u"sixteen letters! and more"_s, diary,
        "39ce3fb832c1fc62bedf8a39aceaa6d8");
    row("accented letters are one byte each", u"clé à molette"_s, diary,
        "015f872bac199fed424983d12b0680e5");
    row("the euro sign is one byte", u"€urope"_s, "x", "659aa7052dd2a285");
    row("a whole block gains a block of padding", u"secret"_s, "12345678",
        "d1aca0635529489b75d9723aee761dab");
}

void TestQVCrypto::ciphertextsAreThoseOfAnotherProgram()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, plain);
    QFETCH(QByteArray, expected);
    const QVCrypto engine = engineOf(password);
    QCOMPARE(engine.cryptData(plain), expected);
    const Outcome outcome = engine.decryptToData(expected);
    QCOMPARE(outcome.error, 0);
    QCOMPARE(outcome.data, plain);
}

void TestQVCrypto::whatCannotBeDecryptedHasItsCode_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("data");
    const QByteArray whole = hex("a11ec34529a59789c92fc02548a789a6");
    QTest::newRow("a wrong password breaks the padding") << u"Secret"_s << whole;
    QTest::newRow("no whole block, with the right password") << u"secret"_s << whole.chopped(3);
    QTest::newRow("less than a block") << u"secret"_s << whole.left(5);
    QTest::newRow("the last block is missing") << u"secret"_s << whole.left(8);
}

void TestQVCrypto::whatCannotBeDecryptedHasItsCode()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, data);
    const QVCrypto engine = engineOf(password);
    const Outcome outcome = engine.decryptToData(data);
    QCOMPARE(outcome.error, 2);
    QVERIFY(!outcome.data);
    QCOMPARE(engine.decryptToString(data).error, 2);
    QCOMPARE(engine.decryptToLong(data).error, 2);
}

void TestQVCrypto::withoutPasswordOrVectorNothingIsEncryptedButDecrypted()
{
    QVCrypto engine;
    QVERIFY(!engine.isReady());
    engine.setPassword(u"secret"_s);
    QVERIFY(!engine.isReady() && !engine.cryptData("text") && !engine.cryptLong(1));
    const uchar zeros[8] = {};
    const std::optional<QByteArray> ofZeros = QVCrypto(zeros, u"secret"_s).cryptData("text");
    QCOMPARE(engine.decryptToData(ofZeros).data, QByteArray("text"));

    engine.setInitVector(QVCrypto::documentVector);
    QVERIFY(engine.isReady() && engine.cryptData("text"));
    engine.setPassword(u""_s);
    QVERIFY(!engine.isReady() && !engine.cryptString(u"text"_s));
    engine.setInitVector(nullptr);
    engine.setPassword(u"secret"_s);
    QVERIFY(!engine.isReady());
}

void TestQVCrypto::aPasswordBeyondMacRomanNeitherEncryptsNorDecrypts()
{
    for (const QString &password : {u"пароль"_s, u"secret🎻"_s, u"e\u0301te\u0301"_s}) {
        const QVCrypto engine = engineOf(password);
        QVERIFY(!engine.cryptData("text"));
        QVERIFY(engine.decryptToData(hex("a11ec34529a59789")).error != 0);
    }
    QVERIFY(!engineOf(u"secret"_s).cryptString(u"пароль"_s));
}

void TestQVCrypto::ofNoBytesComesNoneWithAnyPassword()
{
    for (const QString &password : {u"secret"_s, u""_s, u"пароль"_s}) {
        const Outcome outcome = engineOf(password).decryptToData(QByteArray());
        QCOMPARE(outcome.error, 0);
        QCOMPARE(outcome.data, QByteArray());
        QCOMPARE(QVCrypto().decryptToData(std::nullopt).data, QByteArray());
    }
    QVERIFY(!engineOf(u"secret"_s).cryptData(QByteArray()));
}

void TestQVCrypto::numbersComeBackWithTheirSign_data()
{
    QTest::addColumn<quint64>("value");
    QTest::addColumn<qint64>("throughInt32");
    QTest::newRow("small") << quint64(20400) << qint64(20400);
    QTest::newRow("the largest positive 32-bit one") << quint64(2147483647) << qint64(2147483647);
    QTest::newRow("above it, 32 bits are negative") << quint64(2147483648) << -qint64(2147483648);
    QTest::newRow("all bits") << std::numeric_limits<quint64>::max() << qint64(-1);
    QTest::newRow("the high half is cut off") << (quint64(7) << 32) + 5 << qint64(5);
}

void TestQVCrypto::numbersComeBackWithTheirSign()
{
    QFETCH(quint64, value);
    const QVCrypto engine = engineOf(u"secret"_s);
    QCOMPARE(engine.decryptToLong(engine.cryptLong(value)).data, qint64(value));
    QTEST(engine.decryptToLong(engine.cryptLongToInt32(value)).data.value_or(0), "throughInt32");
    QCOMPARE(engine.decryptToLong(engine.cryptData("\x05")).data, qint64(5));
}

void TestQVCrypto::stringsGoInAsMacRomanAndComeOutInTheSystemsEncoding()
{
    const QVCrypto engine = engineOf(u"secret"_s);
    const std::optional<QByteArray> crypted = engine.cryptString(u"été"_s);
    QCOMPARE(engine.decryptToData(crypted).data, QByteArray("\x8et\x8e"));
    QCOMPARE(engine.decryptToString(engine.cryptData("été")).data, u"été"_s);
}

QTEST_GUILESS_MAIN(TestQVCrypto)
#include "tst_qvcrypto.moc"
