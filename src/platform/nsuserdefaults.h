#pragma once

#include <QLatin1StringView>
#include <QObject>
#include <QVariant>
#include <QVariantMap>

namespace quorvane {

/// A setting's key, type and registered value.
template <typename T> struct Key
{
    QLatin1StringView name;
    T registered;
};

/// The user's settings over a layer of registered defaults.
class NSUserDefaults : public QObject
{
    Q_OBJECT

public:
    void registerDefaults(const QVariantMap &defaults);

    QVariant objectForKey(QLatin1StringView key) const; ///< Stored, else registered, else invalid.
    bool boolForKey(QLatin1StringView key) const;
    qint64 integerForKey(QLatin1StringView key) const; ///< 0 where it is absent or no number.
    double doubleForKey(QLatin1StringView key) const;
    QString stringForKey(QLatin1StringView key) const;
    /// An invalid value takes the stored one away. Tells \a changed only where the answer differs.
    void setObject(QLatin1StringView key, const QVariant &value);

    /// Every registered key has its registered value again.
    void revertToInitialValues();

    bool value(const Key<bool> &key) const { return boolForKey(key.name); }

    qint64 value(const Key<qint64> &key) const { return integerForKey(key.name); }

    double value(const Key<double> &key) const { return doubleForKey(key.name); }

    QString value(const Key<QLatin1StringView> &key) const { return stringForKey(key.name); }

Q_SIGNALS:
    void changed(const QString &key);

protected:
    virtual QVariant stored(QLatin1StringView key) const = 0; ///< Invalid where nothing is stored.
    virtual void store(QLatin1StringView key, const QVariant &value) = 0; ///< Invalid: remove.

private:
    QVariantMap m_registered;
};

} // namespace quorvane
