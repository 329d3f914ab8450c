#include "platform_qt/qtpanels.h"

#include "platform_qt/dialogsheet.h"
#include "platform_qt/filepaneldialog.h"
#include "platform_qt/qtwindow.h"

#include <QDir>
#include <QSettings>
#include <QStandardPaths>

#include <memory>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QString firstDirectory()
{
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    return QDir(documents).exists() ? documents : QDir::homePath();
}

QWidget *hostOf(NSWindow &window)
{
    const auto *host = dynamic_cast<QtWindow *>(&window);
    return host != nullptr ? &host->widget() : nullptr;
}

} // namespace

QtPanels::QtPanels(NSOperationQueue &queue)
    : m_openPanels(queue)
    , m_directory(firstDirectory())
{
    // Qt's dialogs keep the folders that were visited in a file that all Qt programs share. Those
    // of this program find no place for it.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
}

void QtPanels::beginOpen(const NSOpenPanel &panel,
                         std::function<void(QStringList paths)> completion)
{
    // Shared with the completion, which may be dropped in place of run.
    const std::shared_ptr<FilePanelDialog> dialog(new FilePanelDialog(nullptr, panel, m_directory),
                                                  [](FilePanelDialog *d) { d->deleteWhenIdle(); });
    dialog->setWindowModality(Qt::ApplicationModal);
    auto *sheet = new DialogSheet(*dialog);
    m_openPanels.begin(*sheet, [this, dialog, completion = std::move(completion)](int code) {
        // What ends a panel from outside has the code 1000: only Open and Save have this one.
        const bool isChosen = code == QDialog::Accepted;
        if (isChosen) {
            m_directory = dialog->directory().absolutePath();
        }
        completion(isChosen ? dialog->chosenPaths() : QStringList());
    });
}

void QtPanels::beginOpenSheet(NSWindow &window, const NSOpenPanel &panel,
                              std::function<void(QStringList paths)> completion)
{
    auto *dialog = new FilePanelDialog(hostOf(window), panel, m_directory);
    auto *sheet = new DialogSheet(*dialog);
    window.beginSheet(*sheet, [this, dialog, completion = std::move(completion)](int code) {
        dialog->deleteWhenIdle();
        if (code != QDialog::Accepted) {
            completion({});
            return;
        }
        m_directory = dialog->directory().absolutePath();
        completion(dialog->chosenPaths());
    });
}

void QtPanels::beginSaveSheet(NSWindow &window, const NSSavePanel &panel,
                              std::function<void(std::optional<QString> path)> completion)
{
    auto *dialog = new FilePanelDialog(hostOf(window), panel,
                                       panel.directory.isEmpty() ? m_directory : panel.directory);
    auto *sheet = new DialogSheet(*dialog);
    window.beginSheet(*sheet, [this, dialog, completion = std::move(completion)](int code) {
        dialog->deleteWhenIdle();
        if (code != QDialog::Accepted) {
            completion(std::nullopt);
            return;
        }
        m_directory = dialog->directory().absolutePath();
        completion(dialog->pathToSave());
    });
}

} // namespace quorvane
