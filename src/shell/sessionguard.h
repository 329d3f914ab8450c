#pragma once

#include "platform/nsdocumentcontroller.h"
#include "platform/nsuserdefaults.h"
#include "platform/sessionevents.h"

#include <QObject>

namespace quorvane {

class MyAppDelegate;

/// Leaves nothing to read, and nothing unsaved, behind a locked screen or on a sleeping machine.
/// Saving is unconditional; the documents are locked where the user wants the automatic lock.
class SessionGuard final : public QObject
{
    Q_OBJECT

public:
    SessionGuard(SessionEvents &events, const NSUserDefaults &defaults,
                 NSDocumentController &documents, NSOperationQueue &mainQueue,
                 MyAppDelegate &delegate);

private:
    void saveAndLock();
    void afterTheLocks(std::function<void()> operation);

    const NSUserDefaults &m_defaults;
    NSDocumentController &m_documents;
    NSOperationQueue &m_mainQueue;
    MyAppDelegate &m_delegate;
    bool m_locksAreQueued = false;
};

} // namespace quorvane
