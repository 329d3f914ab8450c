#include "platform/nsdocumentcontroller.h"

#include <QFileInfo>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

NSDocumentController::NSDocumentController(const DocumentSurroundings &surroundings,
                                           ModalAlerts &alerts, QString extension, Factory factory)
    : m_surroundings(surroundings)
    , m_alerts(alerts)
    , m_extension(std::move(extension))
    , m_factory(std::move(factory))
{ }

NSDocumentController::~NSDocumentController() = default;

std::vector<NSDocument *> NSDocumentController::documents() const
{
    std::vector<NSDocument *> result;
    result.reserve(m_documents.size());
    for (const std::unique_ptr<NSDocument> &document : m_documents) {
        result.push_back(document.get());
    }
    return result;
}

void NSDocumentController::newDocument()
{
    std::unique_ptr<NSDocument> document = m_factory();
    ++m_untitledCount;
    if (m_untitledCount > 1) {
        document->setUntitledName(u"Untitled %1"_s.arg(m_untitledCount));
    }
    add(std::move(document));
}

void NSDocumentController::add(std::unique_ptr<NSDocument> document)
{
    NSDocument *added = document.get();
    m_documents.push_back(std::move(document));
    added->setIsOpenElsewhere([this, added](const QString &path) {
        const NSDocument *open = documentForPath(path);
        return open != nullptr && open != added;
    });
    connect(added, &NSDocument::closed, this, [this, added] { remove(added); });
    connect(added, &NSDocument::fileURLChanged, this,
            [this, added] { Q_EMIT fileUsed(*added->fileURL()); });
    added->makeWindowControllers();
    added->showWindows();
    Q_EMIT documentsChanged();
}

void NSDocumentController::remove(const NSDocument *document)
{
    const auto found =
        std::find_if(m_documents.begin(), m_documents.end(),
                     [document](const auto &each) { return each.get() == document; });
    if (found == m_documents.end()) {
        return;
    }
    // The document is still at work in its own close: it goes with the next turn of the loop.
    found->release()->deleteLater();
    m_documents.erase(found);
    Q_EMIT documentsChanged();
}

void NSDocumentController::openDocument()
{
    m_surroundings.panels.beginOpen({{m_extension}, true},
                                    [self = QPointer(this)](const QStringList &paths) {
                                        for (const QString &path : paths) {
                                            if (self) {
                                                self->openDocumentWithContentsOfURL(path);
                                            }
                                        }
                                    });
}

NSDocument *NSDocumentController::documentForPath(const QString &path) const
{
    const QString wanted = QFileInfo(path).canonicalFilePath();
    if (wanted.isEmpty()) {
        return nullptr;
    }
    for (const std::unique_ptr<NSDocument> &document : m_documents) {
        if (document->fileURL() && QFileInfo(*document->fileURL()).canonicalFilePath() == wanted) {
            return document.get();
        }
    }
    return nullptr;
}

void NSDocumentController::openDocumentWithContentsOfURL(const QString &path,
                                                         const OpenCompletion &completion)
{
    const auto complete = [&completion](NSDocument *document, bool wasAlreadyOpen) {
        if (completion) {
            completion(document, wasAlreadyOpen);
        }
    };
    if (NSDocument *open = documentForPath(path)) {
        open->showWindows();
        complete(open, true);
        return;
    }
    const FileStore::ReadResult file = m_surroundings.files.read(path);
    if (!file.data) {
        tellNotOpened(path, file.error.reason());
        complete(nullptr, false);
        return;
    }
    std::unique_ptr<NSDocument> document = m_factory();
    if (!document->readFromData(*file.data)) {
        if (!document->hasToldWhyNotRead()) {
            tellNotOpened(
                path,
                u"The file is not a document of this program, or it is damaged.\n\n%1"_s.arg(path));
        }
        complete(nullptr, false);
        return;
    }
    document->setFileURL(path);
    NSDocument *opened = document.get();
    add(std::move(document));
    Q_EMIT fileUsed(*opened->fileURL());
    complete(opened, false);
}

void NSDocumentController::tellNotOpened(const QString &path, const QString &reason)
{
    const NSAlert alert {
        u"“%1” could not be opened."_s.arg(QFileInfo(path).fileName()), reason, {u"OK"_s}};
    m_alerts.runModal(alert, [](AlertAnswer) {});
}

void NSDocumentController::autosaveDocuments()
{
    for (NSDocument *document : documents()) {
        document->autosave();
    }
}

void NSDocumentController::closeAllDocuments(std::function<void(bool closed)> done)
{
    reviewNext(std::move(done));
}

void NSDocumentController::reviewNext(std::function<void(bool closed)> done)
{
    const auto edited =
        std::find_if(m_documents.begin(), m_documents.end(),
                     [](const auto &document) { return document->isDocumentEdited(); });
    if (edited == m_documents.end()) {
        for (NSDocument *document : documents()) {
            document->close();
        }
        done(true);
        return;
    }
    const QPointer<NSDocument> document(edited->get());
    const auto answered = std::make_shared<bool>(false); // owned by the question and by this call
    document->canCloseDocument([self = QPointer(this), document, answered, done](bool should) {
        *answered = true;
        if (!should || !self) {
            done(false);
            return;
        }
        if (document) {
            document->close();
        }
        self->reviewNext(done);
    });
    // A locked document closes at once and never answers: the review goes on without it.
    if (!*answered && document->isClosed()) {
        reviewNext(std::move(done));
    }
}

} // namespace quorvane
