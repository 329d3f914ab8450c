#pragma once

#include "platform/nsdocument.h"

#include <memory>
#include <vector>

namespace quorvane {

/// The open documents of the program, in the order in which they were opened.
class NSDocumentController : public QObject
{
    Q_OBJECT

public:
    using Factory = std::function<std::unique_ptr<NSDocument>()>;
    /// \a document is null where the file did not open.
    using OpenCompletion = std::function<void(NSDocument *document, bool wasAlreadyOpen)>;

    NSDocumentController(const DocumentSurroundings &surroundings, ModalAlerts &alerts,
                         QString extension, Factory factory);
    ~NSDocumentController() override;

    /// The first one that was made and still lives; null where there is none.
    static NSDocumentController *sharedDocumentController();

    std::vector<NSDocument *> documents() const;

    /// Whether one of them has the file of that path, by whatever way to it.
    bool hasOpen(const QString &path) const { return documentForPath(path) != nullptr; }

    void newDocument();
    /// Asks for files and opens them.
    void openDocument();
    /// Opens a file, or brings forward the document that has it open, by whatever path. A file that
    /// does not open is told of.
    void openDocumentWithContentsOfURL(const QString &path, const OpenCompletion &completion = {});
    /// Saves every unsaved document that may be saved without a question, at once.
    void autosaveDocuments();
    /// Reviews the unsaved documents one by one, then closes all. \a done learns whether all
    /// agreed.
    void closeAllDocuments(std::function<void(bool closed)> done);
    /// Saves all that may be saved, keeps for recovery what cannot be, and closes all: for an end
    /// that nobody can be asked about.
    void closeWithoutReview();
    /// Opens, locked and without a file, what programs have kept that crashed or were ended.
    void restoreRecoveredDocuments();

Q_SIGNALS:
    void documentsChanged();
    /// A document was opened from that file, or saved to it by a command or a close.
    void fileUsed(const QString &path);

protected:
    NSOperationQueue &mainQueue() const { return m_surroundings.mainQueue; }

private:
    void add(std::unique_ptr<NSDocument> document);
    void remove(const NSDocument *document);
    NSDocument *documentForPath(const QString &path) const;
    void tellNotOpened(const QString &path, const QString &reason);
    void tellNotRecovered(const QString &path, const QString &reason);
    void reviewNext(std::function<void(bool closed)> done);

    DocumentSurroundings m_surroundings;
    ModalAlerts &m_alerts;
    QString m_extension;
    Factory m_factory;
    std::vector<std::unique_ptr<NSDocument>> m_documents;
    int m_untitledCount = 0;
};

} // namespace quorvane
