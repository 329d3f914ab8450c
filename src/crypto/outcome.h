#pragma once

#include <QByteArray>

#include <optional>

namespace quorvane {

/// What a cipher operation came to. Data is present exactly where the error is 0.
template <typename T> struct [[nodiscard]] OutcomeOf
{
    std::optional<T> data;
    qint32 error = 0;
};

using Outcome = OutcomeOf<QByteArray>;

} // namespace quorvane
