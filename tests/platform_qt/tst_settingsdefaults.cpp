#include "platform_qt/settingsdefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

class SettingsDefaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueOutlivesTheProgram_data();
    void aValueOutlivesTheProgram();
    void theFileStandsInTheConfigurationFolder();
    void aDamagedFileIsPutAside_data();
    void aDamagedFileIsPutAside();
    void aSecondDamageKeepsTheFirst();
    void aLinkToADamagedFileStays();
    void whatCannotBeKeptIsToldOnceAndCounts_data();
    void whatCannotBeKeptIsToldOnceAndCounts();
    void aRemovedValueStaysRemoved();

private:
    QTemporaryDir m_folder;
};

namespace {

constexpr auto key = "key"_L1;

bool write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

} // namespace

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
        QCOMPARE(defaults.state(), SettingsDefaults::State::Whole);
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

void SettingsDefaultsTest::aDamagedFileIsPutAside_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("value");
    QTest::newRow("a line that is none")
        << QByteArray("[General]\nkey=5\nthis is no line of settings\nother=6\n") << 5;
    QTest::newRow("an end in the middle of a line") << QByteArray("[General]\nkey=5\nothe") << 5;
    QTest::newRow("zeros, as a crash of the machine leaves them") << QByteArray(4096, '\0') << 0;
    QTest::newRow("another kind of file") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0", 11) << 0;
}

void SettingsDefaultsTest::aDamagedFileIsPutAside()
{
    QFETCH(const QByteArray, content);
    QFETCH(const int, value);
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"damaged.ini"_s);
    QVERIFY(write(path, content));
    const SettingsDefaults defaults(path);
    QCOMPARE(defaults.state(), SettingsDefaults::State::Damaged);
    QCOMPARE(defaults.integerForKey(key), value);
    QVERIFY(defaults.setAside() && defaults.setAside()->startsWith(path + u".damaged-"_s));
    QFile aside(*defaults.setAside());
    QVERIFY(aside.open(QIODevice::ReadOnly));
    QCOMPARE(aside.readAll(), content);
    // The next start finds all well, and what was readable.
    const SettingsDefaults next(path);
    QCOMPARE(next.state(), SettingsDefaults::State::Whole);
    QCOMPARE(next.integerForKey(key), value);
}

void SettingsDefaultsTest::aSecondDamageKeepsTheFirst()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"damaged.ini"_s);
    QStringList kept;
    for (const QByteArray &content : {QByteArray("one"), QByteArray("two")}) {
        QVERIFY(write(path, content));
        kept << SettingsDefaults(path).setAside().value_or(QString());
    }
    kept.removeDuplicates();
    QCOMPARE(kept.size(), 2);
}

void SettingsDefaultsTest::aLinkToADamagedFileStays()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"link.ini"_s);
    const QString file = folder.filePath(u"file"_s);
    QVERIFY(write(file, "key=5\ndamaged") && QFile::link(file, path));
    const SettingsDefaults defaults(path);
    QCOMPARE(defaults.state(), SettingsDefaults::State::Damaged);
    QVERIFY(QFileInfo(path).isSymLink());
    QCOMPARE(SettingsDefaults(file).integerForKey(key), 5);
}

void SettingsDefaultsTest::whatCannotBeKeptIsToldOnceAndCounts_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isReadable");
    QTest::newRow("a file where its folder should be") << u"file/quorvane.ini"_s << true;
    QTest::newRow("a folder where the file should be") << u"folder"_s << false;
}

void SettingsDefaultsTest::whatCannotBeKeptIsToldOnceAndCounts()
{
    QFETCH(const QString, path);
    QFETCH(const bool, isReadable);
    const QTemporaryDir folder;
    QVERIFY(write(folder.filePath(u"file"_s), {}) && QDir(folder.path()).mkdir(u"folder"_s));
    SettingsDefaults defaults(folder.filePath(path));
    QCOMPARE(defaults.state() == SettingsDefaults::State::Whole, isReadable);
    const QSignalSpy told(&defaults, &SettingsDefaults::unwritable);
    defaults.setObject(key, 7);
    defaults.setObject(key, 8);
    QCOMPARE(told.size(), isReadable ? 1 : 0); // what was unreadable has been told of
    QCOMPARE(defaults.integerForKey(key), 8);
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
