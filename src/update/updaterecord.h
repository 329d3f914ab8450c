#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// What the update service says of the latest release. Other entries are passed over.
struct UpdateRecord
{
    std::optional<qint64> lra; ///< The latest release available, as a Release Number.
    QString gfu; ///< What "Download Update" opens.
    QString dpu; ///< The download page.

    /// Nothing where the bytes are no property list, or its root is no dictionary.
    static std::optional<UpdateRecord> fromData(const QByteArray &data);
};

} // namespace quorvane
