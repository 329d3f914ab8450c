#pragma once

#include "platform/nsvaluetransformer.h"

#include <QDateTime>

#include <functional>

namespace quorvane {

/// Writes the present date and time into a text, in the place of the tags <yy>, <YY>, <mm>, <dd>,
/// <hh>, <ii> (minutes: <mm> is the month) and <ss>.
class QVDateTagElaborated final : public NSValueTransformer
{
public:
    using Clock = std::function<QDateTime()>;

    explicit QVDateTagElaborated(Clock clock = [] { return QDateTime::currentDateTime(); });

    TransformedValueClass transformedValueClass() const override
    {
        return TransformedValueClass::NSString;
    }

    /// A string for a string; the empty one for nil.
    QVariant transformedValue(const QVariant &value) const override;

private:
    Clock m_clock;
};

} // namespace quorvane
