#pragma once

#include <QByteArrayView>

namespace quorvane {

/// Whether RTF says something about its text that reading and writing it again would not keep:
/// pictures, tables, lists, links, and styles that the editor does not know. Linear in its length.
bool rtfHoldsSurplus(QByteArrayView rtf);

} // namespace quorvane
