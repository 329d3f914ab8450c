#pragma once

#include <QString>

namespace quorvane {

/// The name of a document's file as people are shown it: without folder and ending.
QString shownName(const QString &path);
/// The folder of a file as people are shown it: their own as "~".
QString shownFolder(const QString &path);
/// A text as the title of a menu item that no letter of it is a key for.
QString withoutMnemonic(QString text);

} // namespace quorvane
