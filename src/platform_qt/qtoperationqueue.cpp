#include "platform_qt/qtoperationqueue.h"

#include <QMetaObject>

#include <utility>

namespace quorvane {

void QtOperationQueue::addOperation(std::function<void()> operation)
{
    QMetaObject::invokeMethod(&m_context, std::move(operation), Qt::QueuedConnection);
}

} // namespace quorvane
