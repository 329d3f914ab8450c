#include "platform_qt/qturlloader.h"

#include <QEventLoop>
#include <QMetaObject>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QTimer>

#include <memory>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

// Names that RFC 2606 keeps from ever being anybody's. A program that was built without hosts of
// its own has such ones, and is not to tell a name server of itself.
bool isReserved(const QString &host)
{
    const QString top = host.section(u'.', -1, -1, QString::SectionSkipEmpty).toLower();
    return QStringList({u"example"_s, u"invalid"_s, u"test"_s}).contains(top);
}

} // namespace

QtURLLoader::QtURLLoader(std::chrono::milliseconds timeout)
    : m_timeout(timeout)
{ }

std::optional<QByteArray> QtURLLoader::contentsOfURL(const QString &url)
{
    const QUrl address(url, QUrl::StrictMode);
    if (isReserved(address.host())) {
        return std::nullopt;
    }
    QNetworkAccessManager network; // of the thread that asks
    QNetworkRequest request(address);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    const std::unique_ptr<QNetworkReply> reply(network.get(request));
    QEventLoop waiting; // not the main loop's: this thread has nothing else to do
    const auto abort = [&reply] {
        reply->abort();
    };
    connect(reply.get(), &QNetworkReply::finished, &waiting, &QEventLoop::quit);
    connect(this, &QtURLLoader::cancelled, reply.get(), abort);
    connect(reply.get(), &QNetworkReply::downloadProgress, reply.get(),
            [&reply](qint64 received, qint64 total) {
                if (received > longestAnswer || total > longestAnswer) {
                    reply->abort();
                }
            });
    QTimer::singleShot(m_timeout, reply.get(), abort);
    if (!reply->isFinished()) {
        waiting.exec();
    }
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (reply->error() != QNetworkReply::NoError || status / 100 != 2) {
        return std::nullopt;
    }
    QByteArray body = reply->read(longestAnswer + 1);
    return body.size() <= longestAnswer ? std::optional(std::move(body)) : std::nullopt;
}

QtBackgroundQueue::QtBackgroundQueue(NSOperationQueue &mainQueue)
    : m_mainQueue(mainQueue)
{
    m_worker.moveToThread(&m_thread);
}

QtBackgroundQueue::~QtBackgroundQueue()
{
    m_thread.quit();
    m_thread.wait();
}

// The thread begins with the first work: most starts of the program have none.
void QtBackgroundQueue::addOperation(std::function<void()> work, std::function<void()> done)
{
    if (!m_thread.isRunning()) {
        m_thread.start(QThread::LowPriority);
    }
    QMetaObject::invokeMethod(
        &m_worker,
        [this, work = std::move(work), done = std::move(done)] {
            work();
            QMetaObject::invokeMethod(
                &m_here, [this, done] { m_mainQueue.addOperation(done); }, Qt::QueuedConnection);
        },
        Qt::QueuedConnection);
}

} // namespace quorvane
