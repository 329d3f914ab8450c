#include "platform/posixfilestore.h"
#include "savetorture/savetorture.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <cerrno>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr mode_t oldMode = 0640;

QByteArray textOf(qsizetype length, int seed)
{
    QByteArray text(length, '\0');
    for (qsizetype i = 0; i < length; ++i) {
        text[i] = static_cast<char>((i * 31 + i / 251 + seed) % 256);
    }
    return text;
}

bool isOneOf(quint64 number, std::initializer_list<long> numbers)
{
    return std::find(numbers.begin(), numbers.end(), static_cast<long>(number)) != numbers.end();
}

#ifdef SYS_rename
constexpr std::initializer_list<long> renames {SYS_rename, SYS_renameat, SYS_renameat2};
#else
constexpr std::initializer_list<long> renames {SYS_renameat, SYS_renameat2};
#endif
constexpr std::initializer_list<long> writes {SYS_write,   SYS_pwrite64, SYS_writev,
                                              SYS_pwritev, SYS_fchmod,   SYS_fchown};
constexpr std::initializer_list<long> flushes {SYS_fsync, SYS_fdatasync};

/// A folder with one document in it, in memory where the system has such a place: thousands of
/// saves are nothing to put a disk through.
class Scene
{
public:
    enum class Old { None, File, Linked };

    explicit Scene(Old old)
        : m_folder(QFileInfo(u"/dev/shm"_s).isWritable()
                       ? u"/dev/shm/savetorture-XXXXXX"_s
                       : QDir::tempPath() + "/savetorture-XXXXXX"_L1)
        , m_old(old)
    { }

    SaveUnderTorture save()
    {
        return {[this] { prepare(); }, [this] { return replace(); }, [this] { return look(); },
                [this] {
                    return leftovers();
                }};
    }

private:
    QString path() const { return m_folder.filePath(u"document"_s); }

    QString target() const { return m_folder.filePath(u"target"_s); }

    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden | QDir::System);
    }

    void prepare()
    {
        for (const QString &name : names()) {
            QFile::remove(m_folder.filePath(name));
        }
        if (m_old == Old::None) {
            return;
        }
        if (m_old == Old::Linked) {
            QVERIFY(QFile::link(u"target"_s, path()));
        }
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        QCOMPARE(file.write(m_before), m_before.size());
        QCOMPARE(::fchmod(file.handle(), oldMode), 0);
    }

    SaveUnderTorture::Answer replace()
    {
        const std::optional<FileError> error = PosixFileStore().replace(path(), m_after);
        if (!error) {
            return SaveUnderTorture::Saved;
        }
        return error->isInPlace() ? SaveUnderTorture::SavedUnsurely : SaveUnderTorture::Refused;
    }

    SaveUnderTorture::State look() const
    {
        using State = SaveUnderTorture::State;
        struct stat found = {};
        if (::stat(path().toUtf8().constData(), &found) != 0) {
            return m_old == Old::None ? State::Old : State::Broken;
        }
        if ((found.st_mode & 07777 & ~oldMode) != 0) {
            return State::Broken;
        }
        const auto data = PosixFileStore().read(path()).data;
        if (m_old != Old::None && data == m_before) {
            return (found.st_mode & 07777) == oldMode ? State::Old : State::Broken;
        }
        return data == m_after ? State::New : State::Broken;
    }

    QStringList leftovers() const
    {
        QStringList rest = names();
        rest.removeAll(u"document"_s);
        rest.removeAll(u"target"_s);
        return rest;
    }

    QTemporaryDir m_folder;
    Old m_old;
    const QByteArray m_before = textOf(9000, 1);
    const QByteArray m_after = textOf(5 * 4096 + 123, 2);
};

/// A save that does everything wrong: it writes in place.
SaveUnderTorture::Answer writeInPlace(const QString &path, const QByteArray &data)
{
    QFile file(path);
    const bool isDone =
        file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && file.write(data) == data.size();
    return isDone ? SaveUnderTorture::Saved : SaveUnderTorture::Refused;
}

} // namespace

Q_DECLARE_METATYPE(Scene::Old)

class TestSaveTorture : public QObject
{
    Q_OBJECT

private slots:
    void aSaveBrokenOffAnywhereLeavesTheOldOrTheNew_data();
    void aSaveBrokenOffAnywhereLeavesTheOldOrTheNew();
    void theBytesAreOnTheDiskBeforeTheyHaveTheName();
    void aSaveInPlaceIsFoundOut();
};

void TestSaveTorture::aSaveBrokenOffAnywhereLeavesTheOldOrTheNew_data()
{
    QTest::addColumn<Scene::Old>("old");
    QTest::newRow("a file is replaced") << Scene::Old::File;
    QTest::newRow("a file is made") << Scene::Old::None;
    QTest::newRow("a file behind a link is replaced") << Scene::Old::Linked;
}

void TestSaveTorture::aSaveBrokenOffAnywhereLeavesTheOldOrTheNew()
{
    QFETCH(Scene::Old, old);
    Scene scene(old);
    const TortureReport report = torture(scene.save());
    qInfo("%d calls, broken off in %d ways", report.calls, report.runs);
    QVERIFY2(report.complaints.isEmpty(), qPrintable(report.complaints.join(u'\n')));
    QVERIFY(report.calls > 0);
}

void TestSaveTorture::theBytesAreOnTheDiskBeforeTheyHaveTheName()
{
    Scene scene(Scene::Old::File);
    const TracedRun run = watch(scene.save());
    QVERIFY2(run.problem.isEmpty(), qPrintable(run.problem));
    bool isWritten = false;
    bool isFlushed = false;
    bool isNamed = false;
    bool isNameFlushed = false;
    for (const SystemCall &call : run.calls) {
        if (isOneOf(call.number, writes)) {
            isWritten = true;
            isFlushed = false;
        } else if (isOneOf(call.number, flushes)) {
            (isNamed ? isNameFlushed : isFlushed) = true;
        } else if (isOneOf(call.number, renames)) {
            QVERIFY2(isWritten && isFlushed, "named before it was on the disk");
            isNamed = true;
        }
    }
    QVERIFY(isNamed);
    QVERIFY(isNameFlushed);
}

void TestSaveTorture::aSaveInPlaceIsFoundOut()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"document"_s);
    const QByteArray before = textOf(9000, 1);
    const QByteArray after = textOf(9000, 2);
    const SaveUnderTorture careless {
        [&] { writeInPlace(path, before); }, [&] { return writeInPlace(path, after); },
        [&] {
            const auto data = PosixFileStore().read(path).data;
            if (data == before) {
                return SaveUnderTorture::State::Old;
            }
            return data == after ? SaveUnderTorture::State::New : SaveUnderTorture::State::Broken;
        },
        [] {
            return QStringList();
        }};
    const TortureReport report = torture(careless);
    QVERIFY(report.runs > 0);
    const QString all = report.complaints.join(u'\n');
    QVERIFY2(all.contains("killed after"_L1), qPrintable(all));
    QVERIFY2(all.contains("neither the old nor the new"_L1), qPrintable(all));
}

QTEST_GUILESS_MAIN(TestSaveTorture)
#include "tst_savetorture.moc"
