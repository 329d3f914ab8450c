#pragma once

class QDialog;

namespace quorvane {

/// Where a dialog of the toolkit is taller than the screen lets it be, all but its buttons scrolls
/// from now on.
void scrollWhereTooTall(QDialog &dialog);

} // namespace quorvane
