#pragma once

#include <QString>
#include <QStringList>

/// What whoever builds the program decides, and not its source.
namespace quorvane::buildsettings {

/// The four addresses of the update service, in the order in which they are asked.
QStringList updateUrls();
/// Which build of the release this is.
QString buildString();
/// Where the user guide is, if it is installed.
QString guideFolder();

} // namespace quorvane::buildsettings
