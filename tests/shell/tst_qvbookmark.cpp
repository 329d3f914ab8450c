#include "shell/qvbookmark.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

class TestQVBookmark : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aBookmarkFollowsItsFile_data();
    void aBookmarkFollowsItsFile();
    void whatIsNoBookmarkLeadsNowhere_data();
    void whatIsNoBookmarkLeadsNowhere();
    void onlyTheReadOnlyOneOfADocumentIsCountedFromIt();

private:
    static bool write(const QString &path);
};

bool TestQVBookmark::write(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write("text") == 4;
}

void TestQVBookmark::aBookmarkFollowsItsFile_data()
{
    QTest::addColumn<QString>("event");
    QTest::addColumn<QString>("found");
    QTest::addColumn<bool>("isStale");
    QTest::newRow("left alone") << u""_s << u"here/a"_s << false;
    QTest::newRow("renamed") << u"rename here/b"_s << u"here/b"_s << true;
    QTest::newRow("moved to a folder beside") << u"rename there/a"_s << u"there/a"_s << true;
    QTest::newRow("moved below") << u"rename here/below/a"_s << u"here/below/a"_s << true;
    QTest::newRow("replaced under its name") << u"replace"_s << u"here/a"_s << true;
    QTest::newRow("gone") << u"remove"_s << u""_s << false;
}

void TestQVBookmark::aBookmarkFollowsItsFile()
{
    QFETCH(const QString, event);
    QFETCH(const QString, found);
    QFETCH(const bool, isStale);
    const QTemporaryDir folder;
    const QDir root(folder.path());
    QVERIFY(root.mkpath(u"here/below"_s) && root.mkpath(u"there"_s));
    const QString path = root.filePath(u"here/a"_s);
    QVERIFY(write(path));
    const std::optional<QByteArray> bookmark = QVBookmark::bookmarkForURL_RW(path);
    QVERIFY(bookmark);
    if (event.startsWith(u"rename"_s)) {
        QVERIFY(QFile::rename(path, root.filePath(event.mid(7))));
    } else if (event == u"replace"_s) {
        QVERIFY(write(path + u".new"_s) && QFile::rename(path, root.filePath(u"../aside"_s)));
        QVERIFY(QFile::rename(path + u".new"_s, path));
        QFile::remove(root.filePath(u"../aside"_s));
    } else if (event == u"remove"_s) {
        QVERIFY(QFile::remove(path));
    }
    bool stale = !isStale;
    const std::optional<QString> resolved = QVBookmark::urlForBookmark(*bookmark, stale);
    QCOMPARE(resolved.value_or(u""_s), found.isEmpty() ? found : root.filePath(found));
    QCOMPARE(stale, isStale);
}

void TestQVBookmark::whatIsNoBookmarkLeadsNowhere_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("cleared") << QByteArray();
    QTest::newRow("another thing") << QByteArray("/etc/passwd");
    QTest::newRow("a later version")
        << QByteArray(R"({"bookmark":2,"device":"1","inode":"1","path":"/etc/passwd"})");
    QTest::newRow("a path that leads from where the program runs")
        << QByteArray(R"({"bookmark":1,"device":"1","inode":"1","path":"passwd"})");
    QTest::newRow("numbers that are none")
        << QByteArray(R"({"bookmark":1,"device":"x","inode":1,"path":"/etc/passwd"})");
}

void TestQVBookmark::whatIsNoBookmarkLeadsNowhere()
{
    QFETCH(const QByteArray, data);
    bool stale = true;
    QVERIFY(!QVBookmark::urlForBookmark(data, stale));
    QVERIFY(!stale);
    QVERIFY(!QVBookmark::bookmarkForURL_RO(u"/nowhere/at all"_s));
}

void TestQVBookmark::onlyTheReadOnlyOneOfADocumentIsCountedFromIt()
{
    const QTemporaryDir folder;
    const QDir root(folder.path());
    QVERIFY(root.mkpath(u"first"_s) && root.mkpath(u"second"_s));
    const QString file = root.filePath(u"first/a"_s);
    const QString document = root.filePath(u"first/letter"_s);
    QVERIFY(write(file));
    const auto readOnly = QVBookmark::docBookmarkForURL_RO(file, document);
    const auto readWrite = QVBookmark::docBookmarkForURL_RW(file, document);
    QVERIFY(readOnly && readWrite);
    QCOMPARE(readWrite, QVBookmark::docBookmarkForURL_RW(file, u"/another/one"_s));
    QVERIFY(QFile::rename(file, root.filePath(u"second/a"_s)));
    bool stale = true;
    // Document and file have moved together: the path from the one to the other still holds.
    QCOMPARE(QVBookmark::urlForDocBookmark(*readOnly, root.filePath(u"second/letter"_s), stale),
             std::optional(root.filePath(u"second/a"_s)));
    QVERIFY(!stale);
    QCOMPARE(QVBookmark::urlForDocBookmark(*readWrite, root.filePath(u"second/letter"_s), stale),
             std::optional(root.filePath(u"second/a"_s)));
    QVERIFY(stale);
}

QTEST_GUILESS_MAIN(TestQVBookmark)
#include "tst_qvbookmark.moc"
