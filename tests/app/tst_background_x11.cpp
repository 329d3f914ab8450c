#include "app/desktop.h"
#include "shell/delegateworld.h"

#include <QApplication>
#include <QProcess>
#include <QTest>
#include <QWidget>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

constexpr const char *otherMark = "QUORVANE_OTHER_WINDOW";

} // namespace

/// What only a window manager shows: that the application goes to the background and comes back.
class TestBackground : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anotherWindowSavesAndArmsTheLock();
};

void TestBackground::anotherWindowSavesAndArmsTheLock()
{
    DelegateWorld program;
    auto &[world, timers, access, loader, background, phoneHome, documents, delegate] = program;
    world.defaults.setObject(settings::autolocBackgroundEnabled.name, true);
    documents.newDocument();
    auto *document = static_cast<MyDocument *>(documents.documents().front());
    document->setPlainPassword(u"password"_s);
    document->setFileURL(u"/documents/a.quorvane"_s);
    document->setMyTextViewData("body");
    BusConnector sessionBus(QDBusConnection::SessionBus);
    Desktop desktop(sessionBus);
    const auto nothing = [] {
    };
    const auto begin = [](const std::function<void()> &) {
    };
    desktop.serve({documents, delegate, world.defaults, world.queue, begin, nothing, nothing});

    QWidget window;
    window.setGeometry(100, 100, 300, 200);
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QCOMPARE(timers.scheduledCount(), 0);

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QString::fromLatin1(otherMark), u"1"_s);
    for (int spell = 1; spell <= 2; ++spell) {
        document->updateChangeCount(NSDocumentChangeType::Done);
        QProcess other;
        other.setProcessEnvironment(environment);
        other.start(QCoreApplication::applicationFilePath(), QStringList());
        QTRY_COMPARE(timers.scheduledCount(), 1);
        QCOMPARE(world.files.replaces, spell);
        QVERIFY(!document->isDocumentEdited());
        if (spell == 2) {
            timers.advance(120); // it stays away
        }
        other.kill();
        other.waitForFinished();
        window.activateWindow();
        QTRY_COMPARE(timers.scheduledCount(), 0);
        QTRY_VERIFY(window.isActiveWindow());
    }
    world.queue.runAll();
    QVERIFY(document->isEncrypted());
}

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (qEnvironmentVariableIsSet(otherMark)) {
        QWidget window;
        window.setGeometry(500, 100, 300, 200);
        window.show();
        window.activateWindow();
        return QApplication::exec();
    }
    TestBackground test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_background_x11.moc"
