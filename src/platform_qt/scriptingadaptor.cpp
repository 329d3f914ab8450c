#include "platform_qt/scriptingadaptor.h"

namespace quorvane {

ScriptingAdaptor::ScriptingAdaptor(DBusApplication &application)
    : QDBusAbstractAdaptor(&application)
    , m_application(application)
{ }

void ScriptingAdaptor::CreateDocWithText(const QString &text)
{
    m_application.createDocWithText(text);
}

void ScriptingAdaptor::CreateDocWithText(const QDBusVariant &content)
{
    const QVariant value = content.variant();
    m_application.createDocWithText(
        value.typeId() == QMetaType::QString ? std::optional(value.toString()) : std::nullopt);
}

void ScriptingAdaptor::DecryptDoc(const QString &path, const QString &password)
{
    Q_EMIT m_application.decryptDocRequested(path, password);
}

void ScriptingAdaptor::DecryptDoc(const QString &path)
{
    Q_EMIT m_application.decryptDocRequested(path, std::nullopt);
}

} // namespace quorvane
