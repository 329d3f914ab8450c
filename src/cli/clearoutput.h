#pragma once

#include "cli/failure.h"
#include "platform/packagestore.h"

#include <optional>

namespace quorvane {

/// The place that was named for a document's text in the clear.
///
/// A regular file or a package is replaced in one step. What is no regular file, and whatever is
/// named as an open descriptor (/dev/stdout, /dev/fd/3), is written to where it stands: its name
/// is not what should last. A block device is not written to.
class ClearOutput final
{
public:
    enum class Kind { Bytes, Text, Package };

    ClearOutput(const QString &path, Kind kind);

    /// Whether it is written to where it stands.
    bool isStream() const;

    /// Why what stands there must stay; nothing where it may be replaced or written to.
    std::optional<Failure> refusal() const;

    std::optional<Failure> write(const QByteArray &content) const;
    std::optional<Failure> write(const PackageEntries &entries) const;

private:
    int openStream() const;
    std::optional<Failure> refusalOfFile() const;
    std::optional<Failure> refusalOfFolder(const PackageEntries &entries) const;
    std::optional<Failure> writeStream(const QByteArray &content) const;
    std::optional<Failure> narrowMode() const;

    const QString m_path;
    const QByteArray m_name; ///< The path as the system takes it.
    const Kind m_kind;
    const std::optional<QByteArray> m_descriptor; ///< Its entry below /proc, where it leads there.
};

} // namespace quorvane
