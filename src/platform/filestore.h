#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// The steps of reading and replacing a file, each so that it reads on behind "while".
namespace filestep {
inline constexpr QLatin1StringView lookingAtFile("looking at the file");
inline constexpr QLatin1StringView followingLink("following the symbolic link");
inline constexpr QLatin1StringView openingFile("opening the file");
inline constexpr QLatin1StringView reading("reading the file");
inline constexpr QLatin1StringView openingFolder("opening the folder");
inline constexpr QLatin1StringView makingNewFile("making a new file in the folder");
inline constexpr QLatin1StringView writing("writing the new file");
inline constexpr QLatin1StringView settingPermissions("setting the permissions of the new file");
inline constexpr QLatin1StringView flushing("bringing the new file to the disk");
inline constexpr QLatin1StringView readingBack("reading the new file back");
inline constexpr QLatin1StringView puttingInPlace("putting the new file in place");
inline constexpr QLatin1StringView flushingFolder("bringing the folder to the disk");
} // namespace filestep

/// Why a file could not be read or written.
struct FileError
{
    int code = 0; ///< errno; 0 where the system gave none (bytes read back differ).
    QString step; ///< What was being done, one of filestep.
    QString path; ///< The file or folder it was done to.

    QString reason() const; ///< Plain sentences for the user, with the path.
    /// Whether the new content stands under the name all the same: only the last step failed, and
    /// a power cut might bring the old file back, whole as it was.
    bool isInPlace() const;
};

/// What tells one state of a file from another without reading it.
struct FileStamp
{
    quint64 device = 0;
    quint64 inode = 0;
    qint64 size = 0;
    qint64 modified = 0; ///< Nanoseconds since 1970.
    bool operator==(const FileStamp &) const = default;
};

/// The files of documents.
class FileStore
{
public:
    struct ReadResult
    {
        std::optional<QByteArray> data;
        FileError error; ///< Told only where there is no data.
        FileStamp stamp; ///< Of what was read; told only where there is data.
    };

    struct WriteResult
    {
        std::optional<FileError> error;
        std::optional<FileStamp> stamp; ///< Of the new content, wherever it stands under the name.
    };

    struct StampResult
    {
        std::optional<FileStamp> stamp;
        FileError error; ///< Told only where there is no stamp.

        bool isMissing() const; ///< Nothing stands there, for certain.
    };

    virtual ~FileStore() = default;
    [[nodiscard]] virtual ReadResult read(const QString &path) = 0;
    /// How the file stands at this moment. Links are followed.
    [[nodiscard]] virtual StampResult stamp(const QString &path) = 0;
    /// Puts \a data in place of the file: on success all of it is on the disk under the name, on
    /// failure the file that was there is whole and untouched, but for FileError::isInPlace. A file
    /// that another program changes meanwhile is left to it.
    [[nodiscard]] virtual WriteResult write(const QString &path, const QByteArray &data) = 0;

    /// The same for who asks for no stamp. \return nothing on success.
    [[nodiscard]] std::optional<FileError> replace(const QString &path, const QByteArray &data)
    {
        return write(path, data).error;
    }
};

} // namespace quorvane
