#include "platform_qt/settingsdefaults.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// \return where the file is now; nothing where it could not be moved.
std::optional<QString> movedAside(const QString &path)
{
    constexpr int most = 9;
    const QString name =
        path + u".damaged-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    const QString file = QFileInfo(path).canonicalFilePath(); // a link to it stays
    for (int number = 1; number <= most; ++number) {
        const QString aside = number > 1 ? u"%1-%2"_s.arg(name).arg(number) : name;
        if (QFile::rename(file, aside)) {
            return aside;
        }
    }
    return std::nullopt;
}

} // namespace

SettingsDefaults::SettingsDefaults(const QString &path)
{
    m_settings.emplace(path, QSettings::IniFormat);
    // A section is read when it is asked for, and only then found damaged.
    const QStringList keys = m_settings->allKeys();
    if (m_settings->status() == QSettings::AccessError) {
        m_state = State::Unreadable;
        m_isUnwritableTold = true; // what cannot be read is not written either
    } else if (m_settings->status() == QSettings::FormatError) {
        startAnew(keys);
    }
}

// What could be read stays in force, in a file that is whole.
void SettingsDefaults::startAnew(const QStringList &keys)
{
    m_state = State::Damaged;
    QVariantMap readable;
    for (const QString &key : keys) {
        readable.insert(key, m_settings->value(key));
    }
    const QString path = m_settings->fileName();
    m_setAside = movedAside(path);
    if (!m_setAside) {
        m_isUnwritableTold = true; // nor can anything else be written there
        return;
    }
    m_settings.emplace(path, QSettings::IniFormat);
    for (auto value = readable.cbegin(); value != readable.cend(); ++value) {
        m_settings->setValue(value.key(), value.value());
    }
    m_settings->sync();
}

QString SettingsDefaults::defaultPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + u"/quorvane/quorvane.ini"_s;
}

QVariant SettingsDefaults::stored(QLatin1StringView key) const
{
    return m_settings->value(key);
}

void SettingsDefaults::store(QLatin1StringView key, const QVariant &value)
{
    if (value.isValid()) {
        m_settings->setValue(key, value);
    } else {
        m_settings->remove(key);
    }
    m_settings->sync();
    if (m_settings->status() == QSettings::AccessError && !m_isUnwritableTold) {
        m_isUnwritableTold = true;
        Q_EMIT unwritable();
    }
}

} // namespace quorvane
