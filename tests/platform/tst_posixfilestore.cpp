#include "platform/posixfilestore.h"
#include "support/filestat.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <array>
#include <cerrno>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr uid_t stranger = 65534;
constexpr auto accessList = "system.posix_acl_access";
constexpr auto defaultList = "system.posix_acl_default";

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
}

void put(const QString &path, const QByteArray &content, mode_t mode = 0600)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
    QCOMPARE(::fchmod(file.handle(), mode), 0);
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

/// The entries of an access list as the kernel takes it: owner and mask read and write, group
/// none, others none, and the stranger with the given rights.
QByteArray listFor(char strangersRights)
{
    QByteArray list("\x02\x00\x00\x00", 4);
    const auto entry = [&list](char tag, char rights, quint32 id) {
        list.append(tag).append('\0').append(rights).append('\0');
        for (int shift = 0; shift < 32; shift += 8) {
            list.append(static_cast<char>(id >> shift & 0xff));
        }
    };
    constexpr quint32 nobody = 0xffffffff;
    entry(0x01, 6, nobody);
    entry(0x02, strangersRights, stranger);
    entry(0x04, 0, nobody);
    entry(0x10, 6, nobody);
    entry(0x20, 0, nobody);
    return list;
}

QByteArray attributeOf(const QString &path, const char *name)
{
    std::array<char, 256> value = {};
    const ssize_t length = ::getxattr(path.toUtf8().constData(), name, value.data(), value.size());
    return length < 0 ? QByteArray("(none)") : QByteArray(value.data(), length);
}

bool setAttribute(const QString &path, const char *name, const QByteArray &value)
{
    return ::setxattr(path.toUtf8().constData(), name, value.constData(),
                      static_cast<size_t>(value.size()), 0)
        == 0;
}

/// Makes this process a user without rights of its own for a while, where it is the superuser.
class AsStranger
{
public:
    AsStranger() { m_isSwitched = ::geteuid() == 0 && ::seteuid(stranger) == 0; }

    ~AsStranger()
    {
        if (m_isSwitched && ::seteuid(0) != 0) {
            qFatal("The rights of the test do not come back");
        }
    }

    Q_DISABLE_COPY_MOVE(AsStranger)

private:
    bool m_isSwitched = false;
};

} // namespace

class TestPosixFileStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void everyContentIsReplacedWhole_data();
    void everyContentIsReplacedWhole();
    void modesAreKept_data();
    void modesAreKept();
    void linksStayAndTheirFileIsReplaced_data();
    void linksStayAndTheirFileIsReplaced();
    void otherNamesOfTheFileKeepTheOldContent();
    void whatCannotBeReplacedIsToldAndLeftAlone_data();
    void whatCannotBeReplacedIsToldAndLeftAlone();
    void aFolderThatTakesNoFileIsToldPlainly();
    void aFileThatMayNotBeWrittenIsNotReplaced();
    void ownersAreKeptWhereAllowed();
    void whereTheOwnerCannotBeKeptNobodyGains_data();
    void whereTheOwnerCannotBeKeptNobodyGains();
    void notesAndAccessListsAreKept();
    void theAccessListOfTheFolderIsNotHandedDown();
    void aFolderThatShowsNothingTakesADocument();
    void filesAreReadWhole();
    void aStampTellsOneStateOfAFileFromAnother();
    void whatIsNoReadableFileIsTold_data();
    void whatIsNoReadableFileIsTold();
    void reasonsAreSentences_data();
    void reasonsAreSentences();

private:
    QString at(const QString &name) const { return m_folder->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_folder;
    PosixFileStore m_store;
};

void TestPosixFileStore::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void TestPosixFileStore::everyContentIsReplacedWhole_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QByteArray>("after");

    QTest::newRow("longer") << QByteArray("old") << QByteArray("new and longer");
    QTest::newRow("shorter") << QByteArray("old and longer") << QByteArray("new");
    QTest::newRow("emptied") << QByteArray("old") << QByteArray("");
    QTest::newRow("unchanged") << QByteArray("same") << QByteArray("same");
    QTest::newRow("a chunk and one byte") << QByteArray("old") << QByteArray(65537, 'n');
    QTest::newRow("several chunks") << QByteArray("old") << QByteArray(3 * 65536, '\0');
}

void TestPosixFileStore::everyContentIsReplacedWhole()
{
    QFETCH(QByteArray, before);
    QFETCH(QByteArray, after);
    put(at(u"a b\u00e4.doc"_s), before);
    const std::optional<FileError> error = m_store.replace(at(u"a b\u00e4.doc"_s), after);
    QVERIFY2(!error, qPrintable(error.value_or(FileError()).reason()));
    QVERIFY(contentOf(at(u"a b\u00e4.doc"_s)) == after);
    QCOMPARE(namesIn(m_folder->path()), QStringList {u"a b\u00e4.doc"_s});
}

void TestPosixFileStore::modesAreKept_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("mask");
    QTest::addColumn<int>("after");

    QTest::newRow("a new file is the owner's alone") << -1 << 0 << 0600;
    QTest::newRow("a new file under a strict mask") << -1 << 0777 << 0600;
    QTest::newRow("private") << 0600 << 022 << 0600;
    QTest::newRow("shared with the group") << 0660 << 077 << 0660;
    QTest::newRow("readable to all") << 0644 << 077 << 0644;
    QTest::newRow("executable") << 0755 << 022 << 0755;
    QTest::newRow("no right of another user's comes along") << 04755 << 022 << 0755;
}

void TestPosixFileStore::modesAreKept()
{
    QFETCH(int, before);
    QFETCH(int, mask);
    QFETCH(int, after);
    if (before >= 0) {
        put(at(u"doc"_s), "old", static_cast<mode_t>(before));
    }
    const mode_t usual = ::umask(static_cast<mode_t>(mask));
    const auto error = m_store.replace(at(u"doc"_s), "new");
    ::umask(usual);
    QVERIFY(!error);
    QCOMPARE(static_cast<int>(modeOf(at(u"doc"_s))), after);
}

void TestPosixFileStore::linksStayAndTheirFileIsReplaced_data()
{
    QTest::addColumn<QString>("target");
    QTest::addColumn<bool>("isAbsolute");
    QTest::addColumn<bool>("dangles");

    QTest::newRow("beside it") << u"doc"_s << false << false;
    QTest::newRow("in another folder") << u"sub/doc"_s << false << false;
    QTest::newRow("by its whole path") << u"sub/doc"_s << true << false;
    QTest::newRow("round about") << u"sub/../sub/doc"_s << false << false;
    QTest::newRow("a file that is not there yet") << u"sub/doc"_s << false << true;
}

void TestPosixFileStore::linksStayAndTheirFileIsReplaced()
{
    QFETCH(QString, target);
    QFETCH(bool, isAbsolute);
    QFETCH(bool, dangles);
    QVERIFY(QDir(m_folder->path()).mkdir(u"sub"_s));
    if (!dangles) {
        put(at(target), "old");
    }
    link(isAbsolute ? at(target) : target, at(u"first"_s));
    link(u"first"_s, at(u"second"_s));
    QVERIFY(!m_store.replace(at(u"second"_s), "new"));
    QCOMPARE(contentOf(at(target)), QByteArray("new"));
    QVERIFY(S_ISLNK(statOf(at(u"first"_s)).st_mode));
    QVERIFY(S_ISLNK(statOf(at(u"second"_s)).st_mode));
    QVERIFY(S_ISREG(statOf(at(target)).st_mode));
}

void TestPosixFileStore::otherNamesOfTheFileKeepTheOldContent()
{
    put(at(u"one"_s), "old");
    QCOMPARE(::link(at(u"one"_s).toUtf8().constData(), at(u"two"_s).toUtf8().constData()), 0);
    QVERIFY(!m_store.replace(at(u"one"_s), "new"));
    QCOMPARE(contentOf(at(u"one"_s)), QByteArray("new"));
    QCOMPARE(contentOf(at(u"two"_s)), QByteArray("old"));
}

void TestPosixFileStore::whatCannotBeReplacedIsToldAndLeftAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("code");

    QTest::newRow("a folder") << u"folder"_s << EISDIR;
    QTest::newRow("a folder's inside") << u"folder/"_s << EISDIR;
    QTest::newRow("a pipe, without waiting for its reader") << u"pipe"_s << ENODEV;
    QTest::newRow("a link to a pipe") << u"to-pipe"_s << ENODEV;
    QTest::newRow("a ring of links") << u"ring"_s << ELOOP;
    QTest::newRow("a link into nowhere") << u"to-nowhere"_s << ENOENT;
    QTest::newRow("a folder that is not there") << u"nowhere/doc"_s << ENOENT;
    QTest::newRow("a file for a folder") << u"doc/doc"_s << ENOTDIR;
    QTest::newRow("a name too long") << QString(300, u'n') << ENAMETOOLONG;
    QTest::newRow("a NUL in the name") << QString(u"doc"_s + QChar(0) + u"x"_s) << EINVAL;
    QTest::newRow("more than a file may hold") << u"big"_s << EFBIG;
}

void TestPosixFileStore::whatCannotBeReplacedIsToldAndLeftAlone()
{
    QFETCH(QString, name);
    QFETCH(int, code);
    put(at(u"doc"_s), "old");
    QVERIFY(QDir(m_folder->path()).mkdir(u"folder"_s));
    QCOMPARE(::mkfifo(at(u"pipe"_s).toUtf8().constData(), 0600), 0);
    link(u"pipe"_s, at(u"to-pipe"_s));
    link(u"ring2"_s, at(u"ring"_s));
    link(u"ring"_s, at(u"ring2"_s));
    link(u"nowhere/doc"_s, at(u"to-nowhere"_s));
    const QStringList names = namesIn(m_folder->path());

    PosixFileStore small(3);
    const auto error = small.replace(at(name), code == EFBIG ? "four" : "new");
    QVERIFY(error);
    QCOMPARE(error->code, code);
    QVERIFY(!error->isInPlace());
    QVERIFY(error->path.startsWith(m_folder->path()));
    QVERIFY(error->reason().contains(error->path));
    QCOMPARE(namesIn(m_folder->path()), names);
    QCOMPARE(namesIn(at(u"folder"_s)), QStringList());
    QCOMPARE(contentOf(at(u"doc"_s)), QByteArray("old"));
    QVERIFY(S_ISFIFO(statOf(at(u"pipe"_s)).st_mode));
}

void TestPosixFileStore::aFolderThatTakesNoFileIsToldPlainly()
{
    put(at(u"doc"_s), "old", 0666);
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0555), 0);
    std::optional<FileError> error;
    {
        const AsStranger switched;
        error = m_store.replace(at(u"doc"_s), "new");
    }
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0700), 0);
    QVERIFY(error);
    QCOMPARE(error->code, EACCES);
    QCOMPARE(error->path, m_folder->path());
    QCOMPARE(error->reason(),
             u"The folder “%1” does not let you make a new file in it, and a document is never "
             u"overwritten where it stands. Save it in another folder. This happened while making "
             u"a new file in the folder."_s.arg(m_folder->path()));
    QCOMPARE(contentOf(at(u"doc"_s)), QByteArray("old"));
}

void TestPosixFileStore::aFileThatMayNotBeWrittenIsNotReplaced()
{
    put(at(u"doc"_s), "old", 0444);
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0777), 0);
    std::optional<FileError> error;
    {
        const AsStranger switched;
        error = m_store.replace(at(u"doc"_s), "new");
    }
    QVERIFY(error);
    QCOMPARE(error->code, EACCES);
    QCOMPARE(error->path, at(u"doc"_s));
    QCOMPARE(contentOf(at(u"doc"_s)), QByteArray("old"));
    QCOMPARE(namesIn(m_folder->path()), QStringList {u"doc"_s});
}

void TestPosixFileStore::ownersAreKeptWhereAllowed()
{
    if (::geteuid() != 0) {
        QSKIP("Only the superuser may give files away");
    }
    put(at(u"doc"_s), "old", 0640);
    QCOMPARE(::chown(at(u"doc"_s).toUtf8().constData(), stranger, 4321), 0);
    QVERIFY(!m_store.replace(at(u"doc"_s), "new"));
    QCOMPARE(statOf(at(u"doc"_s)).st_uid, stranger);
    QCOMPARE(statOf(at(u"doc"_s)).st_gid, gid_t(4321));
    QCOMPARE(static_cast<int>(modeOf(at(u"doc"_s))), 0640);
}

void TestPosixFileStore::whereTheOwnerCannotBeKeptNobodyGains_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");

    QTest::newRow("open to all") << 0666 << 0666;
    QTest::newRow("others keep no more than the group had") << 0646 << 0644;
    QTest::newRow("a new group gets no more than others had") << 0676 << 0666;
    QTest::newRow("a former owner gets no more than before") << 0266 << 0222;
    QTest::newRow("what cannot be looked at is nobody else's") << 0662 << 0600;
}

void TestPosixFileStore::whereTheOwnerCannotBeKeptNobodyGains()
{
    if (::geteuid() != 0) {
        QSKIP("Only the superuser can set up a file of another owner");
    }
    QFETCH(int, before);
    QFETCH(int, after);
    put(at(u"doc"_s), "old", static_cast<mode_t>(before));
    QCOMPARE(::chown(at(u"doc"_s).toUtf8().constData(), 4321, 4321), 0);
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0777), 0);
    {
        const AsStranger switched;
        QVERIFY(!m_store.replace(at(u"doc"_s), "new"));
    }
    QCOMPARE(contentOf(at(u"doc"_s)), QByteArray("new"));
    QCOMPARE(statOf(at(u"doc"_s)).st_uid, stranger);
    QCOMPARE(static_cast<int>(modeOf(at(u"doc"_s))), after);
}

void TestPosixFileStore::notesAndAccessListsAreKept()
{
    put(at(u"doc"_s), "old");
    const QByteArray list = listFor(4);
    if (!setAttribute(at(u"doc"_s), "user.note", "mine")
        || !setAttribute(at(u"doc"_s), accessList, list)) {
        QSKIP("This disk keeps no attributes");
    }
    QVERIFY(!m_store.replace(at(u"doc"_s), "new"));
    QCOMPARE(contentOf(at(u"doc"_s)), QByteArray("new"));
    QCOMPARE(attributeOf(at(u"doc"_s), "user.note"), QByteArray("mine"));
    QCOMPARE(attributeOf(at(u"doc"_s), accessList).toHex(), list.toHex());
}

void TestPosixFileStore::theAccessListOfTheFolderIsNotHandedDown()
{
    put(at(u"doc"_s), "old", 0660); // before its folder has the list
    if (!setAttribute(m_folder->path(), defaultList, listFor(6))) {
        QSKIP("This disk keeps no access lists");
    }
    QVERIFY(!m_store.replace(at(u"doc"_s), "new"));
    QCOMPARE(attributeOf(at(u"doc"_s), accessList), QByteArray("(none)"));
    QCOMPARE(static_cast<int>(modeOf(at(u"doc"_s))), 0660);
}

void TestPosixFileStore::aFolderThatShowsNothingTakesADocument()
{
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0333), 0);
    {
        const AsStranger switched;
        QVERIFY(!m_store.replace(at(u"doc"_s), "new"));
    }
    QCOMPARE(::chmod(m_folder->path().toUtf8().constData(), 0700), 0);
    QCOMPARE(namesIn(m_folder->path()), QStringList {u"doc"_s});
}

void TestPosixFileStore::filesAreReadWhole()
{
    const QByteArray content = QByteArray(70000, 'c') + QByteArray("\0end", 4);
    put(at(u"doc"_s), content);
    put(at(u"empty"_s), "");
    link(u"doc"_s, at(u"link"_s));
    QVERIFY(m_store.read(at(u"doc"_s)).data.value() == content);
    QVERIFY(m_store.read(at(u"link"_s)).data.value() == content);
    QCOMPARE(m_store.read(at(u"empty"_s)).data.value(), QByteArray(""));
    PosixFileStore exact(content.size());
    QVERIFY(exact.read(at(u"doc"_s)).data.has_value());
}

void TestPosixFileStore::aStampTellsOneStateOfAFileFromAnother()
{
    link(u"doc"_s, at(u"link"_s));
    QVERIFY(m_store.stamp(at(u"doc"_s)).isMissing() && m_store.stamp(at(u"link"_s)).isMissing());
    put(at(u"file"_s), "x");
    QVERIFY(m_store.stamp(at(u"file/doc"_s)).isMissing());
    QVERIFY(!m_store.stamp(at(QString(300, u'x'))).isMissing()); // who knows

    const auto written = m_store.write(at(u"link"_s), "one").stamp;
    QVERIFY(written);
    QCOMPARE(m_store.stamp(at(u"doc"_s)).stamp, written);
    QCOMPARE(m_store.stamp(at(u"link"_s)).stamp, written);
    QCOMPARE(m_store.read(at(u"doc"_s)).stamp, *written);
    QVERIFY(m_store.write(at(u"doc"_s), "one").stamp != written); // another file of the same bytes
    const auto before = m_store.stamp(at(u"doc"_s)).stamp;
    const std::array<timespec, 2> times {{{0, UTIME_OMIT}, {1000, 1}}};
    QCOMPARE(::utimensat(AT_FDCWD, at(u"doc"_s).toUtf8().constData(), times.data(), 0), 0);
    QVERIFY(m_store.stamp(at(u"doc"_s)).stamp != before);
    QCOMPARE(m_store.stamp(at(u"doc"_s)).stamp->modified, 1'000'000'000'001);
}

void TestPosixFileStore::whatIsNoReadableFileIsTold_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<int>("code");

    QTest::newRow("nothing") << u"nowhere"_s << ENOENT;
    QTest::newRow("a folder") << u"."_s << EISDIR;
    QTest::newRow("a pipe, without waiting for its writer") << u"pipe"_s << ENODEV;
    QTest::newRow("a device without an end") << u"/dev/zero"_s << ENODEV;
    QTest::newRow("a ring of links") << u"ring"_s << ELOOP;
    QTest::newRow("a file that holds more than it says") << u"/proc/self/status"_s << EAGAIN;
    QTest::newRow("a file that is too large") << u"big"_s << EFBIG;
    QTest::newRow("a NUL in the name") << QString(u"big"_s + QChar(0)) << EINVAL;
}

void TestPosixFileStore::whatIsNoReadableFileIsTold()
{
    QFETCH(QString, path);
    QFETCH(int, code);
    put(at(u"big"_s), "twelve bytes");
    QCOMPARE(::mkfifo(at(u"pipe"_s).toUtf8().constData(), 0600), 0);
    link(u"ring"_s, at(u"ring"_s));
    const QString whole = path.startsWith(u'/') ? path : at(path);
    const FileStore::ReadResult result = PosixFileStore(11).read(whole);
    QVERIFY(!result.data);
    QCOMPARE(result.error.code, code);
    QCOMPARE(result.error.path, whole);
    QVERIFY(result.error.reason().contains(whole));
}

void TestPosixFileStore::reasonsAreSentences_data()
{
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("reason");

    QTest::newRow("a full disk")
        << ENOSPC << QString(filestep::writing)
        << u"There is not enough free space on the disk of “/a/%2”. This happened while writing "
           u"the new file."_s;
    QTest::newRow("bytes that do not come back")
        << 0 << QString(filestep::readingBack)
        << u"What “/a/%2” holds is not what was written: the disk may be failing. This happened "
           u"while reading the new file back."_s;
    QTest::newRow("a code without a sentence of ours")
        << EDOM << QString(filestep::writing)
        << u"“/a/%2”: Numerical argument out of domain. This happened while writing the new "
           u"file."_s;
    QTest::newRow("content in place that may not last")
        << EIO << QString(filestep::flushingFolder)
        << u"The disk reported an error at “/a/%2”. This happened while bringing the folder to "
           u"the disk. The new content is in its place, but it is not certain to outlive a power "
           u"cut. Save again."_s;
}

void TestPosixFileStore::reasonsAreSentences()
{
    QFETCH(int, code);
    QFETCH(QString, step);
    const FileError error {code, step, u"/a/%2"_s};
    QTEST(error.reason(), "reason");
}

QTEST_GUILESS_MAIN(TestPosixFileStore)
#include "tst_posixfilestore.moc"
