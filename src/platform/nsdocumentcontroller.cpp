#include "platform/nsdocumentcontroller.h"

#include <QFileInfo>
#include <QMap>
#include <QPointer>

#include <algorithm>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

std::vector<NSDocumentController *> livingControllers;

constexpr double cascadeStep = 28; // about a title bar: each title stays to be read

} // namespace

NSDocumentController::NSDocumentController(const DocumentSurroundings &surroundings,
                                           ModalAlerts &alerts, QString extension, Factory factory)
    : m_surroundings(surroundings)
    , m_alerts(alerts)
    , m_extension(std::move(extension))
    , m_factory(std::move(factory))
{
    livingControllers.push_back(this);
}

NSDocumentController::~NSDocumentController()
{
    std::erase(livingControllers, this);
}

NSDocumentController *NSDocumentController::sharedDocumentController()
{
    return livingControllers.empty() ? nullptr : livingControllers.front();
}

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
    connect(added, &NSDocument::saved, this, &NSDocumentController::fileUsed);
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
    for (const std::unique_ptr<NSDocument> &document : m_documents) {
        // By its name, too: the file may be gone, and have nothing but that.
        if (document->isOwnFile(path)
            || (!wanted.isEmpty() && document->fileURL()
                && QFileInfo(*document->fileURL()).canonicalFilePath() == wanted)) {
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
    std::unique_ptr<NSDocument> document = m_factory();
    if (const ReadOutcome outcome = document->readFromURL(path); !outcome.isRead) {
        if (outcome.reason) {
            tellNotOpened(path, *outcome.reason);
        }
        complete(nullptr, false);
        return;
    }
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

void NSDocumentController::closeWithoutReview()
{
    for (NSDocument *document : documents()) {
        document->closeWithoutReview();
    }
}

void NSDocumentController::restoreRecoveredDocuments()
{
    if (!m_surroundings.recovery) {
        return;
    }
    QMap<QString, int> counts; // of documents that are called the same
    int total = 0;
    for (std::unique_ptr<RecoveryStore::Entry> &entry : m_surroundings.recovery->takeAbandoned()) {
        std::unique_ptr<NSDocument> document = m_factory();
        const QString path = entry->path();
        const QString name = entry->name().isEmpty() ? u"Untitled"_s : entry->name();
        if (const ReadOutcome outcome = document->readFromRecovery(std::move(entry));
            !outcome.isRead) {
            if (outcome.reason) {
                tellNotRecovered(path, *outcome.reason);
            }
            continue;
        }
        const int count = ++counts[name];
        document->setUntitledName((count > 1 ? u"%1 %2"_s.arg(name).arg(count) : name)
                                  + u" (Recovered)"_s);
        const QPointer<NSDocument> recovered(document.get());
        add(std::move(document));
        // Behind what a document's window does by itself: locked ones take the same place.
        m_surroundings.mainQueue.addOperation([recovered, distance = total++ * cascadeStep] {
            if (NSWindow *window = recovered ? recovered->windowForSheet() : nullptr;
                window && distance > 0) {
                NSRect frame = window->frame();
                frame.x += distance;
                frame.y -= distance;
                window->setFrame(frame, false);
            }
        });
    }
}

void NSDocumentController::tellNotRecovered(const QString &path, const QString &reason)
{
    const NSAlert alert {
        u"A document that was kept when the program ended unexpectedly could not be opened."_s,
        u"%1\n\nIt stays where it is:\n%2"_s.arg(reason, path),
        {u"OK"_s}};
    m_alerts.runModal(alert, [](AlertAnswer) {});
}

void NSDocumentController::closeAllDocuments(std::function<void(bool closed)> done)
{
    reviewNext(std::move(done));
}

void NSDocumentController::reviewNext(std::function<void(bool closed)> done)
{
    const auto unsaved =
        std::find_if(m_documents.begin(), m_documents.end(),
                     [](const auto &document) { return document->hasUnsavedChanges(); });
    if (unsaved == m_documents.end()) {
        for (NSDocument *document : documents()) {
            document->close();
        }
        done(true);
        return;
    }
    const QPointer<NSDocument> document(unsaved->get());
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
