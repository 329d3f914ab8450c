#include "platform/posixpackagestore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <functional>
#include <memory>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

PackageEntry file(const QByteArray &name, const QByteArray &bytes)
{
    return {name, false, bytes, {}};
}

PackageEntries sample()
{
    return {file("TXT.rtf", "{\\rtf1 text}"), file("a b.png", QByteArray(70'000, 'p')),
            file("empty", ""), PackageEntry {"folder", true, {}, {file("inner", "side")}},
            file("\xe3\x81\x82.bin", "\x01\x02")};
}

void put(const QString &path, const QByteArray &bytes)
{
    QVERIFY(QDir().mkpath(QFileInfo(path).path()));
    QFile out(path);
    QVERIFY(out.open(QIODevice::WriteOnly));
    QCOMPARE(out.write(bytes), bytes.size());
}

void link(const QString &target, const QString &path)
{
    QCOMPARE(::symlink(target.toUtf8().constData(), path.toUtf8().constData()), 0);
}

QStringList namesIn(const QString &folder)
{
    return QDir(folder).entryList(
        QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

} // namespace

class TestPosixPackageStore : public QObject
{
    Q_OBJECT

private slots:

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void whatIsWrittenReadsBackEqual();
    void replacesWithoutALeftover_data();
    void replacesWithoutALeftover();
    void leavesWhatIsNoPackage_data();
    void leavesWhatIsNoPackage();
    void namesNeverLeadOut_data();
    void namesNeverLeadOut();
    void aFailureLeavesTheOldPackage();
    void readsNothingFromOutside();
    void readsWithinBounds_data();
    void readsWithinBounds();

private:
    QString path(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void TestPosixPackageStore::whatIsWrittenReadsBackEqual()
{
    PosixPackageStore store;
    QVERIFY(!store.replace(path(u"x.rtfd"_s), sample()));
    const PackageStore::ReadResult read = store.read(path(u"x.rtfd"_s));
    PackageEntries expected = sample();
    std::sort(expected.begin(), expected.end(),
              [](const PackageEntry &a, const PackageEntry &b) { return a.name < b.name; });
    QVERIFY(read.entries == expected);
    QVERIFY(read.leftOut.empty());
    QCOMPARE(namesIn(path(u"."_s)), QStringList {u"x.rtfd"_s});
    QCOMPARE(QFile::permissions(path(u"x.rtfd/TXT.rtf"_s)) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
}

void TestPosixPackageStore::replacesWithoutALeftover_data()
{
    QTest::addColumn<std::function<void(QString)>>("prepare");
    const auto row = [](const char *name, std::function<void(QString)> prepare) {
        QTest::newRow(name) << std::move(prepare);
    };
    row("a package and its inner folders", [](const QString &target) {
        put(target + u"/TXT.rtf"_s, "old");
        put(target + u"/deep/in/it/old.png"_s, "old");
        link(u"/etc"_s, target + u"/deep/link"_s);
    });
    row("an empty folder", [](const QString &target) { QVERIFY(QDir().mkpath(target)); });
    row("a file", [](const QString &target) { put(target, "old"); });
    row("a package behind a link", [](const QString &target) {
        put(target + u".d/real/TXT.rtf"_s, "old");
        link(target + u".d/real"_s, target);
    });
}

void TestPosixPackageStore::replacesWithoutALeftover()
{
    QFETCH(std::function<void(QString)>, prepare);
    const QString target = path(u"x.rtfd"_s);
    prepare(target);
    const QStringList before = namesIn(path(u"."_s));
    const bool wasLink = QFileInfo(target).isSymLink();
    QVERIFY(!PosixPackageStore().replace(target, sample()));
    QCOMPARE(PosixPackageStore().read(target).entries->size(), sample().size());
    QCOMPARE(namesIn(path(u"."_s)), before);
    QCOMPARE(QFileInfo(target).isSymLink(), wasLink);
    QVERIFY(QFile::exists(u"/etc/passwd"_s));
}

void TestPosixPackageStore::leavesWhatIsNoPackage_data()
{
    QTest::addColumn<QString>("inside");
    QTest::addColumn<QString>("target");
    QTest::newRow("a folder of other things") << u"x.rtfd/thesis.txt"_s << u"x.rtfd"_s;
    QTest::newRow("a folder whose mark is a folder") << u"x.rtfd/TXT.rtf/a"_s << u"x.rtfd"_s;
    QTest::newRow("a place without a folder") << u"a"_s << u"missing/x.rtfd"_s;
}

void TestPosixPackageStore::leavesWhatIsNoPackage()
{
    QFETCH(QString, inside);
    QFETCH(QString, target);
    put(path(inside), "dear");
    const std::optional<FileError> error = PosixPackageStore().replace(path(target), sample());
    QVERIFY(error && !error->isInPlace());
    QFile kept(path(inside));
    QVERIFY(kept.open(QIODevice::ReadOnly));
    QCOMPARE(kept.readAll(), "dear");
    QCOMPARE(namesIn(path(u"."_s)), QStringList {inside.section(u'/', 0, 0)});
}

void TestPosixPackageStore::namesNeverLeadOut_data()
{
    QTest::addColumn<PackageEntries>("entries");
    const auto row = [](const char *name, const QByteArray &entry) {
        QTest::newRow(name) << PackageEntries {file("TXT.rtf", "new"), file(entry, "bad")};
    };
    row("the folder above", "..");
    row("the folder itself", ".");
    row("beside the package", "../evil");
    row("an absolute path", "/tmp/quorvane-evil");
    row("a path inside", "a/b");
    row("no name", "");
    row("a zero byte", QByteArray("a\0b", 3));
    row("a name that is taken", "TXT.rtf");
    row("a name that is too long", QByteArray(300, 'n'));
    QTest::newRow("in an inner folder")
        << PackageEntries {PackageEntry {"in", true, {}, {file("../../evil", "bad")}}};
}

void TestPosixPackageStore::namesNeverLeadOut()
{
    QFETCH(PackageEntries, entries);
    put(path(u"x.rtfd/TXT.rtf"_s), "old");
    QVERIFY(PosixPackageStore().replace(path(u"x.rtfd"_s), entries));
    QVERIFY(PosixPackageStore().read(path(u"x.rtfd"_s)).entries
            == PackageEntries {file("TXT.rtf", "old")});
    QCOMPARE(namesIn(path(u"."_s)), QStringList {u"x.rtfd"_s});
    QVERIFY(!QFile::exists(u"/tmp/quorvane-evil"_s));
}

void TestPosixPackageStore::aFailureLeavesTheOldPackage()
{
    put(path(u"x.rtfd/TXT.rtf"_s), "old");
    ::signal(SIGXFSZ, SIG_IGN);
    rlimit before {};
    QCOMPARE(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit small {50'000, before.rlim_max};
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &small), 0); // the second file breaks off half written
    const auto error = PosixPackageStore().replace(path(u"x.rtfd"_s), sample());
    QCOMPARE(::setrlimit(RLIMIT_FSIZE, &before), 0);

    QVERIFY(error && !error->isInPlace());
    QCOMPARE(error->step, filestep::writing);
    QCOMPARE(error->path, path(u"x.rtfd/a b.png"_s));
    QVERIFY(PosixPackageStore().read(path(u"x.rtfd"_s)).entries
            == PackageEntries {file("TXT.rtf", "old")});
    QCOMPARE(namesIn(path(u"."_s)), QStringList {u"x.rtfd"_s});
}

void TestPosixPackageStore::readsNothingFromOutside()
{
    const QString package = path(u"x.rtfd"_s);
    put(package + u"/TXT.rtf"_s, "text");
    put(package + u"/folder/inner"_s, "side");
    put(path(u"secret"_s), "secret");
    link(path(u"secret"_s), package + u"/file link"_s);
    link(u"/etc"_s, package + u"/folder link"_s);
    link(u"../../secret"_s, package + u"/folder/up"_s);
    QCOMPARE(::mkfifo((package + u"/pipe"_s).toUtf8().constData(), 0600), 0);
    QString deep = package + u"/deep"_s;
    for (int i = 0; i < PosixPackageStore::deepest + 2; ++i) {
        deep += u"/d"_s;
    }
    put(deep + u"/file"_s, "deep");

    const PackageStore::ReadResult read = PosixPackageStore().read(package);
    QVERIFY(read.entries);
    QCOMPARE(read.entries->size(), std::size_t(3));
    QVERIFY(read.entries->at(0) == file("TXT.rtf", "text"));
    QVERIFY(read.entries->at(2) == (PackageEntry {"folder", true, {}, {file("inner", "side")}}));
    const std::vector<QByteArray> leftOut(read.leftOut.begin() + 1, read.leftOut.end());
    QVERIFY(read.leftOut.front().startsWith("deep/d/"));
    QVERIFY(leftOut == std::vector<QByteArray>({"file link", "folder/up", "folder link", "pipe"}));
}

void TestPosixPackageStore::readsWithinBounds_data()
{
    QTest::addColumn<int>("files");
    QTest::addColumn<int>("bytesEach");
    QTest::addColumn<int>("code");
    QTest::newRow("as much as allowed") << 10 << 100 << 0;
    QTest::newRow("one byte too many") << 1 << 1001 << EFBIG;
    QTest::newRow("too many bytes together") << 11 << 100 << EFBIG;
}

void TestPosixPackageStore::readsWithinBounds()
{
    QFETCH(int, files);
    QFETCH(int, bytesEach);
    QFETCH(int, code);
    QVERIFY(QDir().mkpath(path(u"x.rtfd"_s)));
    for (int i = 0; i < files; ++i) {
        QFile out(path(u"x.rtfd/%1"_s.arg(i)));
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(QByteArray(bytesEach, 'x'));
    }
    const PackageStore::ReadResult read =
        PosixPackageStore("TXT.rtf", 1000).read(path(u"x.rtfd"_s));
    QCOMPARE(read.entries.has_value(), code == 0);
    QCOMPARE(read.error.code, code);
}

QTEST_GUILESS_MAIN(TestPosixPackageStore)
#include "tst_posixpackagestore.moc"
