#include "shell/delegateworld.h"
#include "shell/qvbookmark.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString selectAFile = u"Please select a file or change startup option"_s;
const QString before = u"before"_s;

/// A program whose startup action is a document, and the document's file.
struct Startup : DelegateWorld
{
    Startup()
    {
        world.defaults.setObject(settings::startupActionTag.name, 3);
        delegate.setStartupDocPathMessageString(before);
        place(path);
        world.defaults.setObject(settings::startupSelectedDocBookmark,
                                 QVBookmark::bookmarkForURL_RW(path).value_or(QByteArray()));
    }

    void place(const QString &at)
    {
        static const QByteArray content = fileOf(world, "text", u"password"_s);
        QFile file(at);
        QVERIFY(file.exists() || file.open(QIODevice::WriteOnly));
        world.files.files.insert(at, content);
    }

    void move()
    {
        QVERIFY(QFile::rename(path, moved));
        place(moved);
    }

    QByteArray bookmark() const
    {
        return world.defaults.objectForKey(settings::startupSelectedDocBookmark).toByteArray();
    }

    QString openFile() const
    {
        const auto open = documents.documents();
        return open.empty() ? QString() : open.front()->fileURL().value_or(QString());
    }

    void perform(const QString &operation)
    {
        if (operation == "start"_L1) {
            delegate.executeDocumentStartupAsInPref();
        } else if (operation == "test"_L1) {
            delegate.testOpenStartupDoc();
        } else {
            delegate.showInFinderStartupDoc();
        }
    }

    QTemporaryDir folder;
    QString path = folder.filePath(u"a.quorvane"_s);
    QString moved = folder.filePath(u"b.quorvane"_s);
};

} // namespace

class TestStartupDocument : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theWindowClaimsNothingAndADocumentAtLaunch();
    void eachOperationFollowsTheFile_data();
    void eachOperationFollowsTheFile();
    void aMissingDocumentIsToldOnALaterTurn_data();
    void aMissingDocumentIsToldOnALaterTurn();
    void aRefusedDocumentIsToldAtOnce();
    void choosingAndClearingAreWritten();
    void aProgramThatServesAnotherOpensNothingItself();
    void onlyAFileThatCanBeReadGivesAccess();
};

void TestStartupDocument::theWindowClaimsNothingAndADocumentAtLaunch()
{
    const DelegateWorld program;
    QCOMPARE(program.delegate.StartupDocPathMessageString(), u""_s);
    QVERIFY(program.delegate.StartupDocSpecified());
    QCOMPARE(program.delegate.allowedStartupDocExtensions(), QStringList(u"quorvane"_s));
}

void TestStartupDocument::eachOperationFollowsTheFile_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<bool>("isMoved");
    QTest::addColumn<QString>("calls");
    QTest::addColumn<QString>("status");
    const QString renewed = u"Bookmark renewed"_s;
    QTest::newRow("a start opens it") << u"start"_s << false << u"start stop"_s << before;
    QTest::newRow("a start renews the bookmark of a moved one")
        << u"start"_s << true << u"start stop start stop"_s << renewed;
    QTest::newRow("a test opens it") << u"test"_s << false << u"start stop"_s << before;
    QTest::newRow("a test leaves two accesses open after a renewal")
        << u"test"_s << true << u"start start start stop"_s << renewed;
    QTest::newRow("showing takes no access") << u"show"_s << false << u""_s << before;
    QTest::newRow("showing leaves two accesses open after a renewal")
        << u"show"_s << true << u"start start"_s << renewed;
}

void TestStartupDocument::eachOperationFollowsTheFile()
{
    QFETCH(QString, operation);
    QFETCH(bool, isMoved);
    Startup program;
    if (isMoved) {
        program.move();
    }
    const QString expected = isMoved ? program.moved : program.path;
    const QByteArray old = program.bookmark();
    program.perform(operation);
    QCOMPARE(operation == "show"_L1 ? program.world.workspace.selectedFiles.value(0)
                                    : program.openFile(),
             expected);
    QTEST(program.access.calls.join(u' '), "calls");
    QTEST(program.delegate.StartupDocPathMessageString(), "status");
    QCOMPARE(program.bookmark() != old, isMoved);
    bool isStale = true;
    QCOMPARE(QVBookmark::urlForBookmark(program.bookmark(), isStale), std::optional(expected));
    QVERIFY(!isStale && program.world.alerts.shown.isEmpty());
}

void TestStartupDocument::aMissingDocumentIsToldOnALaterTurn_data()
{
    QTest::addColumn<QVariant>("bookmark");
    QTest::newRow("none was ever chosen") << QVariant();
    QTest::newRow("it was cleared") << QVariant(QByteArray());
    QTest::newRow("it leads nowhere") << QVariant(QByteArray("no bookmark"));
}

void TestStartupDocument::aMissingDocumentIsToldOnALaterTurn()
{
    QFETCH(QVariant, bookmark);
    Startup program;
    program.world.defaults.setObject(settings::startupSelectedDocBookmark, bookmark);
    for (const QString &quiet : {u"test"_s, u"show"_s}) {
        program.perform(quiet);
        QCOMPARE(program.delegate.StartupDocPathMessageString(), before);
    }
    program.perform(u"start"_s);
    QVERIFY(program.world.alerts.shown.isEmpty());
    QVERIFY(program.world.queue.runOne());
    const NSAlert told {u"Preference was set to open at startup a document without specifying it"_s,
                        u"You can fix the problem in the preferences"_s,
                        {u"Open Preferences"_s, u"Cancel"_s}};
    QCOMPARE(program.world.alerts.shown, QList<NSAlert>({told}));
    QCOMPARE(program.delegate.StartupDocPathMessageString(), selectAFile);
    QVERIFY(!program.delegate.StartupDocSpecified() && program.access.calls.isEmpty());
}

void TestStartupDocument::aRefusedDocumentIsToldAtOnce()
{
    Startup program;
    program.access.gives = false;
    program.perform(u"test"_s);
    QVERIFY(program.world.alerts.shown.isEmpty());
    program.delegate.setStartupDocSpecified(false);
    const QByteArray bookmark = program.bookmark();
    program.perform(u"start"_s);
    const NSAlert told {
        u"The system is negating the access to the document selected to be opened at startup"_s,
        u"It must be selected in the preferences or the startup action must be changed"_s,
        {u"Open Preferences"_s, u"Cancel"_s}};
    QCOMPARE(program.world.alerts.shown, QList<NSAlert>({told}));
    QCOMPARE(program.delegate.StartupDocPathMessageString(),
             u"Not valid Startup Document selected. Please re-select"_s);
    QVERIFY(program.delegate.StartupDocSpecified() && program.openFile().isEmpty());
    QCOMPARE(program.bookmark(), bookmark);
}

void TestStartupDocument::choosingAndClearingAreWritten()
{
    Startup program;
    const QSignalSpy messages(&program.delegate,
                              &QVAppDelegateBase::StartupDocPathMessageStringChanged);
    const QSignalSpy specified(&program.delegate, &QVAppDelegateBase::StartupDocSpecifiedChanged);
    program.delegate.clearStartupSelectedDoc();
    const QVariant cleared =
        program.world.defaults.objectForKey(settings::startupSelectedDocBookmark);
    QVERIFY(cleared.isValid() && cleared.toByteArray().isEmpty());
    QCOMPARE(program.delegate.StartupDocPathMessageString(), selectAFile);
    QVERIFY(!program.delegate.StartupDocSpecified());
    QCOMPARE(program.world.defaults.value(settings::startupActionTag), 3);
    QCOMPARE(messages.size() + specified.size(), 2);
    program.delegate.UseFrontDocumentAsStartupDoc();
    QVERIFY(program.bookmark().isEmpty());
}

void TestStartupDocument::aProgramThatServesAnotherOpensNothingItself()
{
    Startup program;
    QVERIFY(program.delegate.doCreateDocWithText(std::nullopt));
    program.perform(u"start"_s);
    QVERIFY(program.openFile().isEmpty() && program.access.calls.isEmpty());
    program.perform(u"test"_s);
    QCOMPARE(program.openFile(), program.path);
}

void TestStartupDocument::onlyAFileThatCanBeReadGivesAccess()
{
    Startup program;
    FileModeAccess access;
    QVERIFY(access.startAccessingSecurityScopedResource(program.path));
    QVERIFY(!access.startAccessingSecurityScopedResource(program.moved));
    QVERIFY(!access.startAccessingSecurityScopedResource(program.folder.path()));
}

QTEST_GUILESS_MAIN(TestStartupDocument)
#include "tst_startupdocument.moc"
