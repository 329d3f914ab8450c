#include "platform_qt/dbusapplication.h"

#include "platform_qt/applicationadaptor.h"
#include "platform_qt/scriptingadaptor.h"

#include <QDBusError>
#include <QDir>
#include <QUrl>

#include <optional>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

const QString interfaceName = u"org.freedesktop.Application"_s;
constexpr uint doNotQueue = 4; // DBUS_NAME_FLAG_DO_NOT_QUEUE
constexpr uint primaryOwner = 1; // DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER
constexpr int attempts = 2;

// A ".." is left to the system: cleaned by its spelling, it leads elsewhere where it follows a
// link.
QString uriOf(const QString &file)
{
    const QString path = file.startsWith(u'/') ? file : QDir::currentPath() + u'/' + file;
    return QString::fromLatin1(QUrl::fromLocalFile(path).toEncoded());
}

std::optional<QString> pathOf(const QString &uri)
{
    const QUrl url(uri, QUrl::StrictMode);
    const bool isHere = url.host().isEmpty() || url.host() == "localhost"_L1;
    if (!url.isValid() || url.scheme() != "file"_L1 || !isHere || url.hasQuery()
        || url.hasFragment()) {
        return std::nullopt;
    }
    const QString path = url.path(QUrl::FullyDecoded);
    const bool isName = path.startsWith(u'/') && !path.contains(QChar(u'\0'));
    return isName ? std::optional(path) : std::nullopt;
}

QVariantMap platformData()
{
    QVariantMap data;
    const std::pair<const char *, QString> variables[] = {
        {"DESKTOP_STARTUP_ID", u"desktop-startup-id"_s},
        {"XDG_ACTIVATION_TOKEN", u"activation-token"_s},
    };
    for (const auto &[variable, key] : variables) {
        if (qEnvironmentVariableIsSet(variable)) {
            data.insert(key, qEnvironmentVariable(variable));
        }
    }
    return data;
}

bool saysThatOwnerIsGone(const QDBusMessage &reply)
{
    const QDBusError::ErrorType type = QDBusError(reply).type();
    return type == QDBusError::ServiceUnknown
        || reply.errorName() == "org.freedesktop.DBus.Error.NameHasNoOwner"_L1;
}

} // namespace

DBusApplication::DBusApplication(const QDBusConnection &bus, const QString &name, int patience)
    : m_bus(bus)
    , m_name(name)
    , m_path(u'/' + QString(name).replace(u'.', u'/').replace(u'-', u'_'))
    , m_patience(patience)
{
    new ApplicationAdaptor(*this); // owned by this, as is the next one
    new ScriptingAdaptor(*this);
}

DBusApplication::Start DBusApplication::start(const StartRequest &request)
{
    // The object first: whoever sees the name may call.
    if (!m_bus.isConnected() || !m_bus.registerObject(m_path, this)) {
        return Start::Alone;
    }
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (takeName()) {
            return Start::First;
        }
        const QDBusMessage reply = handOver(request);
        if (reply.type() == QDBusMessage::ReplyMessage) {
            m_bus.unregisterObject(m_path);
            return Start::HandedOver;
        }
        if (!saysThatOwnerIsGone(reply)) {
            break;
        }
    }
    m_bus.unregisterObject(m_path);
    return Start::Unanswered;
}

bool DBusApplication::takeName()
{
    QDBusMessage request =
        QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s,
                                       u"org.freedesktop.DBus"_s, u"RequestName"_s);
    request << m_name << doNotQueue;
    const QDBusMessage reply = m_bus.call(request, QDBus::Block, m_patience);
    return reply.arguments().value(0).toUInt() == primaryOwner;
}

QList<QDBusMessage> DBusApplication::callsFor(const StartRequest &request) const
{
    QList<QDBusMessage> calls;
    const auto add = [this, &calls](const QString &method, const QVariantList &arguments) {
        QDBusMessage call = QDBusMessage::createMethodCall(m_name, m_path, interfaceName, method);
        call.setArguments(arguments + QVariantList {platformData()});
        call.setAutoStartService(false);
        calls << call;
    };
    if (!request.files.isEmpty()) {
        QStringList uris;
        for (const QString &file : request.files) {
            uris << uriOf(file);
        }
        add(u"Open"_s, {uris});
    }
    for (const QString &action : request.actions) {
        add(u"ActivateAction"_s, {action, QVariantList()});
    }
    if (calls.isEmpty()) {
        add(u"Activate"_s, {});
    }
    return calls;
}

/// The first answer that is none, or the last one.
QDBusMessage DBusApplication::handOver(const StartRequest &request) const
{
    QDBusMessage reply;
    const QList<QDBusMessage> calls = callsFor(request);
    for (const QDBusMessage &call : calls) {
        reply = m_bus.call(call, QDBus::Block, m_patience);
        if (reply.type() != QDBusMessage::ReplyMessage) {
            break;
        }
    }
    return reply;
}

void DBusApplication::open(const QStringList &uris)
{
    QStringList paths;
    for (const QString &uri : uris) {
        const std::optional<QString> path = pathOf(uri);
        if (!path) {
            sendErrorReply(QDBusError::InvalidArgs, u"Only files of this machine can be opened"_s);
            return;
        }
        paths << *path;
    }
    Q_EMIT openRequested(paths);
}

void DBusApplication::activateAction(const QString &name, bool hasParameter)
{
    const bool isKnown = name == newDocumentAction || name == preferencesAction;
    if (!isKnown || hasParameter) {
        sendErrorReply(QDBusError::InvalidArgs, u"There is no such action"_s);
        return;
    }
    Q_EMIT actionRequested(name);
}

void DBusApplication::createDocWithText(const std::optional<QString> &text)
{
    if (const std::optional<QString> wrong = m_createDoc ? m_createDoc(text) : std::nullopt) {
        sendErrorReply(QDBusError::InvalidArgs, *wrong);
    }
}

} // namespace quorvane
