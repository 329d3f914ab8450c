#include "crypto/qvcommoncrypto.h"
#include "crypto/randominrange.h"

#include <QSet>
#include <QTest>

#include <limits>

using namespace quorvane;
using namespace Qt::StringLiterals;

// The expected keys and ciphertexts were made once by other programs: the keys by Python's
// hashlib.pbkdf2_hmac("sha1", first N bytes of the UTF-8 form, salt, 10000, 32), the ciphertexts by
// `openssl enc -aes-256-cbc -K <that key> -iv 000102...0f` (`-aes-256-ecb -nopad` for ECB).

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

const QByteArray fileSalt = hex("0102030405060708");
const QByteArray fileVector = hex("000102030405060708090a0b0c0d0e0f");
const QString filePassword = u"correct horse"_s;

QVCommonCrypto engineOfTheFile()
{
    QVCommonCrypto engine;
    engine.setPasswordToDecrypt(filePassword, fileVector, fileSalt);
    return engine;
}

QByteArray pattern(qsizetype length)
{
    QByteArray data(length, '\0');
    for (qsizetype i = 0; i < length; ++i) {
        data[i] = static_cast<char>((i * 7) % 256);
    }
    return data;
}

} // namespace

class TestQVCommonCrypto : public QObject
{
    Q_OBJECT

private slots:
    void keysAreThoseOfOtherPrograms_data();
    void keysAreThoseOfOtherPrograms();
    void passwordsDifferingBehindTheHashedBytesShareAKey();
    void ciphertextsAreThoseOfOtherPrograms_data();
    void ciphertextsAreThoseOfOtherPrograms();
    void longBodiesAreCipheredInPiecesWithoutASeam_data();
    void longBodiesAreCipheredInPiecesWithoutASeam();
    void paddingAddsOneToSixteenBytes();
    void encryptingLeavesOnlyTwoInThePadding_data();
    void encryptingLeavesOnlyTwoInThePadding();
    void decryptingTakesThePaddingAsGiven_data();
    void decryptingTakesThePaddingAsGiven();
    void theKeyArgumentAndTheStoredKeyPlayNoPart();
    void aChangedPasswordCountsAtTheNextOperation();
    void whatCannotBeCipheredGivesAStatusAndNoData_data();
    void whatCannotBeCipheredGivesAStatusAndNoData();
    void ofALongVectorTheFirstSixteenBytesCount();
    void anAbsentPasswordIsTheEmptyOne();
    void renewalsKeepThePasswordAndParWithOldCiphertext();
    void digestsAreSHA1_data();
    void digestsAreSHA1();
    void randomDataHasItsLengthAndDiffers();
    void theRandomStringHas256CodesAndNeverZero();
    void randomInRangeReachesBothEndsAndNoFurther();
    void randomInRangeBearsEveryRange();
};

void TestQVCommonCrypto::keysAreThoseOfOtherPrograms_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("salt");
    QTest::addColumn<QByteArray>("key");

    QTest::newRow("an ASCII password is hashed whole")
        << filePassword << fileSalt
        << hex("675b6d9820679772fbf2908c702819466bda0c6d7e1955e02edd514130a1cbd4");
    QTest::newRow("of ten bytes of eight characters eight are hashed")
        << u"pass\u00e9\u00e9wd"_s << fileSalt
        << hex("f189e8cac7ed3539c8fa42c3b1a2ced51dca92b8337f06294eaf78993b0be5a2");
    QTest::newRow("a surrogate pair counts as two of its four bytes")
        << u"ab\U0001F600cd"_s << fileSalt
        << hex("bdac504d0d5ea0a7c6d263b5bc3a0d4b76f51a0c35acd6f53c1e846e3b6ba155");
    QTest::newRow("six characters of three bytes are hashed to a third")
        << u"\u5bc6\u7801\u5bc6\u7801\u5bc6\u7801"_s << fileSalt
        << hex("97e861555de988ee8ebbed7004be6db9e66884d505de6a307e761dc42d86a984");
    QTest::newRow("an empty password")
        << QString() << fileSalt
        << hex("f5ce70372001a480dc302ca5b89d57bc90007224775f9dfc546eff152e3b2b49");
    QTest::newRow("a short salt")
        << u"secret"_s << hex("010203")
        << hex("e9cd2fe2b20c0749aeaafbeeebcfb732c6012a691324a69c4bfac79ada1ada9d");
    QTest::newRow("a long salt")
        << u"password"_s << QByteArray("saltSALTsaltSALTsalt")
        << hex("1117ca116c7abac5532c05f6de59a2f5865c8c3fb0c781acb5798d406d27b989");
    QTest::newRow("an empty salt")
        << u"secret"_s << QByteArray()
        << hex("54492a9fa0ec3b59ecef3eb1eaed320be142cf1b807d0f712e1acd0671c538f5");
}

void TestQVCommonCrypto::keysAreThoseOfOtherPrograms()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, salt);
    QTEST(QVCommonCrypto::AESKeyForPassword(password, salt), "key");
}

void TestQVCommonCrypto::passwordsDifferingBehindTheHashedBytesShareAKey()
{
    const auto key = [](const QString &password) {
        return QVCommonCrypto::AESKeyForPassword(password, fileSalt);
    };
    QCOMPARE(key(u"\u00e9\u00e9\u00e9abc"_s), key(u"\u00e9\u00e9\u00e9xyz"_s));
    QVERIFY(key(u"\u00e9\u00e9\u00e9abc"_s) != key(u"\u00e9\u00e9\u00e8abc"_s));
    // Halves of pairs have no UTF-8 form: a question mark stands for each.
    QCOMPARE(key(QString(3, QChar(0xd83d))), key(u"???"_s));
}

void TestQVCommonCrypto::ciphertextsAreThoseOfOtherPrograms_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("plain");
    QTest::addColumn<QByteArray>("cipher");

    QTest::newRow("empty input gives one block")
        << filePassword << QByteArray("") << hex("98b8a6fa2020a14625c8f4e03bcc7e84");
    QTest::newRow("15 bytes give one block")
        << filePassword << QByteArray("The quick brown") << hex("388933a36644593a395172959373e402");
    QTest::newRow("a whole block gains a block of padding")
        << filePassword << QByteArray("The quick brown ")
        << hex("6089f0db4056f0ca601f7eb4528c8b91a09ebc989c7313d0f248d0cdb2e9a496");
    QTest::newRow("several blocks")
        << filePassword << QByteArray("The quick brown fox jumps over the lazy dog")
        << hex("6089f0db4056f0ca601f7eb4528c8b91a982f3e110673fa56929357acfa068e0"
               "8b855544493027bf30f9ba6229370cf1");
    QTest::newRow("bytes of zero")
        << filePassword << QByteArray(32, '\0')
        << hex("c499bfbfe0570f32b906dabdc3a983223288330f0c62d31780f401416607d882"
               "2298650dfe65117e92f5bc286b5bf77e");
    QTest::newRow("a password with characters beyond ASCII")
        << u"pass\u00e9\u00e9wd"_s << QByteArray("The quick brown fox")
        << hex("89811638e0c7ec5563e1ec0c7343a207774cf59157f9ef81e779839dcb2db0d0");
}

void TestQVCommonCrypto::ciphertextsAreThoseOfOtherPrograms()
{
    QFETCH(QString, password);
    QFETCH(QByteArray, plain);
    QFETCH(QByteArray, cipher);
    QVCommonCrypto engine;
    engine.setPasswordToDecrypt(password, fileVector, fileSalt);

    const Outcome encrypted = engine.encrypt(plain);
    QCOMPARE(encrypted.error, 0);
    QCOMPARE(encrypted.data->toHex(), cipher.toHex());
    const Outcome decrypted = engine.decrypt(cipher);
    QCOMPARE(decrypted.error, 0);
    QVERIFY(decrypted.data.has_value());
    QCOMPARE(*decrypted.data, plain);
}

void TestQVCommonCrypto::longBodiesAreCipheredInPiecesWithoutASeam_data()
{
    QTest::addColumn<qsizetype>("length");
    QTest::addColumn<QByteArray>("digest");

    QTest::newRow("three whole pieces")
        << qsizetype(3145728) << hex("c2fe6cca1463da3422a42c45b8444ec5f4d42d2f");
    QTest::newRow("five bytes more")
        << qsizetype(3145733) << hex("35f54a1bfcb18d05c9a3c45c10f6895acfc73991");
    QTest::newRow("a row of blocks more")
        << qsizetype(3145984) << hex("f67e5597e5916b257ba318bfdacdfb0254f7284d");
}

void TestQVCommonCrypto::longBodiesAreCipheredInPiecesWithoutASeam()
{
    QFETCH(qsizetype, length);
    QVCommonCrypto engine = engineOfTheFile();
    const QByteArray plain = pattern(length);
    const Outcome encrypted = engine.encrypt(plain);
    QTEST(QVCommonCrypto::dataSHA1(encrypted.data).value_or(QByteArray()), "digest");
    QVERIFY(engine.decrypt(encrypted.data).data == plain);
}

void TestQVCommonCrypto::paddingAddsOneToSixteenBytes()
{
    QVCommonCrypto engine = engineOfTheFile();
    for (qsizetype length = 0; length <= 33; ++length) {
        const Outcome encrypted = engine.encrypt(pattern(length));
        QCOMPARE(encrypted.data.value_or(QByteArray()).size(), (length / 16 + 1) * 16);
        QCOMPARE(engine.decrypt(encrypted.data).data.value_or("none"), pattern(length));
    }
}

void TestQVCommonCrypto::encryptingLeavesOnlyTwoInThePadding_data()
{
    QTest::addColumn<qint32>("padding");
    QTest::addColumn<qint32>("afterwards");
    QTest::addColumn<QByteArray>("cipher");

    const QByteArray cbc = hex("6089f0db4056f0ca601f7eb4528c8b91");
    QTest::newRow("none becomes PKCS7") << 0 << 1 << cbc;
    QTest::newRow("PKCS7 stays") << 1 << 1 << cbc;
    QTest::newRow("both bits become PKCS7") << 3 << 1 << cbc;
    QTest::newRow("a negative value becomes PKCS7") << -2 << 1 << cbc;
    QTest::newRow("ECB stays") << 2 << 2 << hex("1bb9ad481b36c3d566a2dcd912d5188d");
}

void TestQVCommonCrypto::encryptingLeavesOnlyTwoInThePadding()
{
    QFETCH(qint32, padding);
    QFETCH(QByteArray, cipher);
    QVCommonCrypto engine = engineOfTheFile();
    const QByteArray plain("The quick brown The quick brown ");
    const std::optional<QByteArray> encrypted = engine.encrypt(plain, {}, padding);
    QTEST(padding, "afterwards");
    QVERIFY(encrypted.has_value());
    QCOMPARE(encrypted->left(16).toHex(), cipher.toHex());
    QCOMPARE(encrypted->size(), padding == 2 ? 32 : 48); // ECB takes no padding
    QCOMPARE(engine.decrypt(encrypted, {}, padding).value_or("none"), plain);
}

void TestQVCommonCrypto::decryptingTakesThePaddingAsGiven_data()
{
    QTest::addColumn<qint32>("padding");
    QTest::addColumn<bool>("opens");
    QTest::addColumn<qsizetype>("length");

    QTest::newRow("none leaves the padding in place") << 0 << true << qsizetype(32);
    QTest::newRow("PKCS7 takes it off") << 1 << true << qsizetype(19);
    QTest::newRow("ECB reads noise of full length") << 2 << true << qsizetype(32);
    QTest::newRow("ECB with PKCS7 finds no padding in the noise") << 3 << false << qsizetype(0);
}

void TestQVCommonCrypto::decryptingTakesThePaddingAsGiven()
{
    QFETCH(qint32, padding);
    QFETCH(bool, opens);
    QFETCH(qsizetype, length);
    const qint32 given = padding;
    QVCommonCrypto engine = engineOfTheFile();
    const Outcome encrypted = engine.encrypt(QByteArray("The quick brown fox"));
    const auto decrypted = engine.decrypt(encrypted.data, {}, padding);
    QCOMPARE(decrypted.has_value(), opens);
    QCOMPARE(decrypted.value_or(QByteArray()).size(), length);
    QCOMPARE(padding, given);
}

void TestQVCommonCrypto::theKeyArgumentAndTheStoredKeyPlayNoPart()
{
    QVCommonCrypto engine = engineOfTheFile();
    const QByteArray expected = engine.encrypt(QByteArray("text")).data.value();
    engine.setAESKey(QByteArray(32, 'k'));
    qint32 padding = 1;
    QCOMPARE(engine.encrypt(QByteArray("text"), QByteArray(32, 'x'), padding).value(), expected);
    QCOMPARE(engine.AESKey().value(), QVCommonCrypto::AESKeyForPassword(filePassword, fileSalt));
}

void TestQVCommonCrypto::aChangedPasswordCountsAtTheNextOperation()
{
    QVCommonCrypto engine = engineOfTheFile();
    const QByteArray first = engine.encrypt(QByteArray("text")).data.value();
    engine.setPassword(u"another"_s);
    const Outcome wrong = engine.decrypt(first);
    QCOMPARE(wrong.error, QVCommonCrypto::statusDecode);
    QVERIFY(!wrong.data);
    engine.setPassword(filePassword);
    QCOMPARE(engine.decrypt(first).data.value(), QByteArray("text"));
}

void TestQVCommonCrypto::whatCannotBeCipheredGivesAStatusAndNoData_data()
{
    using Bytes = std::optional<QByteArray>;
    QTest::addColumn<Bytes>("input");
    QTest::addColumn<Bytes>("vector");
    QTest::addColumn<Bytes>("salt");
    QTest::addColumn<quint32>("context");
    QTest::addColumn<qint32>("padding");
    QTest::addColumn<qint32>("error");

    const Bytes block = QByteArray(16, 'b');
    const Bytes iv = fileVector;
    const Bytes salt = fileSalt;
    const qint32 parameter = QVCommonCrypto::statusParameter;
    const qint32 alignment = QVCommonCrypto::statusAlignment;
    const qint32 decode = QVCommonCrypto::statusDecode;
    QTest::newRow("no vector") << block << Bytes() << salt << 0U << 1 << parameter;
    QTest::newRow("no vector to decrypt") << block << Bytes() << salt << 1U << 1 << parameter;
    QTest::newRow("vector too short")
        << block << Bytes(QByteArray(15, 'i')) << salt << 0U << 1 << parameter;
    QTest::newRow("no salt") << block << iv << Bytes() << 0U << 1 << parameter;
    QTest::newRow("no such operation") << block << iv << salt << 2U << 1 << parameter;
    QTest::newRow("a cut block") << Bytes(QByteArray(17, 'b')) << iv << salt << 1U << 1
                                 << alignment;
    QTest::newRow("a cut block, unpadded")
        << Bytes(QByteArray(15, 'b')) << iv << salt << 1U << 0 << alignment;
    QTest::newRow("a cut block into ECB")
        << Bytes(QByteArray(15, 'b')) << iv << salt << 0U << 2 << alignment;
    QTest::newRow("no padding in it") << block << iv << salt << 1U << 1 << decode;
    QTest::newRow("nothing to decrypt") << Bytes(QByteArray("")) << iv << salt << 1U << 1 << decode;
    QTest::newRow("absent data to decrypt") << Bytes() << iv << salt << 1U << 1 << decode;
}

void TestQVCommonCrypto::whatCannotBeCipheredGivesAStatusAndNoData()
{
    using Bytes = std::optional<QByteArray>;
    QFETCH(Bytes, input);
    QFETCH(Bytes, vector);
    QFETCH(Bytes, salt);
    QFETCH(quint32, context);
    QFETCH(qint32, padding);
    QVCommonCrypto engine;
    engine.setPasswordToDecrypt(filePassword, vector, salt);
    const Outcome outcome = engine.doCipher(input, {}, context, padding);
    QTEST(outcome.error, "error");
    QVERIFY(!outcome.data);
}

void TestQVCommonCrypto::ofALongVectorTheFirstSixteenBytesCount()
{
    QVCommonCrypto engine = engineOfTheFile();
    const Outcome expected = engine.encrypt(QByteArray("text"));
    engine.setIV(fileVector + "and more");
    QCOMPARE(engine.encrypt(QByteArray("text")).data.value(), expected.data.value());
}

void TestQVCommonCrypto::anAbsentPasswordIsTheEmptyOne()
{
    QVCommonCrypto engine;
    QVERIFY(!engine.password());
    const Outcome absent = engine.encrypt(std::nullopt); // absent data: zero bytes
    QCOMPARE(absent.data.value().size(), 16);
    engine.setPassword(QString());
    QCOMPARE(engine.decrypt(absent.data).data.value(), QByteArray(""));
}

void TestQVCommonCrypto::renewalsKeepThePasswordAndParWithOldCiphertext()
{
    QVCommonCrypto engine(filePassword);
    QCOMPARE(engine.IV().value().size(), 16);
    QCOMPARE(engine.salt().value().size(), 8);
    QCOMPARE(engine.AESKey().value(),
             QVCommonCrypto::AESKeyForPassword(filePassword, engine.salt()));
    const QByteArray text = pattern(100);
    const Outcome old = engine.encrypt(text);
    QVCommonCrypto second;
    second.setPasswordToDecrypt(filePassword, engine.IV(), engine.salt());
    QCOMPARE(second.decrypt(old.data).data.value(), text);

    const auto vector = engine.IV();
    const auto salt = engine.salt();
    engine.recalcIV_Salt_AESKey();
    QCOMPARE(engine.password(), filePassword);
    QVERIFY(engine.IV() != vector);
    QVERIFY(engine.salt() != salt);
    QVERIFY(engine.decrypt(old.data).data != text);

    const auto renewed = engine.salt();
    engine.setPasswordToEncrypt(u"another"_s);
    QVERIFY(engine.salt() != renewed);
    QCOMPARE(engine.AESKey().value(),
             QVCommonCrypto::AESKeyForPassword(u"another"_s, engine.salt()));
}

void TestQVCommonCrypto::digestsAreSHA1_data()
{
    QTest::addColumn<std::optional<QByteArray>>("data");
    QTest::addColumn<QByteArray>("digest");

    const QByteArray ofNothing = hex("da39a3ee5e6b4b0d3255bfef95601890afd80709");
    QTest::newRow("absent") << std::optional<QByteArray>() << ofNothing;
    QTest::newRow("empty") << std::optional<QByteArray>("") << ofNothing;
    QTest::newRow("a sentence") << std::optional<QByteArray>(
        "The quick brown fox jumps over the lazy dog")
                                << hex("2fd4e1c67a2d28fced849ee1bb76e7391b93eb12");
}

void TestQVCommonCrypto::digestsAreSHA1()
{
    QFETCH(std::optional<QByteArray>, data);
    QTEST(QVCommonCrypto::dataSHA1(data).value(), "digest");
}

void TestQVCommonCrypto::randomDataHasItsLengthAndDiffers()
{
    QVERIFY(!QVCommonCrypto::randomDataOfLength(-1));
    QCOMPARE(QVCommonCrypto::randomDataOfLength(0).value().size(), 0);
    QCOMPARE(QVCommonCrypto::randomDataOfLength(70000).value().size(), 70000);
    QVERIFY(QVCommonCrypto::randomDataOfLength(16) != QVCommonCrypto::randomDataOfLength(16));
}

void TestQVCommonCrypto::theRandomStringHas256CodesAndNeverZero()
{
    QSet<char16_t> seen;
    for (int round = 0; round < 64; ++round) {
        const QString text = QVCommonCrypto::generateRandom256AsciiString();
        QCOMPARE(text.size(), 256);
        for (const QChar c : text) {
            seen.insert(c.unicode());
        }
    }
    // 16384 draws out of 255: that one code is missed has a chance of about e^-59.
    QCOMPARE(seen.size(), 255);
    QVERIFY(!seen.contains(u'\0'));
    QVERIFY(seen.contains(u'\x01'));
    QVERIFY(seen.contains(u'\xff'));
}

void TestQVCommonCrypto::randomInRangeReachesBothEndsAndNoFurther()
{
    QSet<qint64> seen;
    for (int i = 0; i < 1000; ++i) {
        seen.insert(randomInRange(-2, 2));
    }
    QCOMPARE(seen, (QSet<qint64> {-2, -1, 0, 1, 2}));
}

void TestQVCommonCrypto::randomInRangeBearsEveryRange()
{
    constexpr qint64 least = std::numeric_limits<qint64>::min();
    constexpr qint64 most = std::numeric_limits<qint64>::max();
    QCOMPARE(randomInRange(7, 7), 7);
    QCOMPARE(randomInRange(7, 6), 7);
    QCOMPARE(randomInRange(most, most), most);
    QVERIFY(randomInRange(least, most) >= least);
    QVERIFY(randomInRange(0, most) >= 0);
}

QTEST_GUILESS_MAIN(TestQVCommonCrypto)
#include "tst_qvcommoncrypto.moc"
