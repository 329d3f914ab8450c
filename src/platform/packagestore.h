#pragma once

#include "platform/filestore.h"

#include <vector>

namespace quorvane {

/// A file of a package, or a folder in it.
struct PackageEntry
{
    QByteArray name; ///< As on the disk; UTF-8 where we make it.
    bool isFolder = false;
    QByteArray bytes; ///< Of a file.
    std::vector<PackageEntry> children; ///< Of a folder.

    bool operator==(const PackageEntry &) const = default;
};

using PackageEntries = std::vector<PackageEntry>;

/// Packages: folders that people see as one document.
class PackageStore
{
public:
    struct ReadResult
    {
        std::optional<PackageEntries> entries; ///< In the order of their names.
        FileError error; ///< Told only where there are no entries.
        /// Paths inside the package of what was left out: links, devices, and what lies too deep.
        std::vector<QByteArray> leftOut;
    };

    virtual ~PackageStore() = default;
    [[nodiscard]] virtual ReadResult read(const QString &path) = 0;
    /// Puts a package of these entries in place of what stands under the name: on success all of it
    /// is on the disk, on failure what was there is whole and untouched, but for
    /// FileError::isInPlace.
    /// \return nothing on success.
    [[nodiscard]] virtual std::optional<FileError> replace(const QString &path,
                                                           const PackageEntries &entries) = 0;
};

} // namespace quorvane
