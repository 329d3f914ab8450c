#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// Why a file could not be read or written.
struct FileError
{
    int code = 0;      ///< errno; 0 where the system gave none (bytes read back differ).
    QString step;      ///< What was being done, for a sentence: "writing the new file".
    QString path;      ///< The file or folder it was done to.

    QString reason() const; ///< A plain sentence for the user, with the path.
};

/// The files of documents.
class FileStore
{
public:
    struct ReadResult
    {
        std::optional<QByteArray> data;
        FileError error; ///< Told only where there is no data.
    };

    virtual ~FileStore() = default;
    [[nodiscard]] virtual ReadResult read(const QString &path) = 0;
    /// Puts \a data in place of the file: on success all of it is on the disk under the name, on
    /// failure the file that was there is whole and untouched. \return nothing on success.
    [[nodiscard]] virtual std::optional<FileError> replace(const QString &path, const QByteArray &data) = 0;
};

} // namespace quorvane
