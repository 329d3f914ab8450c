#pragma once

#include "platform/nsuserdefaults.h"

namespace quorvane {

/// Settings that no file holds.
class InMemoryDefaults final : public NSUserDefaults
{
public:
    QVariantMap values; ///< What is stored, without what is registered.

protected:
    QVariant stored(QLatin1StringView key) const override { return values.value(key); }

    void store(QLatin1StringView key, const QVariant &value) override
    {
        if (value.isValid()) {
            values.insert(key, value);
        } else {
            values.remove(key);
        }
    }
};

} // namespace quorvane
