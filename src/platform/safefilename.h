#pragma once

#include <QString>

namespace quorvane {

/// A name that says where a file goes and nothing else: no path, no hidden file, nothing that a
/// reader of the name could take for another one. "Attachment" where nothing is left of \a name.
QString safeFileName(const QString &name);

/// How many bytes of a file mayRunAsProgram looks at.
constexpr qsizetype programBeginning = 4096;

/// Whether opening a file of that name and content may run it: it is a program, a script, or starts
/// one.
bool mayRunAsProgram(const QString &name, const QByteArray &bytes);

} // namespace quorvane
