#include "shell/shownpath.h"

#include "product/release.h"

#include <QDir>
#include <QFileInfo>

namespace quorvane {

using namespace Qt::StringLiterals;

QString shownName(const QString &path)
{
    const QString name = QFileInfo(path).fileName();
    const QString ending = u'.' + documentExtension;
    return name.endsWith(ending) && name != ending ? name.chopped(ending.size()) : name;
}

QString shownFolder(const QString &path)
{
    const QString folder = QFileInfo(path).path();
    const QString home = QDir::homePath();
    const bool isBelow = folder == home || folder.startsWith(home + u'/');
    return isBelow ? u'~' + folder.mid(home.size()) : folder;
}

QString withoutMnemonic(QString text)
{
    // A tab would begin the place of the shortcut.
    return text.replace(u'&', "&&"_L1).replace(u'\t', u' ').replace(u'\n', u' ');
}

} // namespace quorvane
