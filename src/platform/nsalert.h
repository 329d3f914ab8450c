#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace quorvane {

enum class NSAlertStyle { Warning = 0, Informational = 1, Critical = 2 };

/// What an alert's buttons answer, in the order in which they were added.
enum class AlertAnswer { First = 1000, Second = 1001, Third = 1002, Fourth = 1003 };

/// An alert as plain data. The first button is the default one; a button titled "Cancel" takes
/// Escape, and so does an only button.
struct NSAlert
{
    QString messageText;
    QString informativeText;
    QStringList buttons; ///< At least one.
    NSAlertStyle alertStyle = NSAlertStyle::Warning;
    bool operator==(const NSAlert &) const = default;
};

using AlertCompletion = std::function<void(AlertAnswer)>;

/// Alerts that belong to no window.
class ModalAlerts
{
public:
    virtual ~ModalAlerts() = default;
    /// Shows the alert before all windows of the program and returns; the completion follows.
    virtual void runModal(const NSAlert &alert, AlertCompletion completion) = 0;
};

} // namespace quorvane
