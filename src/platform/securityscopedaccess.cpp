#include "platform/securityscopedaccess.h"

#include <QFile>
#include <QFileInfo>

namespace quorvane {

// Tried rather than asked: modes are not all that may forbid it. A pipe would hold the try up.
bool FileModeAccess::startAccessingSecurityScopedResource(const QString &path)
{
    return QFileInfo(path).isFile() && QFile(path).open(QIODevice::ReadOnly);
}

void FileModeAccess::stopAccessingSecurityScopedResource(const QString &)
{ }

} // namespace quorvane
