#include "product/qvappsupportutility.h"
#include "support/recordingworkspace.h"
#include "support/scriptedalerts.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

class TestQVAppSupportUtility : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pagesAreOpened_data();
    void pagesAreOpened();
    void theSupportMailHasAnEncodedSubject();
    void aNewerDataFileLeadsToTheHomePageOnDemand();
};

void TestQVAppSupportUtility::pagesAreOpened_data()
{
    using Operation = void (*)(NSWorkspace &);
    QTest::addColumn<Operation>("open");
    QTest::addColumn<QString>("address");
    QTest::newRow("home") << Operation(QVAppSupportUtility::visitUs)
                          << u"http://www.orbelt.example/"_s;
    QTest::newRow("home by its other name")
        << Operation(QVAppSupportUtility::visitArdelis) << u"http://www.orbelt.example/"_s;
    QTest::newRow("the product") << Operation(QVAppSupportUtility::visitAppUrl)
                                 << u"http://www.orbelt.example/osx/quorvane"_s;
    QTest::newRow("Twitter") << Operation(QVAppSupportUtility::visitTwitter)
                             << u"http://twitter.example/orbelt"_s;
}

void TestQVAppSupportUtility::pagesAreOpened()
{
    using Operation = void (*)(NSWorkspace &);
    QFETCH(const Operation, open);
    QFETCH(const QString, address);
    RecordingWorkspace workspace;
    open(workspace);
    QCOMPARE(workspace.opened, QList<QUrl> {QUrl(address)});
}

void TestQVAppSupportUtility::theSupportMailHasAnEncodedSubject()
{
    RecordingWorkspace workspace;
    QVAppSupportUtility::emailArdelis(workspace);
    const QString mail = QString::fromLatin1(workspace.opened.value(0).toEncoded());
    const QString start =
        u"mailto:support@orbelt.example?subject=Support%20Request%20for%20Quorvane%20rel.%202.6.1%20-%20macOS%20"_s;
    QVERIFY2(mail.startsWith(start) && mail.size() > start.size(), qPrintable(mail));
}

void TestQVAppSupportUtility::aNewerDataFileLeadsToTheHomePageOnDemand()
{
    ScriptedAlerts alerts;
    RecordingWorkspace workspace;
    QList<bool> answers;
    for (const AlertAnswer answer : {AlertAnswer::Second, AlertAnswer::First}) {
        alerts.answers = {answer};
        QVAppSupportUtility::dataIn_ApplicationSupportFolder_CreatedWithANewerVersion(
            alerts, workspace, [&answers](bool pressed) { answers << pressed; });
    }
    QCOMPARE(answers, (QList<bool> {false, true}));
    QCOMPARE(workspace.opened.size(), 1);
    QVERIFY(alerts.shown[0].messageText.startsWith(u"Data file the software tryed to open"_s));
}

QTEST_GUILESS_MAIN(TestQVAppSupportUtility)
#include "tst_qvappsupportutility.moc"
