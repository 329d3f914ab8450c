#include "platform/posixfilestore.h"
#include "platform/recoveryfolder.h"
#include "support/filestat.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <array>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

class TestRecoveryFolder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsKeptIsTheUsersAloneUnderAnUnguessableName_data();
    void whatIsKeptIsTheUsersAloneUnderAnUnguessableName();
    void whatALivingProgramKeepsIsItsOwn();
    void whatAKilledProgramLeftIsTaken();
    void aFolderThatCannotBeMadeIsTold();

private:
    QStringList names() const
    {
        return QDir(m_path).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(u"state/quorvane/recovery"_s);
    PosixFileStore m_files;
};

void TestRecoveryFolder::whatIsKeptIsTheUsersAloneUnderAnUnguessableName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("back");
    QTest::newRow("a document without a name") << u""_s << u""_s;
    QTest::newRow("a name with everything")
        << u".a b\n.quorvane.lock"_s << u".a b\n.quorvane.lock"_s;
    QTest::newRow("a long name") << u"x"_s.repeated(255) << u"x"_s.repeated(120);
    QTest::newRow("a long name of wide characters")
        << u"x"_s + u"\U0001f512"_s.repeated(60) << u"x"_s + u"\U0001f512"_s.repeated(29);
}

void TestRecoveryFolder::whatIsKeptIsTheUsersAloneUnderAnUnguessableName()
{
    QFETCH(const QString, name);
    QFETCH(const QString, back);
    QVERIFY(QDir(m_path).removeRecursively());
    RecoveryFolder folder(m_path, m_files);
    QVERIFY(folder.takeAbandoned().empty());
    QVERIFY2(!QFileInfo::exists(m_path), "a look makes nothing");
    QVERIFY(QDir().mkpath(m_path));
    QCOMPARE(::chmod(m_path.toUtf8().constData(), 0755), 0);
    auto entry = folder.newEntry(name).entry;
    QVERIFY(entry && !entry->write("first") && !entry->write("second"));
    QCOMPARE(entry->read().data, std::optional(QByteArray("second")));
    QCOMPARE(modeOf(m_path), mode_t(0700));
    QCOMPARE(names().size(), 2);
    const QString behind = back.isEmpty() ? back : u' ' + back;
    const QRegularExpression pattern(u"^[0-9a-f]{32}"_s + QRegularExpression::escape(behind)
                                     + u"\\.(quorvane|lock)$"_s);
    for (const QString &file : names()) {
        QCOMPARE(modeOf(QDir(m_path).filePath(file)), mode_t(0600));
        QVERIFY(pattern.match(file).hasMatch());
    }
    QVERIFY(folder.newEntry(name).entry->path() != entry->path());
    entry.reset();
    const auto taken = folder.takeAbandoned();
    QCOMPARE(taken.size(), std::size_t(1));
    QCOMPARE(taken.front()->name(), back);
    taken.front()->remove();
}

void TestRecoveryFolder::whatALivingProgramKeepsIsItsOwn()
{
    RecoveryFolder first(m_path, m_files);
    RecoveryFolder second(m_path, m_files);
    auto entry = first.newEntry({}).entry;
    QVERIFY(!entry->write("text"));
    QVERIFY(second.takeAbandoned().empty());
    entry.reset();
    auto taken = second.takeAbandoned();
    QCOMPARE(taken.size(), std::size_t(1));
    QVERIFY(first.takeAbandoned().empty());
    QCOMPARE(taken.front()->read().data, std::optional(QByteArray("text")));
    taken.front()->remove();
    taken.clear();
    QCOMPARE(names(), QStringList());
}

void TestRecoveryFolder::whatAKilledProgramLeftIsTaken()
{
    std::array<int, 2> ready = {};
    QCOMPARE(::pipe(ready.data()), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        RecoveryFolder folder(m_path, m_files);
        const auto kept = folder.newEntry({}).entry;
        const auto unused = folder.newEntry({}).entry;
        const char answer = kept && unused && !kept->write("text") ? 'y' : 'n';
        if (::write(ready[1], &answer, 1) == 1) {
            ::pause();
        }
        ::_exit(1);
    }
    char answer = 0;
    QCOMPARE(::read(ready[0], &answer, 1), ssize_t(1));
    RecoveryFolder folder(m_path, m_files);
    const bool isLeftAlone = folder.takeAbandoned().empty();
    ::kill(child, SIGKILL);
    QCOMPARE(::waitpid(child, nullptr, 0), child);
    QCOMPARE(answer, 'y');
    QVERIFY(isLeftAlone);
    QCOMPARE(names().size(), 3);
    const auto taken = folder.takeAbandoned();
    QCOMPARE(taken.size(), std::size_t(1));
    QCOMPARE(taken.front()->read().data, std::optional(QByteArray("text")));
    QCOMPARE(names().size(), 2); // the lock of what was never written is gone
    taken.front()->remove();
}

void TestRecoveryFolder::aFolderThatCannotBeMadeIsTold()
{
    RecoveryFolder folder(u"/proc/nowhere/recovery"_s, m_files);
    const RecoveryStore::NewEntry made = folder.newEntry({});
    QVERIFY(!made.entry);
    QVERIFY(made.error.reason().contains(u"/proc/nowhere/recovery"_s));
    QVERIFY(folder.takeAbandoned().empty());
}

QTEST_GUILESS_MAIN(TestRecoveryFolder)
#include "tst_recoveryfolder.moc"
