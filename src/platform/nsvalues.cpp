#include "platform/nsvalues.h"

#include <QDateTime>

namespace quorvane {

namespace {
constexpr qint64 referenceDateInUnixMilliseconds = 978307200000;
}

NSDate NSDate::date()
{
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    return {static_cast<double>(now - referenceDateInUnixMilliseconds) / 1000.0};
}

} // namespace quorvane
