#pragma once

#include "platform/nsuserdefaults.h"

#include <QSettings>

#include <optional>

namespace quorvane {

/// The user's settings in an ini file. A value that could not be written still counts until the
/// program ends. A file that cannot be read in full is moved aside as "<name>.damaged-<time>", and
/// what could be read of it is written anew.
class SettingsDefaults final : public NSUserDefaults
{
    Q_OBJECT

public:
    /// How the file was found.
    enum class State { Whole, Damaged, Unreadable };

    explicit SettingsDefaults(const QString &path = defaultPath());

    /// quorvane/quorvane.ini in the user's configuration folder.
    static QString defaultPath();

    State state() const { return m_state; }

    QString path() const { return m_settings->fileName(); }

    /// Where a damaged file is now; nothing where it had to stay.
    const std::optional<QString> &setAside() const { return m_setAside; }

Q_SIGNALS:
    void unwritable(); ///< A value could not be written. Told once.

protected:
    QVariant stored(QLatin1StringView key) const override;
    void store(QLatin1StringView key, const QVariant &value) override;

private:
    void startAnew(const QStringList &keys);

    std::optional<QSettings> m_settings;
    std::optional<QString> m_setAside;
    State m_state = State::Whole;
    bool m_isUnwritableTold = false;
};

} // namespace quorvane
