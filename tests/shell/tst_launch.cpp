#include "product/qvappsupportutility.h"
#include "shell/delegateworld.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

struct Launch : DelegateWorld
{
    explicit Launch(qint64 startupAction)
    {
        world.defaults.setObject(settings::startupActionTag.name, startupAction);
    }
};

} // namespace

class TestLaunch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void releaseNumbersHaveADisplayForm_data();
    void releaseNumbersHaveADisplayForm();
    void sixteenDefaultsAreRegistered();
    void theStartupActionRunsASecondAfterTheLaunch_data();
    void theStartupActionRunsASecondAfterTheLaunch();
    void aDocumentThatHasComeByThenWins();
    void anOpeningDocumentHoldsTheFallbackBack();
    void theUpdateInvitationHoldsTheStartupActionBack();
    void aFileThatIsOpenIsBroughtForwardByAnyOfItsPaths();
    void aDocumentIsNotSavedOverOneThatIsOpen();
    void aPathLeadsWhereTheSystemLeadsIt();
    void aFileThatDoesNotOpenIsToldWithItsName_data();
    void aFileThatDoesNotOpenIsToldWithItsName();
    void quittingReviewsTheEditedDocuments_data();
    void quittingReviewsTheEditedDocuments();
};

void TestLaunch::releaseNumbersHaveADisplayForm_data()
{
    QTest::addColumn<qint64>("release");
    QTest::addColumn<QString>("display");
    const std::pair<qint64, QString> rows[] = {
        {20601, u"2.6.1"_s},   {20600, u"2.6"_s},   {20000, u"2.0"_s},   {21012, u"2.10.12"_s},
        {120601, u"12.6.1"_s}, {1234, u"1.2.34"_s}, {1201, u"1.2.01"_s}, {1200, u"1.2.00"_s},
        {999, u""_s},          {0, u""_s}};
    for (const auto &[release, display] : rows) {
        QTest::addRow("%lld", release) << release << display;
    }
}

void TestLaunch::releaseNumbersHaveADisplayForm()
{
    QFETCH(qint64, release);
    QTEST(QVAppSupportUtility::calcReleaseString(release), "display");
}

void TestLaunch::sixteenDefaultsAreRegistered()
{
    const QVariantMap registered = settings::registeredDefaults();
    QCOMPARE(registered.size(), 16);
    QCOMPARE(registered.value(u"StartupFontFamily"_s).toString(), u"Helvetica"_s);
    QCOMPARE(registered.value(u"StartupFontSize"_s).toDouble(), 12.0);
    QCOMPARE(registered.value(u"autolocBackgroundInterval"_s).toInt(), 120);
    QCOMPARE(registered.value(u"StartWithSpelling"_s).toBool(), true);
}

void TestLaunch::theStartupActionRunsASecondAfterTheLaunch_data()
{
    QTest::addColumn<qint64>("action");
    QTest::addColumn<bool>("startsUntitled");
    QTest::addColumn<QString>("afterOneSecond");
    QTest::addColumn<QString>("afterTwoSeconds");
    QTest::newRow("a new document") << qint64(0) << true << u""_s << u"document"_s;
    QTest::newRow("an open panel, if nothing is open") << qint64(1) << false << u""_s << u"panel"_s;
    QTest::newRow("an open panel at once") << qint64(2) << false << u"panel"_s << u"panel"_s;
    QTest::newRow("a number that means nothing") << qint64(7) << false << u""_s << u""_s;
    QTest::newRow("a negative number") << qint64(-1) << false << u""_s << u""_s;
}

void TestLaunch::theStartupActionRunsASecondAfterTheLaunch()
{
    QFETCH(qint64, action);
    Launch launch(action);
    const auto seen = [&launch] {
        return !launch.world.panels.opened.isEmpty() ? u"panel"_s
            : !launch.documents.documents().empty()  ? u"document"_s
                                                     : u""_s;
    };
    QTEST(launch.delegate.applicationShouldOpenUntitledFile(), "startsUntitled");
    launch.delegate.applicationDidFinishLaunching();
    launch.timers.advance(0.9);
    QCOMPARE(seen(), u""_s);
    launch.timers.advance(0.1);
    QTEST(seen(), "afterOneSecond");
    launch.timers.advance(1.0);
    QTEST(seen(), "afterTwoSeconds");
}

void TestLaunch::aDocumentThatHasComeByThenWins()
{
    for (const qint64 action : {0, 1}) {
        Launch launch(action);
        launch.delegate.applicationDidFinishLaunching();
        launch.timers.advance(1.5);
        launch.documents.newDocument();
        launch.timers.advance(1.0);
        QCOMPARE(launch.documents.documents().size(), std::size_t(1));
        QVERIFY(launch.world.panels.opened.isEmpty());
    }
}

void TestLaunch::anOpeningDocumentHoldsTheFallbackBack()
{
    Launch launch(0);
    launch.delegate.setDocumentIsOpening(true);
    launch.delegate.applicationDidFinishLaunching();
    launch.timers.advance(3.0);
    QVERIFY(launch.documents.documents().empty());
}

void TestLaunch::theUpdateInvitationHoldsTheStartupActionBack()
{
    Launch launch(2);
    launch.world.defaults.setObject(settings::notifyUpdate.name, false);
    launch.delegate.applicationDidFinishLaunching();
    QCOMPARE(launch.loader.asked.size(), 4);
    QVERIFY(launch.loader.asked[3].endsWith(u".example/mac/quorvane.plist"_s));
    launch.timers.advance(3.0);
    QVERIFY(launch.world.panels.opened.isEmpty() && !launch.delegate.finishedLaunching());
    QVERIFY(launch.world.alerts.answer(AlertAnswer::Third));
    QVERIFY(launch.delegate.finishedLaunching());
    launch.timers.advance(1.0);
    QCOMPARE(launch.world.panels.opened.size(), 1);
}

void TestLaunch::aFileThatIsOpenIsBroughtForwardByAnyOfItsPaths()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(u"a.quorvane"_s);
    const QString link = folder.filePath(u"link.quorvane"_s);
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    QVERIFY(QFile::link(path, link));
    Launch launch(0);
    const QByteArray data = fileOf(launch.world, "text", u"password"_s);
    launch.world.files.files = {{path, data}, {link, data}};
    NSDocument *opened = nullptr;
    launch.documents.openDocumentWithContentsOfURL(path, [&](NSDocument *document, bool wasOpen) {
        opened = document;
        QVERIFY(!wasOpen);
    });
    for (const QString &again : {path, link, folder.filePath(u"./a.quorvane"_s)}) {
        launch.documents.openDocumentWithContentsOfURL(again,
                                                       [&](NSDocument *document, bool wasOpen) {
                                                           QCOMPARE(document, opened);
                                                           QVERIFY(wasOpen);
                                                       });
    }
    QCOMPARE(launch.documents.documents().size(), std::size_t(1));
}

void TestLaunch::aDocumentIsNotSavedOverOneThatIsOpen()
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"a.quorvane"_s);
    QVERIFY(QFile(path).open(QIODevice::WriteOnly));
    Launch launch(0);
    launch.world.files.files = {{path, fileOf(launch.world, "text", u"password"_s)}};
    launch.documents.openDocumentWithContentsOfURL(path);
    launch.documents.newDocument();
    auto *second = static_cast<MyDocument *>(launch.documents.documents().back());
    second->setPlainPassword(u"password"_s);
    second->setFileURL(path);
    bool isSaved = true;
    second->NSDocument::saveDocument([&isSaved](bool saved) { isSaved = saved; });
    QVERIFY(!isSaved);
    QCOMPARE(launch.world.files.replaces, 0);
}

void TestLaunch::aPathLeadsWhereTheSystemLeadsIt()
{
    const QTemporaryDir folder;
    const QDir root(folder.path());
    QVERIFY(root.mkpath(u"here"_s) && root.mkpath(u"other/inner"_s));
    QVERIFY(QFile::link(root.filePath(u"other/inner"_s), root.filePath(u"here/link"_s)));
    Launch launch(0);
    launch.documents.newDocument();
    NSDocument *document = launch.documents.documents().front();
    document->setFileURL(root.filePath(u"here/link/../a.quorvane"_s));
    QCOMPARE(document->fileURL(),
             std::optional(QDir(root.canonicalPath()).filePath(u"other/a.quorvane"_s)));
}

void TestLaunch::aFileThatDoesNotOpenIsToldWithItsName_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<bool>("exists");
    QTest::newRow("a file that is not there") << QByteArray() << false;
    QTest::newRow("a file that is no document") << QByteArray("plain text") << true;
    QTest::newRow("an empty file") << QByteArray() << true;
}

void TestLaunch::aFileThatDoesNotOpenIsToldWithItsName()
{
    QFETCH(QByteArray, content);
    QFETCH(bool, exists);
    Launch launch(0);
    if (exists) {
        launch.world.files.files.insert(u"/documents/b.quorvane"_s, content);
    }
    bool isTold = false;
    launch.documents.openDocumentWithContentsOfURL(u"/documents/b.quorvane"_s,
                                                   [&](NSDocument *document, bool) {
                                                       QVERIFY(!document);
                                                       isTold = true;
                                                   });
    QVERIFY(isTold && launch.documents.documents().empty());
    QCOMPARE(launch.world.alerts.shown.size(), 1);
    QCOMPARE(launch.world.alerts.shown.first().messageText, u"“b.quorvane” could not be opened."_s);
    QVERIFY(launch.world.alerts.shown.first().informativeText.contains(u"/documents/b.quorvane"_s));
}

void TestLaunch::quittingReviewsTheEditedDocuments_data()
{
    QTest::addColumn<bool>("agrees");
    QTest::newRow("all agree: everything closes") << true;
    QTest::newRow("one cancels: what is left stays open") << false;
}

void TestLaunch::quittingReviewsTheEditedDocuments()
{
    QFETCH(bool, agrees);
    Launch launch(0);
    World &world = launch.world;
    QList<Outlets *> outlets;
    NSDocumentController documents(world.surroundings().machinery, world.alerts, documentExtension,
                                   [&] {
                                       MyDocumentSurroundings surroundings = world.surroundings();
                                       surroundings.loadNib = [&](MyDocument &made) {
                                           auto controller = std::make_unique<Outlets>(world.queue);
                                           controller->connectTo(made);
                                           outlets << controller.get();
                                           return controller;
                                       };
                                       return std::make_unique<MyDocument>(surroundings);
                                   });
    // One locked while edited, one untouched, one edited.
    for (int i = 0; i < 3; ++i) {
        documents.newDocument();
    }
    auto *locked = static_cast<MyDocument *>(documents.documents()[0]);
    locked->setPlainPassword(u"password"_s);
    locked->updateChangeCount(NSDocumentChangeType::Done);
    locked->doLockDocument();
    documents.documents()[2]->updateChangeCount(NSDocumentChangeType::Done);
    std::optional<bool> closed;
    documents.closeAllDocuments([&closed](bool all) { closed = all; });
    QCOMPARE(documents.documents().size(), std::size_t(2));
    QVERIFY(!closed);
    outlets[2]->window.answer(agrees ? AlertAnswer::Second : AlertAnswer::Third);
    QCOMPARE(closed, std::optional(agrees));
    QCOMPARE(documents.documents().size(), std::size_t(agrees ? 0 : 2));
}

QTEST_GUILESS_MAIN(TestLaunch)
#include "tst_launch.moc"
