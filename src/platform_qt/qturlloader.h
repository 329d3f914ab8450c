#pragma once

#include "platform/nsoperationqueue.h"
#include "platform/urlloader.h"

#include <QObject>
#include <QThread>

#include <chrono>

namespace quorvane {

/// Gets web pages over HTTP: each within a time, of a bounded length, and by redirections that
/// neither leave the web nor its encryption.
class QtURLLoader final : public QObject, public URLLoader
{
    Q_OBJECT

public:
    explicit QtURLLoader(std::chrono::milliseconds timeout = std::chrono::seconds(15));

    /// Nothing, and nobody is asked, where the host's name is a reserved one (RFC 2606).
    std::optional<QByteArray> contentsOfURL(const QString &url) override;

    static constexpr qint64 longestAnswer = 1024 * 1024; ///< Bytes; a longer one is none.

Q_SIGNALS:
    /// To be sent from any thread: what is under way gives nothing.
    void cancelled();

private:
    std::chrono::milliseconds m_timeout;
};

/// One thread beside the main one.
class QtBackgroundQueue final : public BackgroundQueue
{
public:
    explicit QtBackgroundQueue(NSOperationQueue &mainQueue);
    ~QtBackgroundQueue() override; ///< Waits for what is running.

    void addOperation(std::function<void()> work, std::function<void()> done) override;

private:
    NSOperationQueue &m_mainQueue;
    QThread m_thread;
    QObject m_worker; // lives in the thread
    QObject m_here; // lives in the main one; what comes after its end is dropped
};

} // namespace quorvane
