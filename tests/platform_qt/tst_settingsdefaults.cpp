#include "platform_qt/settingsdefaults.h"

#include <QFile>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

class SettingsDefaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueOutlivesTheProgram_data();
    void aValueOutlivesTheProgram();
    void theFileStandsInTheConfigurationFolder();
    void aDamagedFileIsPutAside();
    void aFileThatCannotBeWrittenIsToldAndTheValueCounts();
    void aRemovedValueStaysRemoved();

private:
    QTemporaryDir m_folder;
};

namespace {
constexpr auto key = "key"_L1;
}

void SettingsDefaultsTest::aValueOutlivesTheProgram_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("a boolean") << QVariant(true);
    QTest::newRow("a negative integer") << QVariant(qint64(-9007199254740993));
    QTest::newRow("a fraction") << QVariant(0.1);
    QTest::newRow("text of several kinds") << QVariant(u"a,b;\"c\" = [d] %20 \\ @e \n äöü 𝄞"_s);
    QTest::newRow("text like a typed value") << QVariant(u"@ByteArray(no)"_s);
    QTest::newRow("bytes with a zero") << QVariant(QByteArray("a\0\xff\n,b", 6));
    QTest::newRow("a list of texts") << QVariant(QStringList {u"a, b"_s, u""_s, u"c"_s});
}

void SettingsDefaultsTest::aValueOutlivesTheProgram()
{
    QFETCH(QVariant, value);
    const QString path = m_folder.filePath(u"kept.ini"_s);
    {
        SettingsDefaults defaults(path);
        defaults.setObject(key, value);
        QCOMPARE(defaults.status(), SettingsDefaults::Status::Ok);
    }
    const SettingsDefaults defaults(path);
    const QVariant back = defaults.objectForKey(key);
    QVariant converted = back;
    QVERIFY(converted.convert(value.metaType()));
    QCOMPARE(converted, value);
    QVERIFY(value.typeId() != QMetaType::Bool || defaults.boolForKey(key));
    QVERIFY(value.typeId() != QMetaType::QByteArray || back.typeId() == QMetaType::QByteArray);
}

void SettingsDefaultsTest::theFileStandsInTheConfigurationFolder()
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    {
        SettingsDefaults defaults;
        QCOMPARE(defaults.path(), folder + u"/quorvane/quorvane.ini"_s);
        defaults.setObject(key, 1);
    }
    QVERIFY(QFile::exists(folder + u"/quorvane/quorvane.ini"_s));
}

void SettingsDefaultsTest::aDamagedFileIsPutAside()
{
    const QString path = m_folder.filePath(u"damaged.ini"_s);
    const QByteArray content = "[General]\nkey=5\nthis is no line of settings\nother=6\n";
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();

    SettingsDefaults defaults(path);
    QCOMPARE(defaults.status(), SettingsDefaults::Status::Damaged);
    QCOMPARE(defaults.integerForKey(key), 5);
    defaults.setObject(key, 7);
    QFile aside(path + u".damaged"_s);
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);
    QCOMPARE(SettingsDefaults(path).integerForKey(key), 7);
}

void SettingsDefaultsTest::aFileThatCannotBeWrittenIsToldAndTheValueCounts()
{
    QFile notAFolder(m_folder.filePath(u"file"_s));
    QVERIFY(notAFolder.open(QIODevice::WriteOnly));
    notAFolder.close();
    SettingsDefaults defaults(notAFolder.fileName() + u"/quorvane.ini"_s);
    defaults.setObject(key, 7);
    QCOMPARE(defaults.status(), SettingsDefaults::Status::Unwritable);
    QCOMPARE(defaults.integerForKey(key), 7);
}

void SettingsDefaultsTest::aRemovedValueStaysRemoved()
{
    const QString path = m_folder.filePath(u"removed.ini"_s);
    {
        SettingsDefaults defaults(path);
        defaults.setObject(key, 7);
        defaults.setObject(key, QVariant());
    }
    QVERIFY(!SettingsDefaults(path).objectForKey(key).isValid());
}

QTEST_GUILESS_MAIN(SettingsDefaultsTest)
#include "tst_settingsdefaults.moc"
