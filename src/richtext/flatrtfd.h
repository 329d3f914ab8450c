#pragma once

#include <QByteArray>

#include <optional>
#include <vector>

namespace quorvane {

/// One entry of a flattened RTFD, as it stands in the file.
struct FlatRtfdEntry
{
    enum class Kind { File, Directory, Unknown };

    QByteArray name; ///< Bytes as in the file, UTF-8 where we write them.
    Kind kind = Kind::File;
    QByteArray bytes; ///< File: its contents. Unknown: the whole node.
    std::vector<FlatRtfdEntry> children; ///< Directory: its entries in their order.

    bool operator==(const FlatRtfdEntry &) const = default;
};

using FlatRtfdEntries = std::vector<FlatRtfdEntry>;

/// What a reader could take from the bytes.
struct FlatRtfd
{
    FlatRtfdEntries entries;
    bool damaged = false; ///< Something was cut short or contradicted itself.
};

/// Reads a flattened RTFD. Lengths are never believed beyond the bytes that are there; an entry
/// that is cut short gives what is left of it. \return nothing where the bytes do not begin as one.
std::optional<FlatRtfd> readFlatRtfd(const QByteArray &data);

/// The entries in their order; contents of 4096 bytes or more begin at a multiple of 4096.
QByteArray writeFlatRtfd(const FlatRtfdEntries &entries);

/// The modification time and rights of an entry, as the entry "." tells them.
struct FlatRtfdAttributes
{
    QByteArray name;
    quint32 modified = 0; ///< Seconds since 1970, UTC.
    quint32 mode = 0666;
    quint32 first = 0; ///< Of unknown meaning; 0 in text.
    quint32 second = 0; ///< Of unknown meaning; 0 in text.

    bool operator==(const FlatRtfdAttributes &) const = default;
};

/// The records of the entry ".", as far as they are whole.
std::vector<FlatRtfdAttributes> readFlatRtfdAttributes(const QByteArray &data);
QByteArray writeFlatRtfdAttributes(const std::vector<FlatRtfdAttributes> &records);

} // namespace quorvane
