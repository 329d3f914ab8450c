#include "platform_qt/settingsdefaults.h"

#include <QFile>
#include <QStandardPaths>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// Before the first write, which would keep only what could be read.
void putAside(const QString &path)
{
    constexpr int most = 9;
    const QString name = path + u".damaged"_s;
    if (QFile::copy(path, name)) {
        return;
    }
    for (int number = 2; number <= most; ++number) {
        if (QFile::copy(path, u"%1-%2"_s.arg(name).arg(number))) {
            return;
        }
    }
}

} // namespace

SettingsDefaults::SettingsDefaults(const QString &path)
    : m_settings(path, QSettings::IniFormat)
{
    m_settings.allKeys(); // a section is read when it is asked for, and only then found damaged
    m_damaged = m_settings.status() == QSettings::FormatError;
    if (m_damaged) {
        putAside(path);
    }
}

QString SettingsDefaults::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/quorvane/quorvane.ini"_s;
}

SettingsDefaults::Status SettingsDefaults::status() const
{
    if (m_settings.status() == QSettings::AccessError) {
        return Status::Unwritable;
    }
    return m_damaged ? Status::Damaged : Status::Ok;
}

QVariant SettingsDefaults::stored(QLatin1StringView key) const
{
    return m_settings.value(key);
}

void SettingsDefaults::store(QLatin1StringView key, const QVariant &value)
{
    if (value.isValid()) {
        m_settings.setValue(key, value);
    } else {
        m_settings.remove(key);
    }
    m_settings.sync();
}

} // namespace quorvane
