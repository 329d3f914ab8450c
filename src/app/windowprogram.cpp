#include "app/windowprogram.h"

#include "app/desktop.h"
#include "app/readableplaceholders.h"
#include "app/settingsnotice.h"
#include "app/visibleframes.h"
#include "document/mydocument.h"
#include "document/qvrevertdoccontroller.h"
#include "editor/documentwindow.h"
#include "editor/documentwindowcontroller.h"
#include "editor/stylememory.h"
#include "platform/posixfilestore.h"
#include "platform/posixpackagestore.h"
#include "platform/recoveryfolder.h"
#include "platform/runtimefolder.h"
#include "platform/securityscopedaccess.h"
#include "platform_qt/dialogsheet.h"
#include "platform_qt/enchantspelling.h"
#include "platform_qt/qtfontmanager.h"
#include "platform_qt/qtmodalalerts.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qtpanels.h"
#include "platform_qt/qttimers.h"
#include "platform_qt/qturlloader.h"
#include "platform_qt/qtwindow.h"
#include "platform_qt/qtworkspace.h"
#include "platform_qt/settingsdefaults.h"
#include "platform_qt/xdgrecentdocuments.h"
#include "product/qvappsupportutility.h"
#include "product/release.h"
#include "shell/mainmenu.h"
#include "shell/myappdelegate.h"
#include "shell/startwindowkeeper.h"
#include "update/qvphonehome.h"

#include <QApplication>
#include <QClipboard>
#include <QCommandLineParser>
#include <QDir>
#include <QIcon>
#include <QSet>
#include <QUrl>

#include <algorithm>
#include <functional>

// A library's resources are left out by the linker unless they are asked for, from outside of any
// namespace.
static void useIcons()
{
    Q_INIT_RESOURCE(icons);
}

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString recoveryPath()
{
    // Qt has no name for this folder before 6.7. A relative path in the variable counts as none.
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state)) {
        state = QDir::home().filePath(u".local/state"_s);
    }
    return QDir(state).filePath(u"quorvane/recovery"_s);
}

/// The one copy of everything that lives as long as the program.
class Program final
{
public:
    Program();
    ~Program();

    /// Begins, with some work for documents or without any.
    void start(const std::function<void()> &work);
    /// Closes all documents, with the questions that this takes, then ends the program.
    void quit();
    Desktop::Program forDesktop();

private:
    AppSurroundings appSurroundings();
    MenuSurroundings menuSurroundings();
    std::unique_ptr<NSDocument> makeDocument();
    std::unique_ptr<NSWindowController> loadNib(MyDocument &document);

    QtOperationQueue m_mainQueue;
    QtTimers m_timers;
    SettingsDefaults m_defaults;
    PosixFileStore m_files;
    PosixPackageStore m_packages;
    RecoveryFolder m_recovery {recoveryPath(), m_files};
    QtPanels m_panels {m_mainQueue};
    QtModalAlerts m_alerts {m_mainQueue};
    SettingsNotice m_settingsNotice {m_defaults, m_alerts};
    QtFontManager m_fontManager;
    QtWorkspace m_workspace;
    EnchantSpelling m_spelling;
    StyleMemory m_styles;
    FileModeAccess m_access;
    QtURLLoader m_loader;
    QtBackgroundQueue m_background {m_mainQueue};
    QVPhoneHome m_phoneHome {
        {m_defaults, m_alerts, m_workspace, m_loader, m_background, &QDateTime::currentDateTime}};
    QVRevertDocController m_documents;
    MyAppDelegate m_delegate;
    XdgRecentDocuments m_recents;
    StartWindowKeeper m_startWindow;
};

Program::Program()
    : m_documents({m_mainQueue, m_files, m_panels, m_timers, &m_recovery}, m_alerts,
                  documentExtension, [this] { return makeDocument(); })
    , m_delegate(appSurroundings())
    , m_recents(m_timers, {productName, u"quorvane %f"_s, documentType})
    , m_startWindow(menuSurroundings(), m_mainQueue)
{
    QObject::connect(&m_documents, &NSDocumentController::fileUsed, &m_recents,
                     [this](const QString &path) { m_recents.note(path); });
}

// A check that is still waiting for its answer would hold the end up.
Program::~Program()
{
    Q_EMIT m_loader.cancelled();
}

AppSurroundings Program::appSurroundings()
{
    MyAppDelegate::initialize(m_defaults, m_phoneHome);
    return {m_defaults,
            m_documents,
            m_timers,
            m_mainQueue,
            m_alerts,
            m_panels,
            m_workspace,
            m_fontManager,
            m_access,
            m_phoneHome,
            [this](QWidget &widget) {
                return std::make_unique<QtWindow>(widget, m_mainQueue);
            }};
}

MenuSurroundings Program::menuSurroundings()
{
    return {m_documents, m_recents, m_alerts, m_delegate, [this] {
                quit();
            }};
}

void Program::quit()
{
    m_documents.closeAllDocuments([this](bool closed) {
        if (closed) {
            m_startWindow.end();
            QCoreApplication::quit();
        }
    });
}

std::unique_ptr<NSDocument> Program::makeDocument()
{
    const MyDocumentSurroundings surroundings {
        {m_mainQueue, m_files, m_panels, m_timers, &m_recovery},
        m_defaults,
        m_fontManager,
        m_alerts,
        m_workspace,
        [this](MyDocument &document) { return loadNib(document); },
    };
    return std::make_unique<MyDocument>(surroundings);
}

std::unique_ptr<NSWindowController> Program::loadNib(MyDocument &document)
{
    const auto adapt = [this](QWidget &widget, const WindowEvents &events) {
        auto window = std::make_unique<QtWindow>(widget, m_mainQueue);
        window->setCloseRequested(events.closeRequested);
        QObject::connect(window.get(), &QtWindow::becameKey, events.becameKey);
        return window;
    };
    const auto isOpen = [this](const QString &path) {
        return m_documents.hasOpen(path);
    };
    const auto sheetOf = [](QDialog &dialog) -> NSSheet & {
        return *new DialogSheet(dialog); // owned by the dialog
    };
    const EditorSurroundings surroundings {
        {{m_mainQueue, m_files, m_panels, m_timers}, m_packages, isOpen},
        {m_mainQueue, m_files, sheetOf, isOpen},
        m_workspace,
        m_spelling,
        m_styles,
        RuntimeFolder::sessionPath(),
    };
    auto controller =
        std::make_unique<DocumentWindowController>(document, m_defaults, adapt, surroundings);
    new MainMenu(controller->window(), menuSurroundings(), // owned by the window
                 MenuDocument {controller->window(), document, controller->commands()});
    return controller;
}

void Program::start(const std::function<void()> &work)
{
    RuntimeFolder::removeAbandoned(RuntimeFolder::sessionPath());
    m_delegate.applicationWillFinishLaunching();
    m_settingsNotice.tellHowTheyWereFound();
    if (work) {
        work();
    }
    m_documents.restoreRecoveredDocuments();
    if (m_documents.documents().empty() && !work
        && m_delegate.applicationShouldOpenUntitledFile()) {
        m_documents.newDocument();
    }
    m_startWindow.begin();
    m_delegate.applicationDidFinishLaunching();
}

Desktop::Program Program::forDesktop()
{
    const auto startAnew = [this] {
        if (m_delegate.applicationShouldOpenUntitledFile()) {
            m_documents.newDocument();
        } else {
            m_delegate.executeDocumentStartupAsInPref();
        }
    };
    const auto begin = [this](const std::function<void()> &work) {
        start(work);
    };
    return {m_documents, m_delegate, m_defaults, m_mainQueue, begin, startAnew, [this] {
                m_startWindow.end();
            }};
}

struct CommandLine
{
    StartRequest request;
    bool isStartedByBus; ///< The request comes over the session bus.
};

CommandLine readCommandLine(const QCoreApplication &application)
{
    const QCommandLineOption newDocument(QString(newDocumentAction), u"Begins a new document."_s);
    const QCommandLineOption preferences(QString(preferencesAction), u"Shows the preferences."_s);
    const QCommandLineOption service(u"dbus-service"_s,
                                     u"Waits for a call on the session bus, which starts it so."_s);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"A rich-text editor whose documents exist on disk only in encrypted form."_s);
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addOptions({newDocument, preferences, service});
    parser.addPositionalArgument(u"FILE"_s, u"Documents to open."_s, u"[FILE…]"_s);
    parser.process(application);
    QStringList files = parser.positionalArguments();
    for (QString &file : files) { // some launchers give addresses
        if (const QUrl url(file, QUrl::StrictMode); url.isLocalFile()) {
            file = url.toLocalFile();
        }
    }
    QStringList actions;
    for (const QCommandLineOption &option : {newDocument, preferences}) {
        if (parser.isSet(option)) {
            actions << option.names();
        }
    }
    const bool isEmpty = files.isEmpty() && actions.isEmpty();
    return {{files, actions}, isEmpty && parser.isSet(service)};
}

// Of pictures, since what draws the scalable icon need not be installed.
QIcon programIcon()
{
    useIcons();
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        icon.addFile(u":/icons/%1.png"_s.arg(size), {size, size});
    }
    return icon;
}

// Help and version are told where there is no display, too.
bool asksOnlyForWords(int argc, char **argv)
{
    const QSet<QByteArray> words {"-h", "--help", "--help-all", "-v", "--version"};
    return std::any_of(argv + 1, argv + argc,
                       [&words](const char *word) { return words.contains(word); });
}

// What was copied from a document may not outlive the program: at the end, clipboard managers would
// be handed it to keep.
void clearOwnClipboard()
{
    QClipboard *clipboard = QApplication::clipboard();
    if (clipboard->ownsClipboard()) {
        clipboard->clear();
    }
    if (clipboard->supportsSelection() && clipboard->ownsSelection()) {
        clipboard->clear(QClipboard::Selection);
    }
}

} // namespace

int runWindowProgram(int argc, char **argv)
{
    // The menu bar lives in its window: the desktop's own one is reached over the session bus, for
    // which every start would wait.
    QApplication::setAttribute(Qt::AA_DontUseNativeMenuBar);
    QCoreApplication::setApplicationName(u"quorvane"_s);
    QCoreApplication::setApplicationVersion(QVAppSupportUtility::calcReleaseString(releaseNumber));
    if (asksOnlyForWords(argc, argv)) {
        const QCoreApplication application(argc, argv);
        readCommandLine(application); // prints them and exits
    }
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(productName);
    QApplication::setDesktopFileName(applicationId);
    QApplication::setWindowIcon(programIcon());
    VisibleFrames::apply();
    const ReadablePlaceholders placeholders;
    const CommandLine commandLine = readCommandLine(application);
    BusConnector sessionBus(QDBusConnection::SessionBus); // while the rest is made
    // The last document's window goes before the start window comes.
    QApplication::setQuitOnLastWindowClosed(false);
    Program program;
    Desktop desktop(sessionBus);
    if (desktop.isServedByAnother(commandLine.request)) {
        return 0;
    }
    QObject::connect(&application, &QCoreApplication::aboutToQuit, clearOwnClipboard);
    const Desktop::Program served = program.forDesktop();
    desktop.serve(served);
    if (commandLine.isStartedByBus) {
        desktop.beginWithFirstCall();
    } else {
        desktop.begin(served, commandLine.request);
    }
    return QApplication::exec();
}

} // namespace quorvane
