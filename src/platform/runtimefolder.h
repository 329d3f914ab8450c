#pragma once

#include "platform/filestore.h"
#include "platform/posixreplacement.h"

#include <variant>

namespace quorvane {

/// Readable copies for other programs, in a folder of the user's alone (0700) that lies in memory
/// and ends with the session: $XDG_RUNTIME_DIR. The folder, "quorvane-" and six characters, is made
/// with the first copy and goes with \a clear or with this object. What a program that crashed has
/// left there is taken away by the next one.
class RuntimeFolder final
{
public:
    /// \a runtimePath is where the folder is made; empty where the session has none.
    explicit RuntimeFolder(QString runtimePath);
    ~RuntimeFolder();
    Q_DISABLE_COPY_MOVE(RuntimeFolder)

    /// The session's own; empty where there is none, or where others than the user could look in.
    static QString sessionPath();
    /// Takes away the folders of programs that no longer run.
    static void removeAbandoned(const QString &runtimePath);

    /// Whether there is a place for copies at all.
    bool hasPlace() const { return !m_runtimePath.isEmpty(); }

    /// Puts a copy there that its owner alone can read and nobody can write (0400). Of the name
    /// only what is safe is taken; two of a name stand apart. \return the path, or why there is
    /// none.
    [[nodiscard]] std::variant<QString, FileError> add(const QString &name,
                                                       const QByteArray &bytes);
    void clear();

private:
    std::optional<FileError> make();

    QString m_runtimePath;
    QString m_path; // empty while there is no folder
    Descriptor m_lock; // held for as long as the folder is in use
    int m_copies = 0;
};

} // namespace quorvane
