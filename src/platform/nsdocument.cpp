#include "platform/nsdocument.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString nothingIsLost =
    u"\n\nNothing is lost: the document stays open as it is, and the file on disk has not been changed."_s;

// The folder as the system resolves it: to clean a path by its spelling leads elsewhere where ".."
// follows a link. The file's own name stays, be it a link or not there yet.
QString absolutePath(const QString &path)
{
    const QFileInfo file(path);
    const QString folder = QFileInfo(file.path()).canonicalFilePath();
    return folder.isEmpty() ? file.absoluteFilePath() : QDir(folder).filePath(file.fileName());
}

} // namespace

NSDocument::NSDocument(const DocumentSurroundings &surroundings, QString extension)
    : m_surroundings(surroundings)
    , m_extension(std::move(extension))
    , m_untitledName(u"Untitled"_s)
{ }

void NSDocument::setFileURL(const QString &path)
{
    m_fileURL = absolutePath(path);
    updateWindowTitle();
    Q_EMIT fileURLChanged();
}

QString NSDocument::displayName() const
{
    if (!m_fileURL) {
        return m_untitledName;
    }
    const QString name = QFileInfo(*m_fileURL).fileName();
    const QString ending = u'.' + m_extension;
    return name.endsWith(ending) && name != ending ? name.chopped(ending.size()) : name;
}

void NSDocument::setUntitledName(const QString &name)
{
    m_untitledName = name;
    updateWindowTitle();
}

bool NSDocument::isDocumentEdited() const
{
    return m_changeCount > 0 || isTextEdited();
}

void NSDocument::updateChangeCount(NSDocumentChangeType change)
{
    if (change == NSDocumentChangeType::Done) {
        ++m_changeCount;
    } else {
        m_changeCount = 0;
        markTextUnedited();
    }
    textEditedMayHaveChanged();
}

void NSDocument::textEditedMayHaveChanged()
{
    const bool edited = isDocumentEdited();
    if (edited == m_toldEdited) {
        return;
    }
    m_toldEdited = edited;
    if (NSWindow *window = windowForSheet()) {
        window->setDocumentEdited(edited);
    }
    Q_EMIT editedChanged(edited);
}

void NSDocument::updateWindowTitle()
{
    if (NSWindow *window = windowForSheet()) {
        window->setTitle(displayName());
    }
    Q_EMIT displayNameChanged();
}

void NSDocument::showWindows()
{
    if (NSWindow *window = windowForSheet()) {
        window->setTitle(displayName());
        window->setDocumentEdited(isDocumentEdited());
        window->makeKeyAndOrderFront();
    }
}

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
    done(writeTo(*m_fileURL));
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
                done(path && self->writeTo(*path));
            }
        });
}

bool NSDocument::writeTo(const QString &path)
{
    if (m_isOpenElsewhere && m_isOpenElsewhere(path)) {
        tellNotSaved(
            path,
            u"It is open in another window. Close it there first, or choose another name."_s
                + nothingIsLost);
        return false;
    }
    if (const std::optional<QString> reason = reasonNotToWrite()) {
        tellNotSaved(path, *reason + nothingIsLost);
        return false;
    }
    const std::optional<QByteArray> data = dataOfType();
    if (!data) {
        tellNotSaved(path, u"Its content could not be encrypted."_s + nothingIsLost);
        return false;
    }
    if (const std::optional<FileError> error = m_surroundings.files.replace(path, *data)) {
        if (error->isInPlace()) {
            setFileURL(path); // It stays marked edited, so that it is saved once more.
        }
        tellNotSaved(path, error->isInPlace() ? error->reason() : error->reason() + nothingIsLost);
        return false;
    }
    setFileURL(path);
    updateChangeCount(NSDocumentChangeType::Cleared);
    return true;
}

void NSDocument::autosave()
{
    if (m_fileURL && isDocumentEdited() && !reasonNotToWrite()) {
        static_cast<void>(writeTo(*m_fileURL));
    }
}

void NSDocument::tellNotSaved(const QString &path, const QString &reason)
{
    NSWindow *window = windowForSheet();
    if (!window) {
        return;
    }
    const NSAlert alert {
        u"“%1” could not be saved."_s.arg(QFileInfo(path).fileName()), reason, {u"OK"_s}};
    window->beginAlert(alert, [](AlertAnswer) {});
}

void NSDocument::canCloseDocument(std::function<void(bool should)> shouldClose)
{
    NSWindow *window = windowForSheet();
    if (!isDocumentEdited() || !window) {
        shouldClose(true);
        return;
    }
    if (m_reviewing) {
        shouldClose(false);
        return;
    }
    m_reviewing = true;
    window->makeKeyAndOrderFront();
    const NSAlert alert {
        u"Do you want to save the changes made to the document “%1”?"_s.arg(displayName()),
        u"Your changes will be lost if you don't save them."_s,
        {u"Save"_s, u"Don't Save"_s, u"Cancel"_s},
    };
    const QPointer<NSDocument> self(this);
    window->beginAlert(alert, [self, shouldClose = std::move(shouldClose)](AlertAnswer answer) {
        if (!self) {
            return;
        }
        self->m_reviewing = false;
        if (answer == AlertAnswer::First) {
            self->later([self, shouldClose] { self->saveDocument(shouldClose); });
        } else {
            shouldClose(answer == AlertAnswer::Second);
        }
    });
}

void NSDocument::performClose()
{
    const QPointer<NSDocument> self(this);
    canCloseDocument([self](bool should) {
        if (should && self) {
            self->close();
        }
    });
}

void NSDocument::close()
{
    if (m_closed) {
        return;
    }
    m_closed = true;
    if (NSWindow *window = windowForSheet()) {
        window->close();
    }
    Q_EMIT closed();
}

void NSDocument::later(std::function<void()> operation)
{
    const QPointer<NSDocument> self(this);
    m_surroundings.mainQueue.addOperation([self, operation = std::move(operation)] {
        if (self && !self->m_closed) {
            operation();
        }
    });
}

} // namespace quorvane
