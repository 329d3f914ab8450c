#pragma once

#include "platform_qt/dbusapplication.h"

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

namespace quorvane {

/// The calls of org.freedesktop.Application, and no others.
class ApplicationAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit ApplicationAdaptor(DBusApplication &application);

public Q_SLOTS:
    void Activate(const QVariantMap &platform_data);
    void Open(const QStringList &uris, const QVariantMap &platform_data);
    void ActivateAction(const QString &action_name, const QVariantList &parameter,
                        const QVariantMap &platform_data);

private:
    DBusApplication &m_application;
};

} // namespace quorvane
