#pragma once

#include "platform/filestore.h"

#include <QMap>

#include <cerrno>

namespace quorvane {

/// Files in memory, and a disk that fails on request.
class FailingFileStore final : public FileStore
{
public:
    ReadResult read(const QString &path) override
    {
        if (readError) {
            return {std::nullopt, *readError};
        }
        const auto found = files.constFind(path);
        if (found == files.constEnd()) {
            return {std::nullopt, {ENOENT, QStringLiteral("opening the file"), path}};
        }
        return {*found, {}};
    }

    std::optional<FileError> replace(const QString &path, const QByteArray &data) override
    {
        ++replaces;
        if (replaceError) {
            return replaceError;
        }
        files.insert(path, data);
        return std::nullopt;
    }

    QMap<QString, QByteArray> files;
    std::optional<FileError> readError; ///< What every read fails with while it is set.
    std::optional<FileError> replaceError; ///< What every replace fails with while it is set.
    int replaces = 0; ///< How often one was tried.
};

} // namespace quorvane
