#include "platform_qt/busconnector.h"

#include <chrono>
#include <cstdlib>

#include <unistd.h>

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds endPatience {500};

QDBusConnection connectionTo(QDBusConnection::BusType type)
{
    return type == QDBusConnection::SystemBus ? QDBusConnection::systemBus()
                                              : QDBusConnection::sessionBus();
}

} // namespace

BusConnector::BusConnector(QDBusConnection::BusType type)
    : m_type(type)
    , m_thread(QThread::create([type] { connectionTo(type); }))
{
    connect(m_thread.get(), &QThread::finished, this, &BusConnector::finished);
    m_thread->start();
}

BusConnector::~BusConnector()
{
    if (m_thread->isFinished() || m_thread->wait(QDeadlineTimer(endPatience))) {
        return;
    }
    // It cannot be stopped, and the library's own end would wait for it for ever. By now all that
    // the program had to do is done.
    static_cast<void>(m_thread.release());
    on_exit([](int status, void *) { _exit(status); }, nullptr);
}

QDBusConnection BusConnector::bus() const
{
    return connectionTo(m_type);
}

} // namespace quorvane
