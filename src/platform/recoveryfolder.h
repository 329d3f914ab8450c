#pragma once

#include "platform/recoverystore.h"

namespace quorvane {

/// A folder of the user's alone (0700), made when something is first put into it. Each document is
/// a file of an unguessable name, its own one behind that, with a lock beside it, which the kernel
/// holds for as long as the program runs that made it: so a second program leaves it alone, and the
/// next one takes it.
class RecoveryFolder final : public RecoveryStore
{
public:
    /// \a path is absolute. \a files is borrowed and outlives this and its entries.
    RecoveryFolder(QString path, FileStore &files);

    [[nodiscard]] NewEntry newEntry(const QString &name) override;
    [[nodiscard]] std::vector<std::unique_ptr<Entry>> takeAbandoned() override;

private:
    QString m_path;
    FileStore &m_files;
};

} // namespace quorvane
