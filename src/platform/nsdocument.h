#pragma once

#include "platform/filestore.h"
#include "platform/nsoperationqueue.h"
#include "platform/nstimer.h"
#include "platform/nswindow.h"
#include "platform/panels.h"
#include "platform/recoverystore.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <functional>
#include <memory>
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
    TimerFactory &timers;
    RecoveryStore *recovery = nullptr; ///< Null where nothing is kept against a crash.
};

/// How a read of a document's file ended.
struct ReadOutcome
{
    bool isRead = false;
    std::optional<QString> reason; ///< Why not; absent where the user has been told.
};

/// A document with a file, an edited mark and a window.
///
/// - Save, save as, revert. What it writes is whole or not written; a failure is told on its
/// window.
/// - It saves itself: 5 seconds after the last change, 30 seconds after the first one at the
/// latest,
///   at a close and at the end of the program. What has no file, or whose file cannot be written,
///   is kept for recovery meanwhile.
/// - A file that another program has changed or taken away is never overwritten without a question.
/// - What is not on the disk yet is known apart from the edited mark, which others may clear.
class NSDocument : public QObject
{
    Q_OBJECT

public:
    NSDocument(const DocumentSurroundings &surroundings, QString extension);

    std::optional<QString> fileURL() const { return m_fileURL; } ///< An absolute path.

    bool isOwnFile(const QString &path) const; ///< Whether that is fileURL, spelt in another way.
    /// Makes the file of that path the document's, as it stands there now.
    void setFileURL(const QString &path);
    QString displayName() const; ///< The file's name without extension, or the untitled one.
    void setUntitledName(const QString &name);

    bool isDocumentEdited() const;
    virtual void updateChangeCount(NSDocumentChangeType change);
    /// Whether something of the user's is in memory alone, whatever the edited mark says.
    bool hasUnsavedChanges() const;

    /// The file's bytes; nothing where there are none to write.
    [[nodiscard]] virtual std::optional<QByteArray> dataOfType() = 0;
    /// Takes a file's bytes; false where the document cannot open. Nothing is shown.
    [[nodiscard]] virtual bool readFromData(const QByteArray &data) = 0;

    /// Whether readFromData has told the user itself why the document does not open.
    virtual bool hasToldWhyNotRead() const { return false; }

    /// Reads the file of that path and makes it the document's. On failure all stays as it was.
    [[nodiscard]] ReadOutcome readFromURL(const QString &path);
    /// Takes up a document that was kept for recovery: it has no file, and counts as edited from
    /// when it can be read until it is saved or discarded.
    [[nodiscard]] ReadOutcome readFromRecovery(std::unique_ptr<RecoveryStore::Entry> entry);

    virtual void makeWindowControllers() = 0;
    virtual NSWindow *windowForSheet() const = 0;
    void showWindows();

    virtual void saveDocument();
    void saveDocumentAs();
    /// Saves to the file, or asks for one first; \a done learns whether the document was written.
    void saveDocument(std::function<void(bool saved)> done);
    /// Asks, then reads the file again as at opening.
    void revertDocumentToSaved();
    /// Saves what is unsaved, without a command: to the file, or else for recovery. A failure is
    /// told of once, until a save has succeeded.
    void autosave();
    /// Notices what other programs did to the file: to be called when the window becomes key.
    void checkFileOnDisk();

    /// Says whether another document has the file of that path open: then it is not written.
    void setIsOpenElsewhere(std::function<bool(const QString &path)> isOpen)
    {
        m_isOpenElsewhere = std::move(isOpen);
    }

    /// Saves a document that has a file; asks where that fails, and where there is no file yet.
    /// \a shouldClose learns the answer.
    virtual void canCloseDocument(std::function<void(bool should)> shouldClose);
    void performClose(); ///< Closes, after the question of canCloseDocument.
    void
    close(); ///< Closes at once, with no question and no save. What is kept for recovery stays.
    /// Saves or else keeps for recovery what may be written, and closes, with no word to anybody.
    void closeWithoutReview();

    bool isClosed() const { return m_closed; }

Q_SIGNALS:
    void fileURLChanged();
    void displayNameChanged();
    void editedChanged(bool edited);
    void saved(const QString &path); ///< By a command or a close, not by itself.
    void closed();

protected:
    /// Why the document may not be written now, in a sentence; nothing where it may.
    virtual std::optional<QString> reasonNotToWrite() const { return std::nullopt; }

    /// Whether nothing in it is the user's: it was read and never opened.
    virtual bool isUntouched() const { return false; }

    /// The editor's own part of the edited mark.
    virtual bool isTextEdited() const { return false; }

    virtual void markTextUnedited() { }

    /// Closes with no question, unless what is unsaved can neither be saved nor kept.
    void closeUnlessUnsaved(std::function<void(bool should)> shouldClose);

    /// Whether the user may drop the changes for what the file holds.
    virtual bool mayRevert() const { return true; }

    /// To be called at each change of the text.
    void noteChange();

    /// Ends the sheets of the window. A question of the machinery's own counts as cancelled then,
    /// whatever button the code of such an end stands for.
    void endSheets();

    /// Runs on a later turn of the main loop, unless the document is gone by then.
    void later(std::function<void()> operation);

private:
    enum class Writing { Done, Failed, Conflict };

    /// What stands under the document's name in place of what it knows; nothing: no file.
    struct FileConflict
    {
        std::optional<FileStamp> found;
        bool operator==(const FileConflict &) const = default;
    };

    struct WriteOutcome
    {
        Writing result = Writing::Done;
        QString reason; ///< Of a failure.
        bool isInPlace = false; ///< The new content stands there all the same.
        FileConflict conflict;
    };

    static inline const QString saveAnywayChoice = QStringLiteral("Save Anyway");
    static inline const QString saveAsChoice = QStringLiteral("Save As…");
    static inline const QString cancelChoice = QStringLiteral("Cancel");

    void followChanges();
    void takePath(const QString &path);
    void updateWindowTitle();
    /// Asks on the window. \a answered learns the title of the button; without a window "Cancel".
    void ask(const NSAlert &alert, std::function<void(const QString &choice)> answered);

    // Saving
    void saveToPanelPath(std::function<void(bool saved)> done);
    [[nodiscard]] bool saveTo(const QString &path);
    [[nodiscard]] WriteOutcome write(const QString &path);
    void takeFile(const QString &path, const std::optional<FileStamp> &stamp,
                  const QByteArray &data);
    void nothingIsUnsaved();
    void tell(const WriteOutcome &outcome, const QString &path);

    // Autosave and recovery
    void scheduleAutosave();
    void scheduleRetry();
    void stopTimers();
    void autosaveUntitled();
    /// \return why it could not be kept; nothing where it is, or where nothing is ever kept.
    [[nodiscard]] std::optional<QString> keepForRecovery();
    void discardRecovery();

    // What other programs do to the file
    static QByteArray digestOf(const QByteArray &data);
    [[nodiscard]] ReadOutcome readFrom(const QByteArray &data, const QString &path);
    [[nodiscard]] std::optional<FileConflict> conflictOnDisk();
    bool holdsKnownContent();
    void readUntouchedAgain(const FileConflict &conflict);
    NSAlert conflictAlert(const FileConflict &conflict);
    void askAboutConflict(const FileConflict &conflict, std::function<void(bool saved)> done);
    void overwrite(const FileConflict &conflict);
    void readAgain();

    // Closing
    /// \return whether nothing of the user's is in memory alone any more.
    [[nodiscard]] bool saveOrKeep();
    void saveThenClose(const std::function<void(bool should)> &shouldClose);
    void askToSave(const std::function<void(bool should)> &shouldClose);
    void reviewUnsaved(const NSAlert &alert, std::function<void()> save,
                       std::function<void(bool should)> shouldClose);

    DocumentSurroundings m_surroundings;
    QString m_extension;
    std::function<bool(const QString &path)> m_isOpenElsewhere;
    std::optional<QString> m_fileURL;
    QString m_untitledName;
    int m_changeCount = 0;
    bool m_toldEdited = false;
    bool m_reviewing = false;
    bool m_closed = false;

    /// Was marked edited when somebody cleared the mark without a save.
    bool m_isUnsavedBehindMark = false;

    std::unique_ptr<NSTimer> m_pauseTimer; ///< Since the last change.
    std::unique_ptr<NSTimer> m_longestTimer; ///< Since the first unsaved one, or a failure.
    bool m_hasToldAutosaveFailed = false;

    std::unique_ptr<RecoveryStore::Entry> m_recovery; ///< Null while nothing is kept.
    bool m_isRecoveryCurrent = false;
    bool m_isRecovered = false; ///< Came from there, and was not saved since.

    std::optional<FileStamp> m_knownFile; ///< What was last read or written; nothing: no file.
    QByteArray m_knownDigest; ///< Of its content; empty where it is not known.
    std::optional<FileConflict> m_toldConflict; ///< Which the user has been asked about.
    std::optional<FileConflict> m_unreadableFile; ///< Which was found when reading it again.
    bool m_isEndingSheets = false;
};

} // namespace quorvane
