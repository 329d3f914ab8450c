#pragma once

#include <QLabel>

namespace quorvane {

/// Words that stand back behind others. They stay readable: the disabled text of a palette need
/// not, and not every palette has a colour for this.
class PaleLabel final : public QLabel
{
    Q_OBJECT

public:
    PaleLabel(const QString &text, QWidget *parent);
};

} // namespace quorvane
