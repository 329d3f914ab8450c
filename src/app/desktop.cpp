#include "app/desktop.h"

#include "product/release.h"
#include "shell/myappdelegate.h"
#include "shell/myscriptdecryptdoc.h"

#include <QApplication>
#include <QWidget>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

namespace quorvane {

namespace {

constexpr std::chrono::seconds busPatience {2};
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

bool Desktop::isServedByAnother(const QStringList &files)
{
    if (!m_sessionBus.waitForFinished(QDeadlineTimer(busPatience))) {
        std::fputs("quorvane: the session bus does not answer; going on without it\n", stderr);
        return false;
    }
    m_application.emplace(m_sessionBus.bus(), applicationId);
    const DBusApplication::Start start = m_application->start(files);
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

// The caller has its answer before the work begins: it need not wait for a file to be read.
void Desktop::followOtherStarts(const Program &program)
{
    connect(&*m_application, &DBusApplication::openRequested, this,
            [program](const QStringList &paths) {
                program.mainQueue.addOperation([program, paths] {
                    for (const QString &path : paths) {
                        program.documents.openDocumentWithContentsOfURL(path);
                    }
                });
            });
    m_application->setCreateDoc([program](const std::optional<QString> &text) {
        return program.delegate.doCreateDocWithText(text);
    });
    connect(
        &*m_application, &DBusApplication::decryptDocRequested, this,
        [program](const QString &path, const std::optional<QString> &password) {
            program.mainQueue.addOperation([program, path, password] {
                MyScriptDecryptDoc(path, password).performDefaultImplementation(program.documents);
            });
        });
    connect(&*m_application, &DBusApplication::activateRequested, this, [program] {
        program.mainQueue.addOperation([program] {
            const std::vector<NSDocument *> open = program.documents.documents();
            if (!open.empty()) {
                open.back()->showWindows();
            } else if (!bringAnyWindowForward()) {
                program.startAnew();
            }
        });
    });
    connect(&*m_application, &DBusApplication::newDocumentRequested, this, [program] {
        program.mainQueue.addOperation([program] { program.documents.newDocument(); });
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
