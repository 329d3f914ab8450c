#include "platform/runtimefolder.h"
#include "platform/safefilename.h"
#include "support/filestat.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

QStringList entriesOf(const QString &path)
{
    return QDir(path).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

QString added(RuntimeFolder &folder, const QString &name, const QByteArray &bytes = "bytes")
{
    const auto made = folder.add(name, bytes);
    const auto *path = std::get_if<QString>(&made);
    return path ? *path : QString();
}

} // namespace

class TestRuntimeFolder : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_runtime;

private Q_SLOTS:

    void copiesAreTheUsersAloneAndGoWithTheFolder()
    {
        {
            RuntimeFolder folder(m_runtime.path());
            QCOMPARE(entriesOf(m_runtime.path()), QStringList());
            const QString path = added(folder, u"a.pdf"_s);
            QFile copy(path);
            QVERIFY(copy.open(QIODevice::ReadOnly));
            QCOMPARE(copy.readAll(), "bytes");
            QCOMPARE(modeOf(path), mode_t(0400));
            QCOMPARE(modeOf(QFileInfo(path).path()), mode_t(0700));
            const QString own = m_runtime.filePath(entriesOf(m_runtime.path()).value(0));
            QCOMPARE(modeOf(own), mode_t(0700));
            QVERIFY(path.startsWith(own));
            const QString other = added(folder, u"a.pdf"_s, "others");
            QVERIFY(other != path && QFileInfo(other).fileName() == "a.pdf"_L1);
            folder.clear();
            QCOMPARE(entriesOf(m_runtime.path()), QStringList());
            QVERIFY(!added(folder, u"b"_s).isEmpty()); // and may begin anew
        }
        QCOMPARE(entriesOf(m_runtime.path()), QStringList());
    }

    void withoutASessionsFolderThereIsNoCopy()
    {
        RuntimeFolder folder {QString()};
        QVERIFY(!folder.hasPlace());
        QVERIFY(std::holds_alternative<FileError>(folder.add(u"a"_s, "b")));
        RuntimeFolder missing(m_runtime.filePath(u"missing"_s));
        QVERIFY(std::holds_alternative<FileError>(missing.add(u"a"_s, "b")));
    }

    void onlyAPrivateFolderIsTheSessions()
    {
        qputenv("XDG_RUNTIME_DIR", m_runtime.path().toUtf8());
        QCOMPARE(RuntimeFolder::sessionPath(), m_runtime.path());
        QCOMPARE(::chmod(m_runtime.path().toUtf8().constData(), 0755), 0);
        QCOMPARE(RuntimeFolder::sessionPath(), QString());
        QCOMPARE(::chmod(m_runtime.path().toUtf8().constData(), 0700), 0);
        qunsetenv("XDG_RUNTIME_DIR");
        QCOMPARE(RuntimeFolder::sessionPath(), QString());
    }

    void whatAKilledProgramLeftIsTakenAwayAndWhatALivingOneHasIsNot()
    {
        RuntimeFolder living(m_runtime.path());
        const QString kept = added(living, u"kept"_s);
        const pid_t child = fork();
        if (child == 0) {
            RuntimeFolder folder(m_runtime.path());
            const bool isDone = !added(folder, u"left"_s).isEmpty();
            ::kill(isDone ? ::getpid() : 0, SIGKILL);
        }
        waitpid(child, nullptr, 0);
        QVERIFY(QDir(m_runtime.path()).mkdir(u"quorvane-things"_s)); // another's, by its name
        QCOMPARE(entriesOf(m_runtime.path()).size(), 3);
        RuntimeFolder::removeAbandoned(m_runtime.path());
        QCOMPARE(entriesOf(m_runtime.path()).size(), 2);
        QVERIFY(QFile::exists(kept));
        QVERIFY(QDir(m_runtime.path()).rmdir(u"quorvane-things"_s));
    }

    void aNameLeadsNowhere_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("safe");
        QTest::newRow("a plain one stays") << u"Bericht für Öl.pdf"_s << u"Bericht für Öl.pdf"_s;
        QTest::newRow("a path up") << u"../../etc/passwd"_s << u"passwd"_s;
        QTest::newRow("a path of another system") << u"C:\\x\\y.txt"_s << u"y.txt"_s;
        QTest::newRow("a hidden file") << u"...bashrc"_s << u"bashrc"_s;
        QTest::newRow("two points") << u".."_s << u"Attachment"_s;
        QTest::newRow("nothing") << u""_s << u"Attachment"_s;
        QTest::newRow("an option of a command") << u"--help"_s << u"help"_s;
        QTest::newRow("a line break") << u"a\nb.txt"_s << u"a_b.txt"_s;
        QTest::newRow("written backwards") << u"a\u202efdp.exe"_s << u"a_fdp.exe"_s;
        QTest::newRow("a long one keeps its ending")
            << QString(400, u'ä') + u".pdf"_s << QString(88, u'ä') + u".pdf"_s;
    }

    void aNameLeadsNowhere()
    {
        QFETCH(QString, name);
        QTEST(safeFileName(name), "safe");
    }

    void aProgramIsKnown_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("runs");
        QTest::newRow("a text") << u"a.txt"_s << QByteArray("words") << false;
        QTest::newRow("a PDF") << u"a.pdf"_s << QByteArray("%PDF-1.4") << false;
        QTest::newRow("a picture") << u"a.png"_s << QByteArray("\x89PNG\r\n\x1a\n") << false;
        QTest::newRow("a web page") << u"a.html"_s << QByteArray("<html>") << false;
        QTest::newRow("a starter, by name") << u"a.Desktop"_s << QByteArray() << true;
        QTest::newRow("a starter, by content")
            << u"a.txt"_s << QByteArray("\n[Desktop Entry]\nExec=x") << true;
        QTest::newRow("a script without an ending") << u"a"_s << QByteArray("#!/bin/sh\n") << true;
        QTest::newRow("a program with another's ending")
            << u"a.pdf"_s << QByteArray("\177ELF\2\1\1") << true;
        QTest::newRow("another system's program") << u"a.EXE"_s << QByteArray("words") << true;
        QTest::newRow("another system's program, by content")
            << u"a.doc"_s << QByteArray("MZ\x90") << true;
        QTest::newRow("an archive that runs") << u"a.jar"_s << QByteArray("PK\3\4") << true;
    }

    void aProgramIsKnown()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QTEST(mayRunAsProgram(name, bytes), "runs");
    }
};

QTEST_GUILESS_MAIN(TestRuntimeFolder)
#include "tst_runtimefolder.moc"
