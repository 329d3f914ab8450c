#include "platform_qt/xdgrecentdocuments.h"
#include "support/faketimers.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const DesktopBookmarks::Application application {u"Quorvane"_s, u"quorvane %f"_s,
                                                 u"application/x-quorvane"_s};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray data(QLatin1StringView name)
{
    return contentOf(QStringLiteral(QUORVANE_TEST_DATA "/recents/") + name);
}

const QByteArray head =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE xbel PUBLIC \"+//IDN python.org//DTD XML Bookmark Exchange Language 1.0//EN\" "
    "\"x\">\n"
    "<xbel xmlns:bookmark=\"http://www.freedesktop.org/standards/desktop-bookmarks\"\n"
    "      xmlns:mime=\"http://www.freedesktop.org/standards/shared-mime-info\" version=\"1.0\">\n"_ba;

// As other programs write it: one entry of theirs, one that is shared with us, and a strange one.
const QByteArray foreign = data("foreign.part"_L1);
const QByteArray shared = data("shared.part"_L1);
const QByteArray tail = "</xbel>\n"_ba;

void fill(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

} // namespace

class RecentDocumentsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void theNewestIsFirstAndTenAreTold();
    void whatWasNotedIsWrittenOnceAndAtTheEnd();
    void anEntryTellsPathTypeProgramAndTimesOnly();
    void whatIsNotOursStaysByteForByte();
    void ourUseJoinsAnEntryThatIsThere_data();
    void ourUseJoinsAnEntryThatIsThere();
    void namesOfAllKindsComeBack();
    void aFileThatIsNoListIsLeftAlone_data();
    void aFileThatIsNoListIsLeftAlone();
    void aListThatCannotBeWrittenIsKeptInMemory();

private:
    std::unique_ptr<XdgRecentDocuments> recents()
    {
        return std::make_unique<XdgRecentDocuments>(m_timers, application, m_path);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_path;
    FakeTimers m_timers;
};

void RecentDocumentsTest::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_path = m_folder->filePath(u"data/recently-used.xbel"_s);
}

void RecentDocumentsTest::theNewestIsFirstAndTenAreTold()
{
    QStringList expected;
    for (int run = 0; run < 3; ++run) {
        const auto list = recents(); // each writes its part when it goes
        for (int i = 0; i < 5; ++i) {
            const QString path = u"/home/%1.quorvane"_s.arg(run * 4 + i); // one comes again
            expected.removeAll(path);
            expected.prepend(path);
            list->note(path);
        }
        QCOMPARE(list->paths(), expected.first(std::min(expected.size(), qsizetype(10))));
    }
    QCOMPARE(recents()->paths(), expected.first(10));
    recents()->remove(expected.takeAt(3));
    QCOMPARE(recents()->paths(), expected.first(10));
    recents()->clear();
    QVERIFY(recents()->paths().isEmpty());
}

void RecentDocumentsTest::whatWasNotedIsWrittenOnceAndAtTheEnd()
{
    auto list = recents();
    list->note(u"/a.quorvane"_s);
    QCOMPARE(list->paths(), {u"/a.quorvane"_s});
    QVERIFY(!QFile::exists(m_path));
    m_timers.advance(1.0);
    const QByteArray written = contentOf(m_path);
    QVERIFY(written.contains("/a.quorvane"));
    list->note(u"/a.quorvane"_s);
    m_timers.advance(1.0);
    QCOMPARE(contentOf(m_path), written);
    list->note(u"/b.quorvane"_s);
    list.reset();
    QCOMPARE(recents()->paths(), QStringList({u"/b.quorvane"_s, u"/a.quorvane"_s}));
}

void RecentDocumentsTest::anEntryTellsPathTypeProgramAndTimesOnly()
{
    recents()->note(u"/home/my diary.quorvane"_s);
    QString entry = QString::fromUtf8(contentOf(m_path));
    QCOMPARE(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::ReadOther),
             QFile::Permissions());
    entry.replace(QRegularExpression(u"\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z"_s),
                  u"TIME"_s);
    QCOMPARE(entry.mid(entry.indexOf("  <bookmark "_L1)),
             QString::fromUtf8(data("written.part"_L1)));
}

void RecentDocumentsTest::whatIsNotOursStaysByteForByte()
{
    QVERIFY(QDir().mkpath(m_folder->filePath(u"data"_s)));
    fill(m_path, head + foreign + shared + tail);
    QCOMPARE(recents()->paths(), {u"/home/shared.quorvane"_s});
    recents()->note(u"/home/new.quorvane"_s);
    QByteArray content = contentOf(m_path);
    QVERIFY(content.startsWith(head + foreign + shared) && content.endsWith(tail));
    QCOMPARE(recents()->paths(),
             QStringList({u"/home/new.quorvane"_s, u"/home/shared.quorvane"_s}));
    recents()->clear();
    QByteArray others = shared;
    const qsizetype ours = others.lastIndexOf("          <bookmark:application");
    others.remove(ours, others.indexOf('\n', ours) + 1 - ours);
    QCOMPARE(contentOf(m_path), head + foreign + others + tail);
}

void RecentDocumentsTest::ourUseJoinsAnEntryThatIsThere_data()
{
    QTest::addColumn<QByteArray>("entry");
    QTest::addColumn<int>("count");
    const QByteArray href = "<bookmark href=\"file:///home/shared.quorvane\""_ba;
    QTest::newRow("with a use of ours: it counts one more") << shared << 5;
    QTest::newRow("an empty tag") << href + "/>" << 1;
    QTest::newRow("a bookmark without info") << href + "><title>t</title></bookmark>" << 1;
    QTest::newRow("an empty info") << href + "><info/></bookmark>" << 1;
    QTest::newRow("metadata of another owner only")
        << href + "><info><metadata owner=\"http://example.org\"/></info></bookmark>" << 1;
    QTest::newRow("metadata without applications")
        << href + "><info><metadata owner=\"http://freedesktop.org\" /></info></bookmark>" << 1;
    QTest::newRow("an address written otherwise")
        << QByteArray("<bookmark visited = 'x' href='file:///home/%73hared.quorvane'/>") << 1;
}

void RecentDocumentsTest::ourUseJoinsAnEntryThatIsThere()
{
    QFETCH(QByteArray, entry);
    QFETCH(int, count);
    QVERIFY(QDir().mkpath(m_folder->filePath(u"data"_s)));
    fill(m_path, (entry == shared ? head : "<xbel>"_ba) + entry + tail);
    recents()->note(u"/home/shared.quorvane"_s);
    const QByteArray content = contentOf(m_path);
    QCOMPARE(recents()->paths(), {u"/home/shared.quorvane"_s});
    QCOMPARE(content.count("<bookmark "), 1);
    QCOMPARE(content.count("visited"), 1);
    QVERIFY2(content.contains("count=\"" + QByteArray::number(count) + '"'), content.constData());
    QCOMPARE(content.contains("Viewer"), entry.contains("Viewer"));
    recents()->clear();
    QVERIFY(recents()->paths().isEmpty());
}

void RecentDocumentsTest::namesOfAllKindsComeBack()
{
    const QStringList paths {u"/a&b<c>'\".quorvane"_s, u"/50% #1?.quorvane"_s,
                             u"/Übung 𝄞;x.quorvane"_s, u"/%41.quorvane"_s, u"/a\\b\n.quorvane"_s};
    for (const QString &path : paths) {
        recents()->note(path);
        QCOMPARE(recents()->paths().first(), path);
    }
    QCOMPARE(recents()->paths().size(), paths.size());
}

void RecentDocumentsTest::aFileThatIsNoListIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("no XML") << QByteArray("recent: none\n");
    QTest::newRow("cut short") << head + foreign;
    QTest::newRow("another kind of XML") << QByteArray("<html/>");
    QTest::newRow("another encoding")
        << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><xbel/>");
    QTest::newRow("UTF-16") << QByteArray("\xff\xfe<\0x\0b\0e\0l\0/\0>\0", 16);
    QTest::newRow("a grammar of its own")
        << QByteArray("<!DOCTYPE xbel [<!ENTITY a \"<b/>\">]><xbel>&a;</xbel>");
    QTest::newRow("an entity that nobody knows") << QByteArray("<xbel>&a;</xbel>");
    QTest::newRow("more than 16 MB") << head + QByteArray(16 * 1024 * 1024, ' ') + tail;
}

void RecentDocumentsTest::aFileThatIsNoListIsLeftAlone()
{
    QFETCH(QByteArray, content);
    QVERIFY(QDir().mkpath(m_folder->filePath(u"data"_s)));
    fill(m_path, content);
    const auto list = recents();
    list->note(u"/a.quorvane"_s);
    m_timers.advance(1.0);
    QCOMPARE(list->paths(), {u"/a.quorvane"_s});
    QVERIFY(contentOf(m_path) == content);
    list->clear();
    QVERIFY(list->paths().isEmpty());
    QVERIFY(contentOf(m_path) == content);
}

void RecentDocumentsTest::aListThatCannotBeWrittenIsKeptInMemory()
{
    fill(m_folder->filePath(u"data"_s), "no folder"_ba);
    const auto list = recents();
    for (const QString &path : {u"/a.quorvane"_s, u"/b.quorvane"_s}) {
        list->note(path);
        m_timers.advance(1.0);
    }
    QCOMPARE(list->paths(), QStringList({u"/b.quorvane"_s, u"/a.quorvane"_s}));
}

QTEST_GUILESS_MAIN(RecentDocumentsTest)
#include "tst_recentdocuments.moc"
