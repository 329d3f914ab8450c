#pragma once

#include "platform/nsuserdefaults.h"

#include <QSettings>

namespace quorvane {

/// The user's settings in an ini file. A value that could not be written still counts until the
/// program ends; a file that could not be read in full is kept beside as "<name>.damaged".
class SettingsDefaults final : public NSUserDefaults
{
    Q_OBJECT

public:
    enum class Status { Ok, Damaged, Unwritable };

    explicit SettingsDefaults(const QString &path = defaultPath());

    /// quorvane/quorvane.ini in the user's configuration folder.
    static QString defaultPath();

    Status status() const; ///< The worst so far.

    QString path() const { return m_settings.fileName(); } ///< For a sentence about the status.

protected:
    QVariant stored(QLatin1StringView key) const override;
    void store(QLatin1StringView key, const QVariant &value) override;

private:
    QSettings m_settings;
    bool m_damaged = false;
};

} // namespace quorvane
