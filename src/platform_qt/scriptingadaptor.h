#pragma once

#include "platform_qt/dbusapplication.h"

#include <QDBusAbstractAdaptor>
#include <QDBusVariant>

namespace quorvane {

/// What other programs and scripts can have done, beyond the calls that every application has.
class ScriptingAdaptor final : public QDBusAbstractAdaptor
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.orbelt.Quorvane")

public:
    explicit ScriptingAdaptor(DBusApplication &application);

public Q_SLOTS:
    void CreateDocWithText(const QString &text);
    void CreateDocWithText(const QDBusVariant &content); ///< An error for what is no text.
    void DecryptDoc(const QString &path, const QString &password);
    void DecryptDoc(const QString &path);

private:
    DBusApplication &m_application;
};

} // namespace quorvane
