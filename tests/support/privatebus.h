#pragma once

#include <QDBusConnection>
#include <QProcess>

namespace quorvane {

/// A bus of the test's own, up to the end of this object.
class PrivateBus final
{
public:
    PrivateBus()
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"),
                        QStringLiteral("--nopidfile"), QStringLiteral("--print-address=1")});
        while (!m_daemon.canReadLine() && m_daemon.waitForReadyRead()) { }
        m_address = m_daemon.readLine().trimmed();
    }

    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    ~PrivateBus()
    {
        m_daemon.terminate();
        m_daemon.waitForFinished();
    }

    QByteArray address() const { return m_address; } ///< Empty where it did not start.

    qint64 processId() const { return m_daemon.processId(); }

    /// Another one who is connected to it.
    QDBusConnection connectAs(const QString &name) const
    {
        return QDBusConnection::connectToBus(QString::fromLatin1(m_address), name);
    }

private:
    QProcess m_daemon;
    QByteArray m_address;
};

} // namespace quorvane
