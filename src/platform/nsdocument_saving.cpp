#include "platform/nsdocument.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

void NSDocument::saveDocument()
{
    saveDocument([](bool) {});
}

void NSDocument::saveDocument(std::function<void(bool saved)> done)
{
    if (!m_fileURL) {
        saveToPanelPath(std::move(done));
        return;
    }
    const WriteOutcome outcome = write(*m_fileURL);
    if (outcome.result == Writing::Conflict) {
        askAboutConflict(outcome.conflict, std::move(done));
        return;
    }
    tell(outcome, *m_fileURL);
    done(outcome.result == Writing::Done);
}

void NSDocument::saveDocumentAs()
{
    saveToPanelPath([](bool) {});
}

void NSDocument::saveToPanelPath(std::function<void(bool saved)> done)
{
    NSWindow *window = windowForSheet();
    if (!window) {
        done(false);
        return;
    }
    const QString directory = m_fileURL ? QFileInfo(*m_fileURL).absolutePath() : QString();
    const NSSavePanel panel {{m_extension}, directory, displayName() + u'.' + m_extension};
    const QPointer<NSDocument> self(this);
    m_surroundings.panels.beginSaveSheet(
        *window, panel, [self, done = std::move(done)](const std::optional<QString> &path) {
            if (self) {
                done(path && self->saveTo(*path));
            }
        });
}

bool NSDocument::saveTo(const QString &path)
{
    if (isOwnFile(path)) {
        setFileURL(path); // The panel has asked whether what stands there is to go.
    }
    const WriteOutcome outcome = write(path);
    tell(outcome, path);
    return outcome.result == Writing::Done;
}

NSDocument::WriteOutcome NSDocument::write(const QString &path)
{
    const auto failure = [](const QString &reason) {
        return WriteOutcome {Writing::Failed, reason, false, {}};
    };
    if (m_isOpenElsewhere && m_isOpenElsewhere(path)) {
        return failure(
            u"It is open in another window. Close it there first, or choose another name."_s);
    }
    if (const std::optional<QString> reason = reasonNotToWrite()) {
        return failure(*reason);
    }
    const std::optional<QByteArray> data = dataOfType();
    if (!data) {
        return failure(u"Its content could not be encrypted."_s);
    }
    if (isOwnFile(path)) {
        if (const std::optional<FileConflict> conflict = conflictOnDisk()) {
            return {Writing::Conflict, {}, false, *conflict};
        }
    }
    const FileStore::WriteResult result = m_surroundings.files.write(path, *data);
    if (result.error && !result.error->isInPlace()) {
        return failure(result.error->reason());
    }
    takeFile(path, result.stamp, *data);
    if (result.error) {
        // It counts as unsaved, so that it is saved once more.
        return {Writing::Failed, result.error->reason(), true, {}};
    }
    nothingIsUnsaved();
    return {};
}

void NSDocument::takeFile(const QString &path, const std::optional<FileStamp> &stamp,
                          const QByteArray &data)
{
    takePath(path);
    m_knownFile = stamp ? stamp : m_surroundings.files.stamp(path).stamp;
    m_knownDigest = digestOf(data);
    m_toldConflict.reset();
}

void NSDocument::nothingIsUnsaved()
{
    discardRecovery();
    m_hasToldAutosaveFailed = false;
    updateChangeCount(NSDocumentChangeType::Cleared);
    m_isUnsavedBehindMark = false;
    stopTimers();
}

void NSDocument::tell(const WriteOutcome &outcome, const QString &path)
{
    if (outcome.result == Writing::Done) {
        Q_EMIT saved(*m_fileURL);
        return;
    }
    const QString nothingIsLost =
        u"\n\nNothing is lost: the document stays open as it is, and the file on disk has not been changed."_s;
    ask({u"“%1” could not be saved."_s.arg(QFileInfo(path).fileName()),
         outcome.isInPlace ? outcome.reason : outcome.reason + nothingIsLost,
         {u"OK"_s}},
        [](const QString &) {});
}

} // namespace quorvane
