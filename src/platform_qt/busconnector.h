#pragma once

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QObject>
#include <QThread>

#include <memory>

namespace quorvane {

/// Connects to a bus of the system on a thread of its own, so that one that hangs holds nobody up,
/// not even the end of the program.
class BusConnector final : public QObject
{
    Q_OBJECT

public:
    explicit BusConnector(QDBusConnection::BusType type);
    ~BusConnector() override;

    bool isFinished() const { return m_thread->isFinished(); }

    /// \return whether it has a connection, or knows that there is none, within \a patience.
    bool waitForFinished(QDeadlineTimer patience) { return m_thread->wait(patience); }

    /// The connection, made or not. To be asked only when finished: it would wait.
    QDBusConnection bus() const;

Q_SIGNALS:
    void finished();

private:
    QDBusConnection::BusType m_type;
    std::unique_ptr<QThread> m_thread;
};

} // namespace quorvane
