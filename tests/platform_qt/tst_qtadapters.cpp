#include "platform_qt/qtfontmanager.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qttimers.h"
#include "platform_qt/qtworkspace.h"

#include <QDesktopServices>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

class QtAdaptersTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFontIsThereByItsNameOrAnAlias_data();
    void aFontIsThereByItsNameOrAnAlias();
    void operationsRunInOrderOnALaterTurn();
    void aQueueThatDiesRunsNothingMore();
    void aTimerFiresOnceUnlessItIsTakenOff();
    void aTimerMayBeDestroyedByItsOwnBlock();
    void onlyHarmlessAddressesAreOpened_data();
    void onlyHarmlessAddressesAreOpened();
    void aLinkedFileIsOpenedUnlessItCouldRun_data();
    void aLinkedFileIsOpenedUnlessItCouldRun();

public Q_SLOTS:

    void recordUrl(const QUrl &url) { m_opened = url; }

private:
    QUrl m_opened;
};

void QtAdaptersTest::aFontIsThereByItsNameOrAnAlias_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("available");
    QTest::newRow("an installed family") << u"DejaVu Sans"_s << true;
    QTest::newRow("in another case") << u"dejavu sans"_s << true;
    QTest::newRow("a metric alias") << u"Helvetica"_s << true;
    QTest::newRow("an unknown name") << u"No Such Font 123"_s << false;
    QTest::newRow("an empty name") << u""_s << false;
    QTest::newRow("pattern characters of fontconfig") << u"DejaVu Sans:bold-12"_s << false;
}

void QtAdaptersTest::aFontIsThereByItsNameOrAnAlias()
{
    QFETCH(QString, name);
    QFETCH(bool, available);
    const QtFontManager fonts;
    if (available && name == "Helvetica"_L1 && !fonts.fontWithName(u"Nimbus Sans"_s, 12)
        && !fonts.fontWithName(u"Liberation Sans"_s, 12)) {
        QSKIP("no metric-compatible family is installed");
    }
    QCOMPARE(fonts.fontWithName(name, 12.5),
             available ? std::optional(NSFont {name, 12.5}) : std::nullopt);
}

void QtAdaptersTest::operationsRunInOrderOnALaterTurn()
{
    QtOperationQueue queue;
    QList<int> ran;
    queue.addOperation([&] {
        ran.append(1);
        queue.addOperation([&ran] { ran.append(3); });
        QCOMPARE(ran, QList<int> {1});
    });
    queue.addOperation([&ran] { ran.append(2); });
    QVERIFY(ran.isEmpty());
    QTRY_COMPARE(ran, QList<int>({1, 2, 3}));
}

void QtAdaptersTest::aQueueThatDiesRunsNothingMore()
{
    bool ran = false;
    bool turned = false;
    auto queue = std::make_unique<QtOperationQueue>();
    queue->addOperation([&ran] { ran = true; });
    queue.reset();
    QtOperationQueue other;
    other.addOperation([&turned] { turned = true; });
    QTRY_VERIFY(turned);
    QVERIFY(!ran);
}

void QtAdaptersTest::aTimerFiresOnceUnlessItIsTakenOff()
{
    QtTimers timers;
    int fired = 0;
    int takenOff = 0;
    const auto invalidated = timers.scheduledTimer(0, [&takenOff] { ++takenOff; });
    invalidated->invalidate();
    (void)timers.scheduledTimer(0, [&takenOff] { ++takenOff; }); // dies at once
    const auto never = timers.scheduledTimer(1e300, [&takenOff] { ++takenOff; });
    const auto negative = timers.scheduledTimer(-5, [&fired] { ++fired; });
    const auto timer = timers.scheduledTimer(0.01, [&fired] { ++fired; });
    QTRY_COMPARE(fired, 2);
    QCOMPARE(takenOff, 0);
}

void QtAdaptersTest::aTimerMayBeDestroyedByItsOwnBlock()
{
    QtTimers timers;
    std::unique_ptr<NSTimer> timer;
    QString text;
    timer = timers.scheduledTimer(0, [&timer, &text, kept = u"still there"_s] {
        timer.reset();
        text = kept;
    });
    QTRY_COMPARE(text, u"still there"_s);
}

void QtAdaptersTest::onlyHarmlessAddressesAreOpened_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<bool>("opened");
    QTest::newRow("http") << u"http://example.org/"_s << true;
    QTest::newRow("https in capitals") << u"HTTPS://example.org/a?b#c"_s << true;
    QTest::newRow("mail") << u"mailto:somebody@example.org"_s << true;
    QTest::newRow("a file") << u"file:///etc/passwd"_s << false;
    QTest::newRow("a path") << u"/etc/passwd"_s << false;
    QTest::newRow("a script") << u"javascript:alert(1)"_s << false;
    QTest::newRow("nothing") << u""_s << false;
}

void QtAdaptersTest::onlyHarmlessAddressesAreOpened()
{
    QFETCH(QString, address);
    QFETCH(bool, opened);
    const QUrl url(address);
    m_opened.clear();
    for (const QString &scheme : {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s, u"javascript"_s}) {
        QDesktopServices::setUrlHandler(scheme, this, "recordUrl");
    }
    QCOMPARE(QtWorkspace().openURL(url), opened);
    QCOMPARE(m_opened, opened ? url : QUrl());
    for (const QString &scheme : {u"http"_s, u"https"_s, u"mailto"_s, u"file"_s, u"javascript"_s}) {
        QDesktopServices::unsetUrlHandler(scheme);
    }
}

void QtAdaptersTest::aLinkedFileIsOpenedUnlessItCouldRun_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("executable");
    QTest::addColumn<bool>("opened");
    QTest::newRow("a text") << u"a.txt"_s << false << true;
    QTest::newRow("a program") << u"a.txt"_s << true << false;
    QTest::newRow("a starter of the desktop") << u"a.Desktop"_s << false << false;
    QTest::newRow("a script") << u"a.sh"_s << false << false;
    QTest::newRow("none") << u""_s << false << false;
}

void QtAdaptersTest::aLinkedFileIsOpenedUnlessItCouldRun()
{
    QFETCH(QString, name);
    QFETCH(bool, executable);
    QFETCH(bool, opened);
    const QTemporaryDir folder;
    const QString path = folder.filePath(name.isEmpty() ? u"nothing.txt"_s : name);
    const QString alias = folder.filePath(u"alias.txt"_s);
    if (QFile file(path); !name.isEmpty()) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.setPermissions(QFile::ReadOwner | (executable ? QFile::ExeOwner : QFile::WriteOwner));
    }
    QVERIFY(QFile::link(path, alias));
    QDesktopServices::setUrlHandler(u"file"_s, this, "recordUrl");
    for (const QString &asked : {path, alias}) {
        m_opened.clear();
        QCOMPARE(QtWorkspace().openLinkedFile(asked), opened);
        QCOMPARE(m_opened.isEmpty(), !opened);
    }
    QDesktopServices::unsetUrlHandler(u"file"_s);
}

QTEST_MAIN(QtAdaptersTest)
#include "tst_qtadapters.moc"
