#pragma once

#include "platform/filestore.h"
#include "platform/nsoperationqueue.h"
#include "platform/nswindow.h"
#include "platform/panels.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>
#include <utility>

namespace quorvane {

enum class NSDocumentChangeType { Done = 0, Cleared = 2 };

/// What every document asks of the world around it.
struct DocumentSurroundings
{
    NSOperationQueue &mainQueue;
    FileStore &files;
    FilePanels &panels;
};

/// A document with a file, an edited mark and a window: save, save as, close with review.
/// What it writes is whole or not written; a failure is told on its window.
class NSDocument : public QObject
{
    Q_OBJECT

public:
    NSDocument(const DocumentSurroundings &surroundings, QString extension);

    std::optional<QString> fileURL() const { return m_fileURL; } ///< An absolute path.

    void setFileURL(const QString &path);
    QString displayName() const; ///< The file's name without extension, or the untitled one.
    void setUntitledName(const QString &name);

    bool isDocumentEdited() const;
    virtual void updateChangeCount(NSDocumentChangeType change);

    /// The file's bytes; nothing where there are none to write.
    [[nodiscard]] virtual std::optional<QByteArray> dataOfType() = 0;
    /// Takes a file's bytes; false where the document cannot open. Nothing is shown.
    [[nodiscard]] virtual bool readFromData(const QByteArray &data) = 0;

    /// Whether readFromData has told the user itself why the document does not open.
    virtual bool hasToldWhyNotRead() const { return false; }

    virtual void makeWindowControllers() = 0;
    virtual NSWindow *windowForSheet() const = 0;
    void showWindows();

    virtual void saveDocument();
    void saveDocumentAs();
    /// Saves an edited document that has a file, without a command. A failure is told of.
    void autosave();
    /// Saves to the file, or asks for one first; \a done learns whether the document was written.
    void saveDocument(std::function<void(bool saved)> done);

    /// Says whether another document has the file of that path open: then it is not written.
    void setIsOpenElsewhere(std::function<bool(const QString &path)> isOpen)
    {
        m_isOpenElsewhere = std::move(isOpen);
    }

    /// Asks about unsaved changes where there are any. \a shouldClose learns the answer.
    virtual void canCloseDocument(std::function<void(bool should)> shouldClose);
    void performClose(); ///< Closes, after the question of canCloseDocument.
    void close(); ///< Closes at once, with no question.

    bool isClosed() const { return m_closed; }

Q_SIGNALS:
    void fileURLChanged();
    void displayNameChanged();
    void editedChanged(bool edited);
    void closed();

protected:
    /// Why the document may not be written now, in a sentence; nothing where it may.
    virtual std::optional<QString> reasonNotToWrite() const { return std::nullopt; }

    /// The editor's own part of the edited mark.
    virtual bool isTextEdited() const { return false; }

    virtual void markTextUnedited() { }

    /// To be called whenever isTextEdited may answer otherwise than before.
    void textEditedMayHaveChanged();

    /// Runs on a later turn of the main loop, unless the document is gone by then.
    void later(std::function<void()> operation);

private:
    void saveToPanelPath(std::function<void(bool saved)> done);
    [[nodiscard]] bool writeTo(const QString &path);
    void tellNotSaved(const QString &path, const QString &reason);
    void updateWindowTitle();

    DocumentSurroundings m_surroundings;
    QString m_extension;
    std::function<bool(const QString &path)> m_isOpenElsewhere;
    std::optional<QString> m_fileURL;
    QString m_untitledName;
    int m_changeCount = 0;
    bool m_toldEdited = false;
    bool m_reviewing = false;
    bool m_closed = false;
};

} // namespace quorvane
