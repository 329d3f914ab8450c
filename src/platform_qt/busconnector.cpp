#include "platform_qt/busconnector.h"

namespace quorvane {

namespace {

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
    m_thread->wait();
}

QDBusConnection BusConnector::bus() const
{
    return connectionTo(m_type);
}

} // namespace quorvane
