#include "platform/nsdocument.h"

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double longestPause = 5; // seconds since the last change
constexpr double longestWait = 30; // seconds since the first change, or since a failure

} // namespace

void NSDocument::scheduleAutosave()
{
    if (m_closed || !hasUnsavedChanges() || reasonNotToWrite()) {
        stopTimers();
        return;
    }
    m_pauseTimer = m_surroundings.timers.scheduledTimer(longestPause, [this] { autosave(); });
    if (!m_longestTimer) {
        scheduleRetry();
    }
}

void NSDocument::scheduleRetry()
{
    m_longestTimer = m_surroundings.timers.scheduledTimer(longestWait, [this] { autosave(); });
}

void NSDocument::stopTimers()
{
    m_pauseTimer.reset();
    m_longestTimer.reset();
}

void NSDocument::autosave()
{
    stopTimers();
    if (m_closed || !hasUnsavedChanges() || reasonNotToWrite()) {
        return;
    }
    if (!m_fileURL) {
        autosaveUntitled();
        return;
    }
    const WriteOutcome outcome = write(*m_fileURL);
    if (outcome.result == Writing::Done) {
        return;
    }
    scheduleRetry();
    static_cast<void>(keepForRecovery()); // The file's own failure is the one to tell of.
    if (outcome.result == Writing::Conflict) {
        if (m_toldConflict != outcome.conflict) {
            askAboutConflict(outcome.conflict, [](bool) {});
        }
    } else if (!std::exchange(m_hasToldAutosaveFailed, true)) {
        tell(outcome, *m_fileURL);
    }
}

void NSDocument::autosaveUntitled()
{
    const std::optional<QString> reason = keepForRecovery();
    if (!reason) {
        m_hasToldAutosaveFailed = false;
        return;
    }
    scheduleRetry();
    if (!std::exchange(m_hasToldAutosaveFailed, true)) {
        ask({u"“%1” could not be kept against a crash."_s.arg(displayName()),
             *reason + u"\n\nSave it, so that nothing can be lost."_s,
             {u"OK"_s}},
            [](const QString &) {});
    }
}

std::optional<QString> NSDocument::keepForRecovery()
{
    if (!m_surroundings.recovery || m_isRecoveryCurrent) {
        return std::nullopt;
    }
    const std::optional<QByteArray> data = dataOfType();
    if (!data) {
        return u"Its content could not be encrypted."_s;
    }
    if (!m_recovery) {
        RecoveryStore::NewEntry made =
            m_surroundings.recovery->newEntry(m_fileURL ? displayName() : QString());
        if (!made.entry) {
            return made.error.reason();
        }
        m_recovery = std::move(made.entry);
    }
    if (const std::optional<FileError> error = m_recovery->write(*data)) {
        return error->reason();
    }
    m_isRecoveryCurrent = true;
    return std::nullopt;
}

void NSDocument::discardRecovery()
{
    if (m_recovery) {
        m_recovery->remove();
        m_recovery.reset();
    }
    m_isRecoveryCurrent = false;
    m_isRecovered = false;
}

ReadOutcome NSDocument::readFromRecovery(std::unique_ptr<RecoveryStore::Entry> entry)
{
    const FileStore::ReadResult kept = entry->read();
    if (!kept.data) {
        return {false, kept.error.reason()};
    }
    if (ReadOutcome outcome = readFrom(*kept.data, entry->path()); !outcome.isRead) {
        return outcome;
    }
    m_recovery = std::move(entry);
    m_isRecoveryCurrent = true;
    m_isRecovered = true;
    return {true, {}};
}

} // namespace quorvane
