#include "platform_qt/qtmodalalerts.h"

#include "platform_qt/alertdialog.h"
#include "platform_qt/dialogsheet.h"

#include <QGuiApplication>
#include <QMetaObject>
#include <QWindow>

#include <memory>
#include <utility>

namespace quorvane {

QtModalAlerts::QtModalAlerts(NSOperationQueue &queue)
    : m_alerts(queue)
{
    // A window that the alert blocks gets the keyboard when it is clicked, and swallows it.
    connect(qGuiApp, &QGuiApplication::focusWindowChanged, this, [this](QWindow *window) {
        if (window != nullptr && window->modality() == Qt::NonModal) {
            QMetaObject::invokeMethod(
                this, [this] { m_alerts.putForward(); }, Qt::QueuedConnection);
        }
    });
}

void QtModalAlerts::runModal(const NSAlert &alert, AlertCompletion completion)
{
    // Shared with the completion, which may be dropped in place of run.
    const std::shared_ptr<AlertDialog> dialog(new AlertDialog(alert),
                                              [](AlertDialog *d) { d->deleteLater(); });
    dialog->setWindowModality(Qt::ApplicationModal);
    auto *sheet = new DialogSheet(*dialog);
    m_alerts.begin(*sheet, [dialog, completion = std::move(completion)](int code) {
        if (completion) {
            completion(static_cast<AlertAnswer>(code));
        }
    });
}

} // namespace quorvane
