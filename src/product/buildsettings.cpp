#include "product/buildsettings.h"

#include <QCoreApplication>
#include <QDir>

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
    // Beside the program, wherever it was put, and where it was built.
    const QDir program(QCoreApplication::applicationDirPath());
    const QString beside = QDir::cleanPath(program.filePath(u"../share/doc/quorvane"_s));
    return QDir(beside).exists() ? beside : QStringLiteral(QUORVANE_GUIDE_FOLDER);
}

} // namespace quorvane::buildsettings
