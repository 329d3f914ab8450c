#pragma once

#include "platform/posixreplacement.h"

#include <vector>

namespace quorvane {

/// Opens a folder in a folder, never through a link.
Descriptor openFolderIn(int folder, const QByteArray &name);

/// \return the names in a folder in their order, no more than \a most; nothing where they could not
/// be read.
std::optional<std::vector<QByteArray>> namesIn(int folder, std::size_t most);

} // namespace quorvane
