#include "platform/nsdocument.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QScopedValueRollback>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

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
    takePath(path);
    m_knownFile = m_surroundings.files.stamp(path).stamp;
    m_knownDigest.clear();
    m_toldConflict.reset();
}

void NSDocument::takePath(const QString &path)
{
    const QString absolute = absolutePath(path);
    if (m_fileURL == absolute) {
        return;
    }
    m_fileURL = absolute;
    updateWindowTitle();
    Q_EMIT fileURLChanged();
}

bool NSDocument::isOwnFile(const QString &path) const
{
    return m_fileURL == absolutePath(path);
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
    return m_changeCount > 0 || isTextEdited() || (m_isRecovered && !isUntouched());
}

bool NSDocument::hasUnsavedChanges() const
{
    return m_isUnsavedBehindMark || (isDocumentEdited() && !isUntouched());
}

void NSDocument::updateChangeCount(NSDocumentChangeType change)
{
    if (change == NSDocumentChangeType::Done) {
        ++m_changeCount;
        noteChange();
        return;
    }
    m_isUnsavedBehindMark = hasUnsavedChanges();
    m_changeCount = 0;
    markTextUnedited();
    followChanges();
}

void NSDocument::noteChange()
{
    m_isRecoveryCurrent = false;
    followChanges();
}

void NSDocument::followChanges()
{
    scheduleAutosave();
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

void NSDocument::ask(const NSAlert &alert, std::function<void(const QString &choice)> answered)
{
    NSWindow *window = windowForSheet();
    if (!window) {
        answered(cancelChoice);
        return;
    }
    window->beginAlert(alert,
                       [self = QPointer(this), buttons = alert.buttons,
                        answered = std::move(answered)](AlertAnswer answer) {
                           if (!self || self->m_closed) {
                               return;
                           }
                           const int number =
                               static_cast<int>(answer) - static_cast<int>(AlertAnswer::First);
                           answered(self->m_isEndingSheets ? cancelChoice : buttons.value(number));
                       });
}

void NSDocument::endSheets()
{
    if (NSWindow *window = windowForSheet()) {
        const QScopedValueRollback ending(m_isEndingSheets, true);
        window->endSheets();
    }
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
