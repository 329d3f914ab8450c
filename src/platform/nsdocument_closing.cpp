#include "platform/nsdocument.h"

#include <QFileInfo>
#include <QPointer>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString closeAnywayChoice = u"Close Anyway"_s;
const QString saveChoice = u"Save"_s;
const QString doNotSaveChoice = u"Don't Save"_s;

} // namespace

void NSDocument::canCloseDocument(std::function<void(bool should)> shouldClose)
{
    if (!hasUnsavedChanges()) {
        shouldClose(true);
    } else if (!windowForSheet()) {
        static_cast<void>(saveOrKeep());
        shouldClose(true);
    } else if (m_reviewing) {
        shouldClose(false);
    } else if (m_fileURL && !reasonNotToWrite()) {
        saveThenClose(std::move(shouldClose));
    } else {
        askToSave(std::move(shouldClose));
    }
}

void NSDocument::saveThenClose(const std::function<void(bool should)> &shouldClose)
{
    const WriteOutcome outcome = write(*m_fileURL);
    if (outcome.result == Writing::Done) {
        Q_EMIT saved(*m_fileURL);
        shouldClose(true);
        return;
    }
    if (outcome.result == Writing::Conflict) {
        NSAlert alert = conflictAlert(outcome.conflict);
        alert.buttons.insert(alert.buttons.size() - 1, closeAnywayChoice);
        alert.informativeText += u" To close anyway drops your own changes."_s;
        reviewUnsaved(
            alert,
            [this, conflict = outcome.conflict, shouldClose] {
                overwrite(conflict);
                saveThenClose(shouldClose);
            },
            shouldClose);
        return;
    }
    m_hasToldAutosaveFailed = true;
    const NSAlert alert {
        u"“%1” could not be saved."_s.arg(QFileInfo(*m_fileURL).fileName()),
        outcome.reason + u"\n\nTo close anyway drops what was changed since the last save."_s,
        {saveAsChoice, closeAnywayChoice, cancelChoice},
    };
    reviewUnsaved(alert, {}, shouldClose);
}

void NSDocument::reviewUnsaved(const NSAlert &alert, std::function<void()> save,
                               std::function<void(bool should)> shouldClose)
{
    m_reviewing = true;
    windowForSheet()->makeKeyAndOrderFront();
    ask(alert,
        [this, save = std::move(save),
         shouldClose = std::move(shouldClose)](const QString &choice) {
            m_reviewing = false;
            if (choice == closeAnywayChoice || choice == doNotSaveChoice) {
                discardRecovery();
                shouldClose(true);
            } else if (choice == saveAsChoice) {
                later([this, shouldClose] { saveToPanelPath(shouldClose); });
            } else if (choice == saveChoice || choice == saveAnywayChoice) {
                later(save);
            } else {
                shouldClose(false);
            }
        });
}

void NSDocument::askToSave(const std::function<void(bool should)> &shouldClose)
{
    const NSAlert alert {
        u"Do you want to save the changes made to the document “%1”?"_s.arg(displayName()),
        u"Your changes will be lost if you don't save them."_s,
        {saveChoice, doNotSaveChoice, cancelChoice},
    };
    reviewUnsaved(
        alert, [this, shouldClose] { saveDocument(shouldClose); }, shouldClose);
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

void NSDocument::closeWithoutReview()
{
    if (!m_closed) {
        static_cast<void>(saveOrKeep()); // Nobody is there to be told.
    }
    close();
}

bool NSDocument::saveOrKeep()
{
    if (!hasUnsavedChanges() || reasonNotToWrite()) {
        return true;
    }
    if (m_fileURL && write(*m_fileURL).result == Writing::Done) {
        return true;
    }
    return !keepForRecovery() && m_surroundings.recovery != nullptr;
}

void NSDocument::closeUnlessUnsaved(std::function<void(bool should)> shouldClose)
{
    if (saveOrKeep() || !m_fileURL || m_reviewing || !windowForSheet()) {
        close();
        return;
    }
    saveThenClose([self = QPointer(this), shouldClose = std::move(shouldClose)](bool should) {
        if (should && self) {
            self->close();
        } else {
            shouldClose(false);
        }
    });
}

void NSDocument::close()
{
    if (m_closed) {
        return;
    }
    m_closed = true;
    stopTimers();
    m_recovery.reset();
    if (NSWindow *window = windowForSheet()) {
        window->close();
    }
    Q_EMIT closed();
}

} // namespace quorvane
