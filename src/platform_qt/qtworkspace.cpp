#include "platform_qt/qtworkspace.h"

#include <QDesktopServices>
#include <QStringList>

namespace quorvane {

using namespace Qt::StringLiterals;

bool QtWorkspace::openURL(const QUrl &url)
{
    // A link in a document may come from anybody: nothing that starts a program or shows a file.
    const bool isAllowed = QStringList({u"http"_s, u"https"_s, u"mailto"_s}).contains(url.scheme());
    return isAllowed && url.isValid() && QDesktopServices::openUrl(url);
}

} // namespace quorvane
