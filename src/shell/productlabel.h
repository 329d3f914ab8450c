#pragma once

class QLabel;
class QWidget;

namespace quorvane {

/// The program's name, in large letters.
QLabel *newProductLabel(QWidget *parent);

} // namespace quorvane
