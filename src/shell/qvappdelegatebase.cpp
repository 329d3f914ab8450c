#include "shell/qvappdelegatebase.h"

#include "product/qvappsupportutility.h"
#include "product/release.h"
#include "product/settings.h"
#include "shell/aboutwindow.h"
#include "shell/qvpreftoolbardelegate.h"
#include "update/qvphonehome.h"
#include "util/valuetransformers.h"

#include <QMenu>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double startupDelay = 1.0; // seconds
constexpr qint64 newDocumentAction = 0;
constexpr qint64 openPanelIfNothingIsOpenAction = 1;
constexpr qint64 openPanelAction = 2;
constexpr qint64 openStartupDocumentAction = 3;

} // namespace

QVAppDelegateBase::QVAppDelegateBase(AppSurroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , m_appName(productName)
    , m_vendorName(quorvane::vendorName)
    , m_releaseString(QVAppSupportUtility::calcReleaseString(releaseNumber))
{
    NSValueTransformer::setValueTransformer(std::make_unique<QVValueNotEqualToRef>(0),
                                            u"valueNot0"_s);
    m_surroundings.phoneHome.setAsks([self = QPointer(this)](bool asks) {
        if (self) {
            Q_EMIT self->asksForUpdates(asks);
        }
    });
}

QVAppDelegateBase::~QVAppDelegateBase() = default;

void QVAppDelegateBase::adjustBeforeFinishingLaunching(QMenu &applicationMenu)
{
    auto *item = new QAction(u"Software Update…"_s, &applicationMenu);
    connect(item, &QAction::triggered, this, &QVAppDelegateBase::checkForLastReleaseAvailable);
    const QList<QAction *> items = applicationMenu.actions();
    applicationMenu.insertAction(items.value(1), item);
}

bool QVAppDelegateBase::applicationShouldOpenUntitledFile() const
{
    return defaults().value(settings::startupActionTag) == newDocumentAction;
}

// The update check may ask the user first; the startup action waits for the answer.
void QVAppDelegateBase::applicationDidFinishLaunching()
{
    m_surroundings.phoneHome.startupProcedure([self = QPointer(this)] {
        if (self) {
            self->m_finishedLaunching = true;
            self->m_startupTimer =
                self->afterOneSecond([self] { self->executeDocumentStartupAsInPref(); });
        }
    });
}

std::unique_ptr<NSTimer> QVAppDelegateBase::afterOneSecond(std::function<void()> step)
{
    return timers().scheduledTimer(startupDelay, std::move(step));
}

void QVAppDelegateBase::executeDocumentStartupAsInPref()
{
    switch (defaults().value(settings::startupActionTag)) {
    case newDocumentAction:
        m_fallbackTimer = afterOneSecond([this] { newDocIfNoDocOpened(); });
        break;
    case openPanelIfNothingIsOpenAction:
        m_fallbackTimer = afterOneSecond([this] { openDialogIfNoDocOpened(); });
        break;
    case openPanelAction:
        documents().openDocument();
        break;
    case openStartupDocumentAction:
        // A program that was started to serve another one shows nothing of its own.
        if (!m_usingAServices) {
            openStartupDoc();
        }
        break;
    default:
        break;
    }
}

// Tested when the timer fires, not when it is set: a document that has come by then wins.
bool QVAppDelegateBase::mayOpenByItself() const
{
    return documents().documents().empty() && !m_documentIsOpening;
}

void QVAppDelegateBase::newDocIfNoDocOpened()
{
    if (mayOpenByItself()) {
        documents().newDocument();
    }
}

void QVAppDelegateBase::openDialogIfNoDocOpened()
{
    if (mayOpenByItself()) {
        documents().openDocument();
    }
}

} // namespace quorvane
