#include "product/settings.h"

namespace quorvane::settings {

namespace {

template <typename T> void add(QVariantMap &defaults, const Key<T> &key)
{
    defaults.insert(key.name, QVariant::fromValue(key.registered));
}

void add(QVariantMap &defaults, const Key<QLatin1StringView> &key)
{
    defaults.insert(key.name, QString(key.registered));
}

} // namespace

QVariantMap registeredDefaults()
{
    QVariantMap defaults;
    add(defaults, notifyUpdate);
    add(defaults, lastVersionUsedToUpdatePref);
    add(defaults, haveSelectedPrefForCheckForUpdate);
    add(defaults, userPrefForCheckForUpdate);
    add(defaults, startupActionTag);
    add(defaults, startupSelectedDoc);
    add(defaults, startupFontFamily);
    add(defaults, startupFontSize);
    add(defaults, publicNoteFontFamily);
    add(defaults, publicNoteFontSize);
    add(defaults, publicNoteFontBold);
    add(defaults, publicNoteFontItalic);
    add(defaults, startWithRuler);
    add(defaults, startWithSpelling);
    add(defaults, autolocBackgroundEnabled);
    add(defaults, autolocBackgroundInterval);
    return defaults;
}

} // namespace quorvane::settings
