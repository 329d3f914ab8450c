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

/// The body of a text, of RTF or of the RTFD package at \a path, whichever it is.
/// \param path "-" is standard input.
Result<QByteArray> bodyFrom(const QString &path);

} // namespace quorvane
