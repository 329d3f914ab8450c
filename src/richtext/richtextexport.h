#pragma once

#include "platform/packagestore.h"

#include <QByteArray>

class QTextDocument;

namespace quorvane {

/// The document as RTF for other programs. Images that these can show stand in the text itself,
/// other attachments are left out.
QByteArray rtfFromDocument(const QTextDocument &document);

/// The document as the files of an RTFD package. Names of attachments that would lead out of a
/// folder, or that some disk would take for one another, are changed, in the text too.
PackageEntries packageFromDocument(const QTextDocument &document);

/// The files of an RTFD package as a body that readBody takes.
QByteArray bodyFromPackage(const PackageEntries &entries);

} // namespace quorvane
