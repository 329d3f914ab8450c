#pragma once

#include "platform/filestore.h"

namespace quorvane {

/// The files of documents on the disks of this machine.
///
/// A file is replaced, never written in place: the data goes to a new file beside it, which is
/// brought to the disk, read back, compared and then renamed over the old one. So whoever looks,
/// at whatever moment, finds the old file or the new one, whole.
///
/// - Symbolic links stay and the file they lead to is replaced, or made if there is none.
/// - A file of several names (hard links) is replaced under the one name; under the others the
///   old content stays, since no rename reaches them.
/// - A new file is the owner's alone (0600). A replaced one keeps its mode, access list and
///   attributes, and its owner and group where that is allowed; where not, the mode is narrowed so
///   that nobody gains by it.
/// - A file that the user may not write is not replaced, even where its folder would allow it; in a
///   folder that takes no new file nothing is written at all.
/// - A process that is killed on the way may leave its new file behind, under a hidden name
///   that begins with ".quorvane-saving-". Nothing takes it away: it may be all that is left of
///   the last changes.
class PosixFileStore final : public FileStore
{
public:
    static constexpr qint64 largestFile = 2147483647;

    /// \param largest the most bytes that a file may have, to be read or written.
    explicit PosixFileStore(qint64 largest = largestFile);

    [[nodiscard]] ReadResult read(const QString &path) override;
    [[nodiscard]] StampResult stamp(const QString &path) override;
    [[nodiscard]] WriteResult write(const QString &path, const QByteArray &data) override;

private:
    qint64 m_largest;
};

} // namespace quorvane
