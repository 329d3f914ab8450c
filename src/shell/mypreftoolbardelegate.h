#pragma once

#include "shell/qvpreftoolbardelegate.h"

namespace quorvane {

/// The panels of this program.
class MyPrefToolbarDelegate final : public QVPrefToolbarDelegate
{
    Q_OBJECT

public:
    using QVPrefToolbarDelegate::QVPrefToolbarDelegate;

protected:
    QList<int> heightArray() const override;
    QStringList returnAllkeys() const override;
    QAction *toolbarItemForItemIdentifier(const QString &identifier) override;
};

} // namespace quorvane
