#include "platform/nsdocument.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString revertChoice = u"Revert"_s;

QString momentOf(const FileStamp &stamp)
{
    constexpr qint64 nanosecondsInMillisecond = 1'000'000;
    const auto moment = QDateTime::fromMSecsSinceEpoch(stamp.modified / nanosecondsInMillisecond);
    return QLocale(QLocale::English).toString(moment, u"d MMMM yyyy 'at' HH:mm"_s);
}

} // namespace

QByteArray NSDocument::digestOf(const QByteArray &data)
{
    return QCryptographicHash::hash(data, QCryptographicHash::Sha256);
}

ReadOutcome NSDocument::readFrom(const QByteArray &data, const QString &path)
{
    if (readFromData(data)) {
        return {true, {}};
    }
    if (hasToldWhyNotRead()) {
        return {};
    }
    return {false,
            u"The file is not a document of this program, or it is damaged.\n\n%1"_s.arg(path)};
}

ReadOutcome NSDocument::readFromURL(const QString &path)
{
    const FileStore::ReadResult file = m_surroundings.files.read(path);
    if (!file.data) {
        return {false, file.error.reason()};
    }
    if (ReadOutcome outcome = readFrom(*file.data, path); !outcome.isRead) {
        return outcome;
    }
    takeFile(path, file.stamp, *file.data);
    return {true, {}};
}

std::optional<NSDocument::FileConflict> NSDocument::conflictOnDisk()
{
    const FileStore::StampResult now = m_surroundings.files.stamp(*m_fileURL);
    if (!now.stamp && !now.isMissing()) {
        return std::nullopt; // Nothing is known: to read or to write it tells why.
    }
    const FileConflict conflict {now.stamp};
    const bool isTold = m_toldConflict == conflict;
    if (now.stamp == m_knownFile || (now.stamp && !isTold && holdsKnownContent())) {
        m_toldConflict.reset();
        return std::nullopt;
    }
    return conflict;
}

// A file that was only touched, copied back or numbered anew by its disk has not been changed.
bool NSDocument::holdsKnownContent()
{
    if (m_knownDigest.isEmpty()) {
        return false;
    }
    const FileStore::ReadResult file = m_surroundings.files.read(*m_fileURL);
    if (!file.data || digestOf(*file.data) != m_knownDigest) {
        return false;
    }
    m_knownFile = file.stamp;
    return true;
}

void NSDocument::checkFileOnDisk()
{
    const NSWindow *window = windowForSheet();
    if (m_closed || m_reviewing || !m_fileURL || !window || window->attachedSheet() != nullptr) {
        return;
    }
    const std::optional<FileConflict> conflict = conflictOnDisk();
    if (!conflict) {
        return;
    }
    if (isUntouched()) {
        readUntouchedAgain(*conflict);
    } else if (m_toldConflict != conflict) {
        askAboutConflict(*conflict, [](bool) {});
    }
}

void NSDocument::readUntouchedAgain(const FileConflict &conflict)
{
    if (!conflict.found || m_unreadableFile == conflict) {
        return;
    }
    if (readFromURL(*m_fileURL).isRead) {
        updateChangeCount(NSDocumentChangeType::Cleared);
    } else {
        m_unreadableFile = conflict;
    }
}

// What keeps both is the default.
NSAlert NSDocument::conflictAlert(const FileConflict &conflict)
{
    m_toldConflict = conflict;
    const QString name = QFileInfo(*m_fileURL).fileName();
    if (!conflict.found) {
        return {u"“%1” has been moved or deleted."_s.arg(name),
                u"To save anyway puts it back where it was:\n%1\n\nUntil then this document is "
                u"not saved by itself."_s.arg(*m_fileURL),
                {saveAsChoice, saveAnywayChoice, cancelChoice}};
    }
    return {u"“%1” has been changed by another program."_s.arg(name),
            u"To save anyway replaces what that program has written. To save as another file keeps "
            u"both.\n\nUntil then this document is not saved by itself."_s,
            {saveAsChoice, saveAnywayChoice, cancelChoice}};
}

void NSDocument::askAboutConflict(const FileConflict &conflict,
                                  std::function<void(bool saved)> done)
{
    NSAlert alert = conflictAlert(conflict);
    if (conflict.found && mayRevert()) {
        alert.informativeText += u" To revert reads it again and drops your own changes."_s;
        alert.buttons.insert(alert.buttons.size() - 1, revertChoice);
    }
    ask(alert, [this, conflict, done = std::move(done)](const QString &choice) {
        if (choice == saveAnywayChoice) {
            later([this, conflict, done] {
                overwrite(conflict);
                saveDocument(done);
            });
        } else if (choice == saveAsChoice) {
            later([this, done] { saveToPanelPath(done); });
        } else {
            if (choice == revertChoice) {
                later([this] { readAgain(); });
            }
            done(false);
        }
    });
}

// Only what the user was asked about may go: a file changed once more is asked about again.
void NSDocument::overwrite(const FileConflict &conflict)
{
    m_knownFile = conflict.found;
    m_knownDigest.clear();
    m_toldConflict.reset();
}

void NSDocument::revertDocumentToSaved()
{
    if (!m_fileURL) {
        ask({u"“%1” has never been saved."_s.arg(displayName()),
             u"There is no saved version to go back to."_s,
             {u"OK"_s}},
            [](const QString &) {});
        return;
    }
    const std::optional<FileStamp> stamp = m_surroundings.files.stamp(*m_fileURL).stamp;
    const QString version =
        stamp ? u"the version saved on "_s + momentOf(*stamp) : u"the saved version"_s;
    ask({u"Do you want to revert “%1” to %2?"_s.arg(displayName(), version),
         u"What was changed since then will be lost. The document asks for its password again."_s,
         {revertChoice, cancelChoice}},
        [this](const QString &choice) {
            if (choice == revertChoice) {
                later([this] { readAgain(); });
            }
        });
}

void NSDocument::readAgain()
{
    const ReadOutcome outcome = readFromURL(*m_fileURL);
    if (outcome.isRead) {
        nothingIsUnsaved();
    } else if (outcome.reason) {
        ask({u"“%1” could not be reverted."_s.arg(displayName()),
             *outcome.reason + u"\n\nThe document stays as it is."_s,
             {u"OK"_s}},
            [](const QString &) {});
    }
}

} // namespace quorvane
