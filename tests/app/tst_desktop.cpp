#include "app/drivenprogram.h"
#include "app/windowprogram.h"
#include "document/documentfixture.h"
#include "platform_qt/dbusapplication.h"
#include "product/release.h"
#include "support/privatebus.h"

#include <QApplication>
#include <QDBusVariant>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <memory>
#include <tuple>

#include <sys/types.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

const QString password = u"correct horse"_s;
const QString path = u"/com/orbelt/Quorvane"_s;
const QString mute = u"com.orbelt.Mute"_s;

bool write(const QString &file, const QByteArray &data)
{
    QFile written(file);
    return written.open(QIODevice::WriteOnly) && written.write(data) == data.size();
}

/// What stands in the clear in the document's file.
QByteArray bodyOf(const QString &file)
{
    World world;
    MyDocument document(world.surroundings());
    QFile read(file);
    if (!read.open(QIODevice::ReadOnly) || !document.readFromData(read.readAll())) {
        return "not read";
    }
    document.setPlainPassword(password);
    return document.Decript() == 0 ? document.myTextViewData().value_or("nothing")
                                   : "not decrypted";
}

} // namespace

/// A program that takes calls and never answers.
class Mute final : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public Q_SLOTS:

    Q_SCRIPTABLE void Activate(const QVariantMap &) { setDelayedReply(true); }
};

/// The program among others: real processes on a bus of their own.
class TestDesktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void aSignalSavesAndEnds_data();
    void aSignalSavesAndEnds();
    void aSecondStartHandsItsFilesOver_data();
    void aSecondStartHandsItsFilesOver();
    void aSecondStartWithoutFilesBringsTheFirstForward();
    void anActionComesByTheBusOrAsAnOption_data();
    void anActionComesByTheBusOrAsAnOption();
    void theBusStartsTheProgramForACall_data();
    void theBusStartsTheProgramForACall();
    void anotherProgramGetsAnEmptyDocument_data();
    void anotherProgramGetsAnEmptyDocument();
    void aScriptedPasswordUnlocksNothing();
    void whatCannotBeServedIsRefused();
    void withoutABusEachStartIsAProgram();
    void aBusThatHangsHoldsNobodyUp();
    void anOwnerThatDoesNotServeIsLeftAlone();
    void anOwnerThatDoesNotAnswerIsNotWaitedForLong();
    void theLockOfTheScreenReachesTheDocument();

private:
    QString file(const QString &name) const { return QDir(m_folder->path()).filePath(name); }

    QDBusMessage call(const QString &method, const QVariantList &arguments,
                      const QString &interface = u"org.freedesktop.Application"_s) const;

    PrivateBus m_bus;
    std::unique_ptr<QTemporaryDir> m_folder;
    QByteArray m_data;
};

void TestDesktop::initTestCase()
{
    World world;
    m_data = fileOf(world, "body", password);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
}

void TestDesktop::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_bus.address());
    qputenv("XDG_CONFIG_HOME", file(u"config"_s).toUtf8());
    qputenv("XDG_STATE_HOME", file(u"state"_s).toUtf8());
    QVERIFY(write(file(u"a.quorvane"_s), m_data));
}

void TestDesktop::cleanup()
{
    QDBusConnection::disconnectFromBus(u"caller"_s);
}

QDBusMessage TestDesktop::call(const QString &method, const QVariantList &arguments,
                               const QString &interface) const
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(QString(applicationId), path, interface, method);
    message.setArguments(arguments);
    return m_bus.connectAs(u"caller"_s).call(message);
}

void TestDesktop::aSignalSavesAndEnds_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<bool>("canSave");
    QTest::addColumn<int>("exitCode");
    QTest::newRow("the end of the session") << SIGTERM << true << 0;
    QTest::newRow("the terminal is gone") << SIGHUP << true << 0;
    QTest::newRow("an interrupt") << SIGINT << true << 0;
    QTest::newRow("what could not be saved is told") << SIGTERM << false << 128 + SIGTERM;
}

void TestDesktop::aSignalSavesAndEnds()
{
    QFETCH(int, number);
    QFETCH(bool, canSave);
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.tell(u"unlock"_s, password), u"open"_s);
    QCOMPARE(program.tell(u"type"_s, u"edited "_s), u"open"_s);
    if (!canSave) {
        QVERIFY(QDir(m_folder->path()).removeRecursively());
    }
    QCOMPARE(kill(static_cast<pid_t>(program.id()), number), 0);
    QTEST(program.exitCode(), "exitCode");
    if (canSave) {
        QCOMPARE(bodyOf(file(u"a.quorvane"_s)).contains("edited body"), true);
    }
}

void TestDesktop::aSecondStartHandsItsFilesOver_data()
{
    QTest::addColumn<QString>("argument");
    QTest::addColumn<QString>("title");
    const QString names[] = {u"plain"_s, u"two words"_s, u"50%25 #1?"_s,
                             u"Gr\u00fc\u00dfe \u4e2d"_s, u"semi;colon&amp"_s};
    for (const QString &name : names) {
        QTest::addRow("%s", qPrintable(name)) << name + u".quorvane"_s << name;
    }
    QTest::newRow("a path behind a link") << u"link/../up.quorvane"_s << u"up"_s;
}

void TestDesktop::aSecondStartHandsItsFilesOver()
{
    QFETCH(QString, argument);
    QFETCH(QString, title);
    const QDir folder(m_folder->path());
    QVERIFY(folder.mkpath(u"here"_s) && folder.mkpath(u"other/inner"_s));
    QVERIFY(QFile::link(file(u"other/inner"_s), file(u"here/link"_s)));
    QVERIFY(write(file(u"here/"_s + argument), m_data));
    DrivenProgram first({file(u"a.quorvane"_s)});
    QCOMPARE(first.titles(), QStringList {u"a"_s});
    DrivenProgram second({argument}, file(u"here"_s));
    QCOMPARE(second.exitCode(), 0);
    QStringList both {u"a"_s, title};
    both.sort();
    QTRY_COMPARE(first.titles(), both);
}

void TestDesktop::aSecondStartWithoutFilesBringsTheFirstForward()
{
    QVERIFY(write(file(u"b.quorvane"_s), m_data));
    DrivenProgram first({file(u"a.quorvane"_s), file(u"b.quorvane"_s)});
    first.tell(u"activate"_s, u"a"_s);
    QTRY_COMPARE(first.tell(u"active"_s), u"a"_s);
    DrivenProgram second({});
    QCOMPARE(second.exitCode(), 0);
    QTRY_COMPARE(first.tell(u"active"_s), u"b"_s);
    QCOMPARE(first.titles(), (QStringList {u"a"_s, u"b"_s}));
}

void TestDesktop::anActionComesByTheBusOrAsAnOption_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("window");
    QTest::newRow("a new document") << u"new-document"_s << u"Untitled"_s;
    QTest::newRow("the preferences") << u"preferences"_s << u"General"_s;
}

void TestDesktop::anActionComesByTheBusOrAsAnOption()
{
    QFETCH(QString, action);
    QFETCH(QString, window);
    const QStringList both {window, u"a"_s};
    const QString option = u"--"_s + action;
    {
        DrivenProgram program({file(u"a.quorvane"_s)});
        QCOMPARE(program.windows(), QStringList {u"a"_s});
        const QDBusMessage reply =
            call(u"ActivateAction"_s, {action, QVariantList(), QVariantMap()});
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(reply.arguments().isEmpty());
        QTRY_COMPARE(program.windows(), both);
    }
    {
        DrivenProgram first({file(u"a.quorvane"_s)});
        QCOMPARE(first.windows(), QStringList {u"a"_s});
        DrivenProgram second({option});
        QCOMPARE(second.exitCode(), 0);
        QTRY_COMPARE(first.windows(), both);
    }
    DrivenProgram program({option, file(u"a.quorvane"_s)});
    QCOMPARE(program.windows(), both);
}

void TestDesktop::theBusStartsTheProgramForACall_data()
{
    const QString application = u"org.freedesktop.Application"_s;
    const QString own(applicationId);
    const QVariantMap none;
    const QStringList untitled {u"Untitled"_s};
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QVariantList>("arguments");
    QTest::addColumn<QStringList>("windows");
    QTest::newRow("to come forward, it starts as by itself")
        << application << u"Activate"_s << QVariantList {none} << untitled;
    QTest::newRow("to open a file, that is all it shows")
        << application << u"Open"_s
        << QVariantList {QStringList {u"file://<folder>/a.quorvane"_s}, none}
        << QStringList {u"a"_s};
    QTest::newRow("for a new document, there is one")
        << application << u"ActivateAction"_s
        << QVariantList {u"new-document"_s, QVariantList(), none} << untitled;
    QTest::newRow("for the preferences, they come on top")
        << application << u"ActivateAction"_s
        << QVariantList {u"preferences"_s, QVariantList(), none}
        << QStringList {u"General"_s, u"Untitled"_s};
    QTest::newRow("for a text, there is one document")
        << own << u"CreateDocWithText"_s << QVariantList {u"some words"_s} << untitled;
    QTest::newRow("for a script, that is all it shows")
        << own << u"DecryptDoc"_s << QVariantList {u"<folder>/a.quorvane"_s, password}
        << QStringList {u"a"_s};
}

void TestDesktop::theBusStartsTheProgramForACall()
{
    QFETCH(QString, interface);
    QFETCH(QString, method);
    QFETCH(QVariantList, arguments);
    const auto placed = [this](const QString &text) {
        return QString(text).replace(u"<folder>"_s, m_folder->path());
    };
    if (arguments[0].typeId() == QMetaType::QString) {
        arguments[0] = placed(arguments[0].toString());
    } else if (arguments[0].typeId() == QMetaType::QStringList) {
        arguments[0] = QStringList {placed(arguments[0].toStringList().constFirst())};
    }
    DrivenProgram program({u"--dbus-service"_s});
    QCOMPARE(program.windows(), QStringList());
    QCOMPARE(call(method, arguments, interface).type(), QDBusMessage::ReplyMessage);
    QFETCH(QStringList, windows);
    QTRY_COMPARE(program.windows(), windows);
}

void TestDesktop::anotherProgramGetsAnEmptyDocument_data()
{
    QTest::addColumn<QVariant>("content");
    QTest::addColumn<bool>("isText");
    const auto boxed = [](const QVariant &value) {
        return QVariant::fromValue(QDBusVariant(value));
    };
    QTest::newRow("for a text") << QVariant(u"some words"_s) << true;
    QTest::newRow("for an empty text") << QVariant(u""_s) << true;
    QTest::newRow("for a text in a variant") << boxed(u"some words"_s) << true;
    QTest::newRow("but not for a number") << boxed(7) << false;
    QTest::newRow("but not for bytes") << boxed(QByteArray("some words")) << false;
}

void TestDesktop::anotherProgramGetsAnEmptyDocument()
{
    QFETCH(QVariant, content);
    QFETCH(bool, isText);
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.titles(), QStringList {u"a"_s});
    const QDBusMessage reply = call(u"CreateDocWithText"_s, {content}, QString(applicationId));
    QCOMPARE(reply.type(), isText ? QDBusMessage::ReplyMessage : QDBusMessage::ErrorMessage);
    QCOMPARE(reply.errorMessage(),
             isText ? QString() : u"Error: Pasteboard doesn't contain a string."_s);
    QCOMPARE(program.titles(),
             isText ? (QStringList {u"Untitled"_s, u"a"_s}) : QStringList {u"a"_s});
}

void TestDesktop::aScriptedPasswordUnlocksNothing()
{
    DrivenProgram program({});
    QTRY_VERIFY(!program.titles().isEmpty());
    const QVariantList both {file(u"a.quorvane"_s), password};
    for (const QVariantList &arguments : {both, QVariantList {both[0]}}) {
        const QDBusMessage reply = call(u"DecryptDoc"_s, arguments, QString(applicationId));
        QCOMPARE(reply.type(), QDBusMessage::ReplyMessage);
        QVERIFY(reply.arguments().isEmpty());
    }
    QTRY_VERIFY(program.titles().contains(u"a"_s));
    QCOMPARE(program.tell(u"activate"_s, u"a"_s), u"locked"_s);
}

void TestDesktop::whatCannotBeServedIsRefused()
{
    const QString open = u"Open"_s;
    const QString action = u"ActivateAction"_s;
    const QVariantMap none;
    const auto uri = [&none](const QString &text) {
        return QVariantList {QStringList {u"file:///b.quorvane"_s, text}, none};
    };
    const std::tuple<const char *, QString, QVariantList> rows[] = {
        {"a page", open, uri(u"http://localhost/b.quorvane"_s)},
        {"another machine's file", open, uri(u"file://elsewhere/b.quorvane"_s)},
        {"a path that is no URI", open, uri(u"/b.quorvane"_s)},
        {"a relative URI", open, uri(u"file:b.quorvane"_s)},
        {"a broken escape", open, uri(u"file:///b%2.quorvane"_s)},
        {"an escaped end of string", open, uri(u"file:///b%00.quorvane"_s)},
        {"a query", open, uri(u"file:///b.quorvane?c"_s)},
        {"nothing", open, uri(u""_s)},
        {"no such action", action, {u"quit"_s, QVariantList(), none}},
        {"a parameter too many", action, {u"new-document"_s, QVariantList {1}, none}},
        {"no such method", u"objectName"_s, {}},
        {"arguments of another type", open, {u"a"_s}},
    };
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.titles(), QStringList {u"a"_s});
    for (const auto &[name, method, arguments] : rows) {
        const QDBusMessage reply = call(method, arguments);
        QVERIFY2(reply.type() == QDBusMessage::ErrorMessage, name);
        QVERIFY2(reply.errorName().startsWith("org.freedesktop.DBus.Error."_L1), name);
    }
    QCOMPARE(program.titles(), QStringList {u"a"_s});
}

void TestDesktop::withoutABusEachStartIsAProgram()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent");
    DrivenProgram first({file(u"a.quorvane"_s)});
    QCOMPARE(first.titles(), QStringList {u"a"_s});
    DrivenProgram second({file(u"a.quorvane"_s)});
    QCOMPARE(second.titles(), QStringList {u"a"_s});
    QVERIFY(!second.errorText().contains(u"quorvane: "_s));
}

void TestDesktop::aBusThatHangsHoldsNobodyUp()
{
    const PrivateBus hung;
    QCOMPARE(kill(static_cast<pid_t>(hung.processId()), SIGSTOP), 0);
    qputenv("DBUS_SESSION_BUS_ADDRESS", hung.address());
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.titles(), QStringList {u"a"_s});
    QCOMPARE(kill(static_cast<pid_t>(program.id()), SIGTERM), 0);
    const int exitCode = program.exitCode();
    QCOMPARE(kill(static_cast<pid_t>(hung.processId()), SIGCONT), 0);
    QCOMPARE(exitCode, 0);
}

void TestDesktop::anOwnerThatDoesNotServeIsLeftAlone()
{
    QDBusConnection other = m_bus.connectAs(u"other"_s);
    QVERIFY(other.registerService(QString(applicationId)));
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.titles(), QStringList {u"a"_s});
    QVERIFY(program.errorText().contains(u"the running program does not answer"_s));
    QVERIFY(other.unregisterService(QString(applicationId)));
}

void TestDesktop::anOwnerThatDoesNotAnswerIsNotWaitedForLong()
{
    QDBusConnection other = m_bus.connectAs(u"other"_s);
    Mute object;
    QVERIFY(other.registerObject(u"/com/orbelt/Mute"_s, &object,
                                 QDBusConnection::ExportScriptableSlots));
    QVERIFY(other.registerService(mute));
    constexpr int patience = 50; // milliseconds
    DBusApplication application(m_bus.connectAs(u"second"_s), mute, patience);
    QCOMPARE(application.start({}), DBusApplication::Start::Unanswered);
    QVERIFY(other.unregisterService(mute));
    QCOMPARE(application.start({}), DBusApplication::Start::First);
}

void TestDesktop::theLockOfTheScreenReachesTheDocument()
{
    QVERIFY(QDir().mkpath(file(u"config/quorvane"_s)));
    QVERIFY(write(file(u"config/quorvane/quorvane.ini"_s),
                  "[General]\nautolocBackgroundEnabled=true\n"));
    DrivenProgram program({file(u"a.quorvane"_s)});
    QCOMPARE(program.tell(u"unlock"_s, password), u"open"_s);
    QCOMPARE(program.tell(u"type"_s, u"edited "_s), u"open"_s);
    const QString name = u"org.freedesktop.ScreenSaver"_s;
    QDBusConnection screenSaver = m_bus.connectAs(u"screen saver"_s);
    QVERIFY(screenSaver.registerService(name));
    QVERIFY(QTest::qWaitFor([&] {
        QDBusMessage active =
            QDBusMessage::createSignal(u"/ScreenSaver"_s, name, u"ActiveChanged"_s);
        active << true;
        return screenSaver.send(active) && program.tell(u"state"_s) == "locked"_L1;
    }));
    QVERIFY(bodyOf(file(u"a.quorvane"_s)).contains("edited body"));
}

int main(int argc, char **argv)
{
    if (DrivenProgram::isMeant()) {
        return runWindowProgram(argc, argv);
    }
    QCoreApplication application(argc, argv);
    TestDesktop test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_desktop.moc"
