#pragma once

#include <QIcon>
#include <QString>

namespace quorvane {

/// The program's own picture of that name, one of "generalPref", "textEditing", "advanced" and
/// "softwareUpdate": drawn when it is needed, in the palette's colours.
QIcon prefImageNamed(const QString &name);

} // namespace quorvane
