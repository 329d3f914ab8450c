#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// All that can be read from the descriptor; nothing where a read fails, which leaves errno.
std::optional<QByteArray> readEverything(int descriptor);

/// \return whether every byte went out; if not, errno tells why.
bool writeEverything(int descriptor, const QByteArray &bytes);

/// The text without characters that make a terminal do something: they are shown as ^[ and the
/// like. Line ends and tabs stay where \a keepsLines says so.
QString harmless(const QString &text, bool keepsLines = false);

/// Writes to standard output; to a terminal, only what is harmless. \return whether all went out;
/// a failure has been told.
bool printText(const QString &text);

/// A line on standard error, with the program's name in front.
void complain(const QString &text);
/// The same about a file.
void complain(const QString &path, const QString &reason);

} // namespace quorvane
