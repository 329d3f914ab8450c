#pragma once

#include "platform/filestore.h"

#include <cerrno>

#include <sys/stat.h>

namespace quorvane {

/// Repeats a system call for as long as signals interrupt it.
template <typename Call> auto uninterrupted(Call call)
{
    auto result = call();
    while (result == -1 && errno == EINTR) {
        result = call();
    }
    return result;
}

/// \return why a thing of that mode is no file to read or replace: an errno, or 0 if it is one.
int errorOfKind(mode_t mode);

/// A file descriptor and its owner.
class Descriptor final
{
public:
    explicit Descriptor(int descriptor = -1);
    ~Descriptor();
    Descriptor(Descriptor &&other) noexcept;
    Descriptor &operator=(Descriptor &&other) noexcept;
    Q_DISABLE_COPY(Descriptor)

    int get() const { return m_descriptor; }

    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

/// Reads from the file's place on until \a data is full or the file ends.
/// \return the bytes read, or -1.
qint64 readAll(int file, QByteArray &data);

/// \return whether all of the data was written.
bool writeAll(int file, const QByteArray &data);

/// \return whether the file holds these bytes and no others; nothing where it cannot be read.
std::optional<bool> holds(int file, const QByteArray &data);

/// One replacement of one file, as PosixFileStore promises it.
class PosixReplacement final
{
public:
    /// \a data is borrowed and outlives this.
    PosixReplacement(const QByteArray &path, const QByteArray &data);
    Q_DISABLE_COPY_MOVE(PosixReplacement)

    [[nodiscard]] std::optional<FileError> run();

private:
    using Result = std::optional<FileError>;

    Result locate();
    Result openFolderOf(const QByteArray &path);
    Result followLink();
    Result openOld();
    Result makeNew();
    Result write();
    Result dress();
    Result flush();
    Result compare();
    Result putInPlace();
    Result flushFolder();

    bool takeOverOwner();
    FileError failure(QLatin1StringView step, const QByteArray &path) const;
    QByteArray pathOf(const QByteArray &name) const;

    const QByteArray &m_data;
    QByteArray m_path; ///< The file itself, once links have been followed.
    QByteArray m_folderPath;
    QByteArray m_name;
    QByteArray m_newName;
    Descriptor m_folder;
    Descriptor m_oldFile; ///< None where there was no file, or where it cannot be read.
    Descriptor m_newFile;
    std::optional<struct stat> m_old;
};

} // namespace quorvane
