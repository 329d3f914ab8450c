#include "platform_qt/applicationadaptor.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// With the token of the caller, the compositor lets the window that is shown next take the focus.
void takeActivationToken(const QVariantMap &platformData)
{
    const QString token = platformData.value(u"activation-token"_s).toString();
    if (!token.isEmpty()) {
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
    }
}

} // namespace

ApplicationAdaptor::ApplicationAdaptor(DBusApplication &application)
    : QDBusAbstractAdaptor(&application)
    , m_application(application)
{ }

void ApplicationAdaptor::Activate(const QVariantMap &platform_data)
{
    takeActivationToken(platform_data);
    Q_EMIT m_application.activateRequested();
}

void ApplicationAdaptor::Open(const QStringList &uris, const QVariantMap &platform_data)
{
    takeActivationToken(platform_data);
    m_application.open(uris);
}

void ApplicationAdaptor::ActivateAction(const QString &action_name, const QVariantList &parameter,
                                        const QVariantMap &platform_data)
{
    takeActivationToken(platform_data);
    m_application.activateAction(action_name, !parameter.isEmpty());
}

} // namespace quorvane
