#pragma once

#include <QByteArrayView>

namespace quorvane {

/// Whether RTF says something about its text that reading and writing it again would not keep:
/// where text beside the text stands, fields that count, what is embedded or marked as deleted.
/// Linear in its length.
bool rtfHoldsSurplus(QByteArrayView rtf);

} // namespace quorvane
