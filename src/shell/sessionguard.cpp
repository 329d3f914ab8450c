#include "shell/sessionguard.h"

#include "product/settings.h"
#include "shell/myappdelegate.h"

#include <QPointer>

#include <utility>

namespace quorvane {

SessionGuard::SessionGuard(SessionEvents &events, const NSUserDefaults &defaults,
                           NSDocumentController &documents, NSOperationQueue &mainQueue,
                           MyAppDelegate &delegate)
    : m_defaults(defaults)
    , m_documents(documents)
    , m_mainQueue(mainQueue)
    , m_delegate(delegate)
{
    connect(&events, &SessionEvents::screenLocked, this, &SessionGuard::saveAndLock);
    connect(&events, &SessionEvents::aboutToSleep, this, [this, &events] {
        saveAndLock();
        afterTheLocks([&events] { events.readyToSleep(); });
    });
}

void SessionGuard::saveAndLock()
{
    m_documents.autosaveDocuments();
    // Several services tell of the same moment. A second lock of an open document would take the
    // small window for the one to come back to.
    if (m_locksAreQueued || !m_defaults.value(settings::autolocBackgroundEnabled)) {
        return;
    }
    m_locksAreQueued = true;
    m_delegate.AutomaticLockAllOpenedDocuments();
    afterTheLocks([this] { m_locksAreQueued = false; });
}

// Two turns of the queue: a lock adds the save of what was edited, and that counts as well.
void SessionGuard::afterTheLocks(std::function<void()> operation)
{
    const QPointer<SessionGuard> self(this);
    m_mainQueue.addOperation([self, operation = std::move(operation)] {
        if (self) {
            self->m_mainQueue.addOperation([self, operation] {
                if (self) {
                    operation();
                }
            });
        }
    });
}

} // namespace quorvane
