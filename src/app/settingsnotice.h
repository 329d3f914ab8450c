#pragma once

#include <QObject>

namespace quorvane {

class ModalAlerts;
class SettingsDefaults;

/// Tells the user where their settings cannot be read or kept.
class SettingsNotice final : public QObject
{
    Q_OBJECT

public:
    SettingsNotice(const SettingsDefaults &defaults, ModalAlerts &alerts);

    void tellHowTheyWereFound(); ///< Nothing where all is well.

private:
    void tell(const QString &message, const QString &explanation);

    const SettingsDefaults &m_defaults;
    ModalAlerts &m_alerts;
};

} // namespace quorvane
