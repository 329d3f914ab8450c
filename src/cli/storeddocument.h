#pragma once

#include "cli/failure.h"
#include "cli/headless.h"
#include "document/documentfile.h"

#include <memory>

namespace quorvane {

/// A document on the disk: what its file says in the clear and, with its password, its body. It is
/// saved in the current version, under its window's frame and all else that it came with.
///
/// Each instance stands for itself: several may be at work in several threads.
class StoredDocument final
{
public:
    /// Reads a document's file.
    static Result<std::unique_ptr<StoredDocument>> load(const QString &path);

    /// Writes a new document in place of whatever stands under the name.
    static std::optional<Failure> create(const QString &path, const QByteArray &body,
                                         const QString &note, const QString &password);

    const DocumentFile &file() const { return m_file; }

    CipherFamily cipher() const { return cipherOf(static_cast<qint64>(m_file.appversion)); }

    /// What is wrong with the file as far as it shows without the password. Nothing authenticates
    /// the text, so much stays unseen.
    std::optional<Failure> visibleDamage() const;

    /// Tries the password. \return nothing where it opens the document.
    std::optional<Failure> unlock(const QString &password);

    /// Of an unlocked document.
    QByteArray body() const;

    /// Whether the body reads as a text. Where nothing but the padding proves the password, about
    /// one wrong one in 256 unlocks noise.
    bool readsAsText() const;

    void setNote(const QString &note);
    void setPassword(const QString &password);

    /// Why an unlocked document is not to be saved: it has no password, or is noise.
    std::optional<Failure> whyNotSaved() const;
    /// Encrypts all anew and replaces the file, unless another program changed it since the load.
    /// On any failure the old one is whole.
    std::optional<Failure> save();

private:
    explicit StoredDocument(QString path);

    Failure refusalOf(const QString &password) const;
    /// All of it encrypted anew; nothing where that failed.
    std::optional<QByteArray> encrypted();

    Headless m_world;
    QString m_path;
    QByteArray m_bytes; ///< The file as it was read.
    DocumentFile m_file;
    bool m_showsToolbar = true;
    MyDocument m_document;
};

} // namespace quorvane
