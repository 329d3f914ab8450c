#include "product/buildsettings.h"

namespace quorvane::buildsettings {

using namespace Qt::StringLiterals;

QStringList updateUrls()
{
    QStringList urls {
        QStringLiteral(QUORVANE_UPDATE_HOST_1), QStringLiteral(QUORVANE_UPDATE_HOST_2),
        QStringLiteral(QUORVANE_UPDATE_HOST_3), QStringLiteral(QUORVANE_UPDATE_HOST_4)};
    for (QString &url : urls) {
        url = u"http://%1/mac/quorvane.plist"_s.arg(url);
    }
    return urls;
}

QString buildString()
{
    return QStringLiteral(QUORVANE_BUILD);
}

QString guideFolder()
{
    return QStringLiteral(QUORVANE_GUIDE_FOLDER);
}

} // namespace quorvane::buildsettings
