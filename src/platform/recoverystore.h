#pragma once

#include "platform/filestore.h"

#include <memory>
#include <vector>

namespace quorvane {

/// Where documents are kept that have no file of their own yet, or whose file cannot be written,
/// against a crash. What is given to it is encrypted already.
class RecoveryStore
{
public:
    /// The place of one document. It is the program's alone for as long as this lives; what it
    /// holds stays when this goes, until it is removed.
    class Entry
    {
    public:
        Entry() = default;
        Entry(const Entry &) = delete;
        Entry &operator=(const Entry &) = delete;
        virtual ~Entry() = default;
        virtual QString path() const = 0;
        virtual QString name() const = 0; ///< As it was given, if need be shortened.
        [[nodiscard]] virtual FileStore::ReadResult read() = 0;
        /// Replaces what it holds, as a file is replaced.
        [[nodiscard]] virtual std::optional<FileError> write(const QByteArray &data) = 0;
        virtual void remove() = 0;
    };

    struct NewEntry
    {
        std::unique_ptr<Entry> entry; ///< Null where none could be made.
        FileError error; ///< Told only then.
    };

    virtual ~RecoveryStore() = default;
    /// \a name is what the document is called; empty where it has no name yet.
    [[nodiscard]] virtual NewEntry newEntry(const QString &name) = 0;
    /// What programs have left that run no more, the oldest first.
    [[nodiscard]] virtual std::vector<std::unique_ptr<Entry>> takeAbandoned() = 0;
};

} // namespace quorvane
