#pragma once

class QDialog;
class QWidget;

namespace quorvane {

/// How tall a window may be to be seen whole on its screen, without the title bar.
int tallestOnScreen(const QWidget &window);

/// Where a dialog of the toolkit is taller than the screen lets it be, all but its buttons scrolls
/// from now on.
void scrollWhereTooTall(QDialog &dialog);

} // namespace quorvane
