#include "shell/myappdelegate.h"

#include "document/mydocument.h"
#include "product/settings.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr qint32 shortestLockDelay = 30; // seconds

} // namespace

void MyAppDelegate::initialize(NSUserDefaults &defaults)
{
    defaults.registerDefaults(settings::registeredDefaults());
}

void MyAppDelegate::applicationDidResignActive()
{
    if (!defaults().value(settings::autolocBackgroundEnabled)) {
        return;
    }
    // The low 32 bits count, whatever stands above them.
    setAutomaticLockWithTimeInterval(
        static_cast<qint32>(defaults().value(settings::autolocBackgroundInterval)));
}

void MyAppDelegate::applicationDidBecomeActive()
{
    setAutomaticLockWithTimeInterval(0);
}

void MyAppDelegate::setAutomaticLockWithTimeInterval(qint32 seconds)
{
    if (m_repeatingAutomaticLockTimer) {
        m_repeatingAutomaticLockTimer->invalidate();
    }
    if (seconds < 1) {
        m_repeatingAutomaticLockTimer.reset();
        return;
    }
    m_repeatingAutomaticLockTimer = timers().scheduledTimer(
        std::max(seconds, shortestLockDelay), [this] { AutomaticLockAllOpenedDocuments(); });
}

void MyAppDelegate::AutomaticLockAllOpenedDocuments()
{
    for (NSDocument *each : documents().documents()) {
        if (auto *document = qobject_cast<MyDocument *>(each)) {
            document->lockAutomatically();
        }
    }
}

} // namespace quorvane
