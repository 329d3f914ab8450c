#pragma once

#include "platform/filestore.h"

#include <QMap>

#include <cerrno>

namespace quorvane {

/// Files in memory, and a disk that fails on request. Whoever changes \a files directly is another
/// program.
class FailingFileStore final : public FileStore
{
public:
    ReadResult read(const QString &path) override
    {
        if (readError) {
            return {std::nullopt, *readError, {}};
        }
        const StampResult found = stamp(path);
        return found.stamp ? ReadResult {files.value(path), {}, *found.stamp}
                           : ReadResult {std::nullopt, found.error, {}};
    }

    StampResult stamp(const QString &path) override
    {
        if (stampError) {
            return {std::nullopt, *stampError};
        }
        const auto found = files.constFind(path);
        if (found == files.constEnd()) {
            return {std::nullopt, {ENOENT, QStringLiteral("opening the file"), path}};
        }
        return {FileStamp {1, qHash(*found), found->size(), touches.value(path)}, {}};
    }

    WriteResult write(const QString &path, const QByteArray &data) override
    {
        ++replaces;
        if (!replaceError || replaceError->isInPlace()) {
            files.insert(path, data);
            return {replaceError, stamp(path).stamp};
        }
        return {replaceError, {}};
    }

    QMap<QString, QByteArray> files;
    QMap<QString, qint64> touches; ///< What is set here moves a file's moment without changing it.
    std::optional<FileError> readError; ///< What every read fails with while it is set.
    std::optional<FileError> stampError; ///< What every look fails with while it is set.
    std::optional<FileError> replaceError; ///< What every replace fails with while it is set.
    int replaces = 0; ///< How often one was tried.
};

} // namespace quorvane
