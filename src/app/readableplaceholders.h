#pragma once

#include <QObject>

namespace quorvane {

/// Words that stand in an empty field are readable in every palette: some dark ones leave them
/// black. It follows the palette for as long as it lives.
class ReadablePlaceholders final : public QObject
{
    Q_OBJECT

public:
    ReadablePlaceholders();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    static void apply();
};

} // namespace quorvane
