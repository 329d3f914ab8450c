#pragma once

#include <QByteArray>

namespace quorvane {

/// \a size bytes that hold nothing yet. A large buffer asks for large pages of memory, since else
/// most of the time that a copy of it takes goes to getting its pages one by one.
QByteArray largeBuffer(qsizetype size);

} // namespace quorvane
