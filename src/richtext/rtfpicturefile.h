#pragma once

#include "richtext/rtfsink.h"

#include <QSize>
#include <QString>

namespace quorvane {

/// The extension for a file with the bytes of a picture, by the bytes before what RTF says.
QString extensionOfPicture(const RtfPicture &picture);

/// The size of the picture in twips; where RTF tells none, as its pixels say.
QSize sizeOfPicture(const RtfPicture &picture);

} // namespace quorvane
