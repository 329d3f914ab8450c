#pragma once

#include "cli/failure.h"
#include "platform/packagestore.h"

#include <QByteArray>
#include <QString>

namespace quorvane {

/// The body for other programs.
QByteArray rtfOfBody(const QByteArray &body);
QByteArray htmlOfBody(const QByteArray &body);
PackageEntries packageOfBody(const QByteArray &body);

/// Whether the folder at \a path holds the text that makes it an RTFD package.
bool holdsPackageText(const QString &path);
/// What lies in the package \a old though its text does not name it, and is not in \a fresh either.
std::optional<QByteArray> foreignEntry(const PackageEntries &old, const PackageEntries &fresh);

/// The body of a text, of RTF or of the RTFD package at \a path, whichever it is.
/// \param path "-" is standard input.
Result<QByteArray> bodyFrom(const QString &path);

} // namespace quorvane
