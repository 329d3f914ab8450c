#pragma once

#include "platform/packagestore.h"
#include "platform/posixreplacement.h"

namespace quorvane {

/// One replacement of one package, as PosixPackageStore promises it.
class PackageReplacement final
{
public:
    /// \a entries are borrowed and outlive this.
    PackageReplacement(const QByteArray &path, const QByteArray &mark,
                       const PackageEntries &entries);
    Q_DISABLE_COPY_MOVE(PackageReplacement)

    [[nodiscard]] std::optional<FileError> run();

private:
    using Result = std::optional<FileError>;

    Result locate();
    Result makeNew();
    Result writeEntries(int folder, const PackageEntries &entries, const QByteArray &inside);
    Result writeFile(int folder, const PackageEntry &entry, const QByteArray &path);
    Result writeFolder(int folder, const PackageEntry &entry, const QByteArray &path);
    Result dress();
    Result putInPlace();
    Result exchangeInSteps();
    Result flushFolder();
    void removeHidden();

    FileError failure(QLatin1StringView step, const QByteArray &path) const;

    const PackageEntries &m_entries;
    const QByteArray m_mark;
    QByteArray m_path; ///< The package itself, once links have been followed.
    QByteArray m_folderPath;
    QByteArray m_name;
    QByteArray m_newName; ///< After the exchange, the old package has it.
    Descriptor m_folder;
    Descriptor m_newFolder;
    std::optional<struct stat> m_old;
};

} // namespace quorvane
