#pragma once

#include <QString>

namespace quorvane {

/// The address that the instruction of a field leads to, with '#' before a place in the text;
/// empty where it is no hyperlink.
QString addressOfHyperlink(const QString &instruction);

} // namespace quorvane
