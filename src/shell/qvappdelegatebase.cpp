#include "shell/qvappdelegatebase.h"

#include "product/qvappsupportutility.h"
#include "product/release.h"
#include "product/settings.h"

#include <utility>

namespace quorvane {

namespace {

constexpr double startupDelay = 1.0; // seconds
constexpr qint64 newDocumentAction = 0;
constexpr qint64 openPanelIfNothingIsOpenAction = 1;
constexpr qint64 openPanelAction = 2;

} // namespace

QVAppDelegateBase::QVAppDelegateBase(NSUserDefaults &defaults, NSDocumentController &documents,
                                     TimerFactory &timers)
    : m_defaults(defaults)
    , m_documents(documents)
    , m_timers(timers)
    , m_appName(productName)
    , m_vendorName(quorvane::vendorName)
    , m_releaseString(QVAppSupportUtility::calcReleaseString(releaseNumber))
{ }

bool QVAppDelegateBase::applicationShouldOpenUntitledFile() const
{
    return m_defaults.value(settings::startupActionTag) == newDocumentAction;
}

void QVAppDelegateBase::applicationDidFinishLaunching()
{
    m_startupTimer = afterOneSecond([this] { executeDocumentStartupAsInPref(); });
}

std::unique_ptr<NSTimer> QVAppDelegateBase::afterOneSecond(std::function<void()> step)
{
    return m_timers.scheduledTimer(startupDelay, std::move(step));
}

void QVAppDelegateBase::executeDocumentStartupAsInPref()
{
    switch (m_defaults.value(settings::startupActionTag)) {
    case newDocumentAction:
        m_fallbackTimer = afterOneSecond([this] { newDocIfNoDocOpened(); });
        break;
    case openPanelIfNothingIsOpenAction:
        m_fallbackTimer = afterOneSecond([this] { openDialogIfNoDocOpened(); });
        break;
    case openPanelAction:
        m_documents.openDocument();
        break;
    default:
        break;
    }
}

// Tested when the timer fires, not when it is set: a document that has come by then wins.
bool QVAppDelegateBase::mayOpenByItself() const
{
    return m_documents.documents().empty() && !m_documentIsOpening;
}

void QVAppDelegateBase::newDocIfNoDocOpened()
{
    if (mayOpenByItself()) {
        m_documents.newDocument();
    }
}

void QVAppDelegateBase::openDialogIfNoDocOpened()
{
    if (mayOpenByItself()) {
        m_documents.openDocument();
    }
}

} // namespace quorvane
