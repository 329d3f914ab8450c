#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// The text in Mac Roman, a byte for each UTF-16 unit; nothing where a character has no such byte.
[[nodiscard]] std::optional<QByteArray> macRomanFrom(const QString &text);

} // namespace quorvane
