#include "app/desktop.h"

#include "product/release.h"
#include "shell/myappdelegate.h"
#include "shell/myscriptdecryptdoc.h"

#include <QApplication>
#include <QTimer>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace quorvane {

namespace {

constexpr std::chrono::seconds busPatience {2};
constexpr std::chrono::seconds firstCallPatience {10};
constexpr int signalExitBase = 128; // as shells count

// Whatever stands there without a document: a panel, an alert, a window to start from.
bool bringAnyWindowForward()
{
    const QWidgetList windows = QApplication::topLevelWidgets();
    const auto shown = std::find_if(windows.begin(), windows.end(), [](const QWidget *window) {
        return window->isVisible() && window->windowType() != Qt::Popup
            && window->windowType() != Qt::ToolTip;
    });
    if (shown == windows.end()) {
        return false;
    }
    (*shown)->raise();
    (*shown)->activateWindow();
    return true;
}

void openDocuments(NSDocumentController &documents, const QStringList &paths)
{
    for (const QString &path : paths) {
        documents.openDocumentWithContentsOfURL(path);
    }
}

void carryOut(const QString &action, const Desktop::Program &program)
{
    if (action == newDocumentAction) {
        program.documents.newDocument();
    } else if (action == preferencesAction) {
        program.delegate.openPreferences();
    }
}

bool everythingIsSaved(const NSDocumentController &documents)
{
    const std::vector<NSDocument *> open = documents.documents();
    return std::none_of(open.begin(), open.end(),
                        [](const NSDocument *document) { return document->hasUnsavedChanges(); });
}

} // namespace

Desktop::Desktop(BusConnector &sessionBus)
    : m_sessionBus(sessionBus)
{ }

bool Desktop::isServedByAnother(const StartRequest &request)
{
    if (!m_sessionBus.waitForFinished(QDeadlineTimer(busPatience))) {
        std::fputs("quorvane: the session bus does not answer; going on without it\n", stderr);
        return false;
    }
    m_application.emplace(m_sessionBus.bus(), applicationId);
    const DBusApplication::Start start = m_application->start(request);
    if (start == DBusApplication::Start::Unanswered) {
        std::fputs("quorvane: the running program does not answer; starting another one\n", stderr);
    }
    return start == DBusApplication::Start::HandedOver;
}

void Desktop::serve(const Program &program)
{
    followActivity(program);
    followEnds(program);
    if (m_application) {
        followOtherStarts(program);
        followScripts(program);
    }
    // Not needed for the first window, so that it need not share the machine with it.
    program.mainQueue.addOperation([this, program] {
        m_systemBus.emplace(QDBusConnection::SystemBus);
        m_sessionEvents.emplace(m_sessionBus, *m_systemBus);
        m_guard.emplace(*m_sessionEvents, program.defaults, program.documents, program.mainQueue,
                        program.delegate);
    });
}

void Desktop::followActivity(const Program &program)
{
    const auto follow = [this, program](Qt::ApplicationState state) {
        const bool isActive = state == Qt::ApplicationActive;
        if (isActive == m_isActive) {
            return;
        }
        m_isActive = isActive;
        if (isActive) {
            program.delegate.applicationDidBecomeActive();
        } else {
            program.delegate.applicationDidResignActive();
            program.documents.autosaveDocuments();
        }
    };
    connect(qApp, &QGuiApplication::applicationStateChanged, this, follow);
    m_isActive = QGuiApplication::applicationState() == Qt::ApplicationActive;
}

void Desktop::begin(const Program &program, const StartRequest &request)
{
    m_hasBegun = true;
    const bool bringsNew = request.actions.contains(newDocumentAction);
    std::function<void()> work;
    if (bringsNew || !request.files.isEmpty()) {
        work = [&program, &request, bringsNew] {
            openDocuments(program.documents, request.files);
            if (bringsNew) {
                carryOut(newDocumentAction, program);
            }
        };
    }
    program.begin(work);
    // Over whatever the start has shown.
    if (request.actions.contains(preferencesAction)) {
        carryOut(preferencesAction, program);
    }
}

void Desktop::beginWithFirstCall()
{
    QTimer::singleShot(firstCallPatience, this, [this] {
        if (!m_hasBegun) {
            QCoreApplication::quit();
        }
    });
}

void Desktop::perform(const Program &program, const std::function<void()> &work)
{
    if (std::exchange(m_hasBegun, true)) {
        work();
    } else {
        program.begin(work);
    }
}

void Desktop::activate(const Program &program)
{
    if (!m_hasBegun) {
        begin(program, {});
        return;
    }
    const std::vector<NSDocument *> open = program.documents.documents();
    if (!open.empty()) {
        open.back()->showWindows();
    } else if (!bringAnyWindowForward()) {
        program.startAnew();
    }
}

// The caller has its answer before the work begins: it need not wait for a file to be read.
void Desktop::followOtherStarts(const Program &program)
{
    connect(&*m_application, &DBusApplication::openRequested, this,
            [this, program](const QStringList &paths) {
                program.mainQueue.addOperation([this, program, paths] {
                    perform(program, [&] { openDocuments(program.documents, paths); });
                });
            });
    connect(&*m_application, &DBusApplication::activateRequested, this, [this, program] {
        program.mainQueue.addOperation([this, program] { activate(program); });
    });
    connect(&*m_application, &DBusApplication::actionRequested, this,
            [this, program](const QString &action) {
                program.mainQueue.addOperation([this, program, action] {
                    if (m_hasBegun) {
                        carryOut(action, program);
                    } else {
                        begin(program, {{}, {action}});
                    }
                });
            });
}

void Desktop::followScripts(const Program &program)
{
    m_application->setCreateDoc([this, program](const std::optional<QString> &text) {
        std::optional<QString> wrong;
        perform(program, [&] { wrong = program.delegate.doCreateDocWithText(text); });
        return wrong;
    });
    connect(&*m_application, &DBusApplication::decryptDocRequested, this,
            [this, program](const QString &path, const std::optional<QString> &password) {
                program.mainQueue.addOperation([this, program, path, password] {
                    perform(program, [&] {
                        MyScriptDecryptDoc(path, password)
                            .performDefaultImplementation(program.documents);
                    });
                });
            });
}

void Desktop::followEnds(const Program &program)
{
    m_signals.emplace();
    // Nobody can be asked now. That all is saved is an end like any other; where something is not,
    // the exit code is the one of a program that the signal ended.
    connect(&*m_signals, &TerminationSignals::received, this, [this, program](int number) {
        if (std::exchange(m_isEnding, true)) {
            return; // The first one says how it ends.
        }
        program.documents.autosaveDocuments();
        const bool isSaved = everythingIsSaved(program.documents);
        program.willEnd();
        program.documents.closeWithoutReview();
        QCoreApplication::exit(isSaved ? 0 : signalExitBase + number);
    });
    // The session may still go on: save, and leave the rest to what comes.
    connect(
        qApp, &QGuiApplication::commitDataRequest, this,
        [program] { program.documents.autosaveDocuments(); }, Qt::DirectConnection);
}

} // namespace quorvane
