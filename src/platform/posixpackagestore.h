#pragma once

#include "platform/packagestore.h"

namespace quorvane {

/// Packages on the disks of this machine.
///
/// Reading never leaves the package: what stands in it is opened without following links, and only
/// files and folders of the package's own disk count.
///
/// A package is replaced, never written in place: its files go to a new folder beside it, are
/// brought to the disk and measured, and then the two folders change their names in one step. The
/// old one is taken away afterwards.
///
/// - Only a package, an empty folder or a file is replaced: a folder that holds anything else, but
///   no file named as \a mark, stays, whoever named it.
/// - A new package is the owner's alone (0700, its files 0600); a replaced one keeps its folder's
///   mode.
/// - A process that is killed on the way leaves the old package or the new one under a hidden name
///   that begins with ".quorvane-saving-".
class PosixPackageStore final : public PackageStore
{
public:
    static constexpr qint64 largestPackage = 1'000'000'000;
    static constexpr int mostEntries = 65536;
    static constexpr int deepest = 16;

    /// \param mark the file by which a folder is known as a package.
    /// \param largest the most bytes of all its files together.
    explicit PosixPackageStore(QByteArray mark = "TXT.rtf", qint64 largest = largestPackage);

    [[nodiscard]] ReadResult read(const QString &path) override;
    [[nodiscard]] std::optional<FileError> replace(const QString &path,
                                                   const PackageEntries &entries) override;

private:
    QByteArray m_mark;
    qint64 m_largest;
};

} // namespace quorvane
