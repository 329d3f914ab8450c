#include "documentfixture.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

/// A file made by another program, with what is to come of it.
struct Vector
{
    QMap<QString, QString> header;
    QByteArray file;
};

// A line end is told as \n or \r, a backslash as two.
QString unescaped(const QByteArray &value)
{
    QByteArray result;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            result += value[i];
            continue;
        }
        const char escaped = value[++i];
        result += escaped == 'n' ? '\n' : escaped == 'r' ? '\r' : escaped;
    }
    return QString::fromUtf8(result);
}

Vector readVector(const QString &path)
{
    QFile source(path);
    Vector vector;
    if (!source.open(QIODevice::ReadOnly)) {
        return vector;
    }
    for (QByteArray line = source.readLine(); line != "\n" && !line.isEmpty();
         line = source.readLine()) {
        const qsizetype colon = line.indexOf(':');
        const qsizetype value = line.at(colon + 1) == ' ' ? colon + 2 : colon + 1;
        vector.header.insert(QString::fromLatin1(line.left(colon)),
                             unescaped(line.mid(value).chopped(1)));
    }
    vector.file = source.readAll();
    return vector;
}

} // namespace

class TestVectors : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFileMadeElsewhereComesToWhatItShould_data();
    void aFileMadeElsewhereComesToWhatItShould();
};

void TestVectors::aFileMadeElsewhereComesToWhatItShould_data()
{
    QTest::addColumn<QString>("path");
    const QDir folder(QStringLiteral(QUORVANE_TEST_DATA "/vectors"));
    const QStringList names = folder.entryList({u"*.vector"_s}, QDir::Files);
    QVERIFY2(names.size() > 30, "the vectors are there");
    for (const QString &name : names) {
        QTest::addRow("%s", qPrintable(name)) << folder.filePath(name);
    }
}

void TestVectors::aFileMadeElsewhereComesToWhatItShould()
{
    QFETCH(QString, path);
    const Vector vector = readVector(path);
    const QString expected = vector.header.value(u"expect"_s);
    QVERIFY(!expected.isEmpty());
    World world;
    MyDocument document(world.surroundings());
    const bool isRead = document.readFromData(vector.file);
    if (expected == "unreadable"_L1 || expected == "refused-newer"_L1) {
        QVERIFY(!isRead);
        QCOMPARE(document.hasToldWhyNotRead(), expected == "refused-newer"_L1);
        return;
    }
    QVERIFY(isRead && document.isEncrypted());
    if (vector.header.contains(u"note"_s)) {
        QCOMPARE(document.myPublicTextData().value_or(u""_s), vector.header.value(u"note"_s));
    }
    document.setPlainPassword(vector.header.value(u"password"_s));
    const bool opens = document.Decript() == 0;
    QCOMPARE(opens, expected == "opened"_L1 || expected == "damaged"_L1);
    if (opens) {
        if (vector.header.contains(u"mac"_s)) {
            QCOMPARE(QString::fromLatin1(document.myCrMAC().value_or(QByteArray()).toHex()),
                     vector.header.value(u"mac"_s));
        }
        const QByteArray sha1 = QCryptographicHash::hash(
            document.myTextViewData().value_or(QByteArray()), QCryptographicHash::Sha1);
        QCOMPARE(QString::fromLatin1(sha1.toHex()), vector.header.value(u"body-sha1"_s));
        // What was opened is saved in the current version and opens again.
        document.decryptDone();
        MyDocument again(world.surroundings());
        QVERIFY(again.readFromData(document.dataOfType().value_or(QByteArray())));
        again.setPlainPassword(document.plainPassword());
        QCOMPARE(again.Decript(), 0);
        QCOMPARE(again.myTextViewData(), document.myTextViewData());
        QCOMPARE(again.releaseToDecryptDoc(), 20400);
    }
}

QTEST_GUILESS_MAIN(TestVectors)
#include "tst_vectors.moc"
