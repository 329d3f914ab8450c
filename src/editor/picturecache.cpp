#include "editor/picturecache.h"

#include "editor/picturefile.h"

#include <QMutex>
#include <QThreadPool>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int cachedKilobytes = 72 * 1024;
constexpr qint64 smallPicture = 300'000; // pixels; decoded before anybody would see a placeholder
constexpr std::size_t mostWaiting = 24; // others are asked for again when they are painted
constexpr int mostDecoding = 2;

QString keyOf(const PictureCache::Request &request)
{
    return u"%1/%2/%3"_s.arg(request.size.width()).arg(request.size.height()).arg(request.name);
}

} // namespace

/// Where jobs leave what they have decoded for as long as somebody wants it.
struct PictureCache::Mailbox
{
    QMutex mutex;
    PictureCache *owner;
};

PictureCache::PictureCache(QObject *parent)
    : QObject(parent)
    , m_mailbox(std::make_shared<Mailbox>())
    , m_images(cachedKilobytes)
{
    m_mailbox->owner = this;
}

PictureCache::~PictureCache()
{
    const QMutexLocker lock(&m_mailbox->mutex);
    m_mailbox->owner = nullptr;
}

PictureCache::Found PictureCache::find(const Request &request)
{
    if (m_broken.contains(request.name)) {
        return {State::Broken, nullptr};
    }
    if (const QImage *known = m_images.object(keyOf(request))) {
        return {State::Shown, known};
    }
    const std::optional<PictureInfo> info = pictureInfo(request.bytes, request.isTurned);
    if (!info) {
        m_broken.insert(request.name);
        return {State::Broken, nullptr};
    }
    if (qint64(info->pixels.width()) * info->pixels.height() <= smallPicture) {
        const QImage *decoded = decodedNow(request);
        return {decoded ? State::Shown : State::Broken, decoded};
    }
    if (!m_decoding.contains(keyOf(request))) {
        std::erase_if(m_waiting,
                      [&](const Request &waiting) { return waiting.name == request.name; });
        m_waiting.push_front(request);
        if (m_waiting.size() > mostWaiting) {
            m_waiting.pop_back();
        }
        startNext();
    }
    const QImage *other = m_images.object(m_latest.value(request.name));
    return {other ? State::Shown : State::Coming, other};
}

const QImage *PictureCache::decodedNow(const Request &request)
{
    if (!m_broken.contains(request.name) && !m_images.contains(keyOf(request))) {
        keep(request, decodedPicture(request.bytes, request.size, request.isTurned));
    }
    return m_images.object(keyOf(request));
}

void PictureCache::clear()
{
    ++m_generation;
    m_waiting.clear();
    m_decoding.clear();
    m_images.clear();
    m_latest.clear();
}

void PictureCache::keep(const Request &request, QImage image)
{
    if (image.width() <= 0) {
        m_broken.insert(request.name);
        return;
    }
    const qsizetype kilobytes = std::min<qsizetype>(image.sizeInBytes() / 1024, cachedKilobytes);
    m_latest.insert(request.name, keyOf(request));
    m_images.insert(keyOf(request), std::make_unique<QImage>(std::move(image)).release(),
                    kilobytes);
}

void PictureCache::startNext()
{
    while (m_decoding.size() < mostDecoding && !m_waiting.empty()) {
        Request next = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_decoding.insert(keyOf(next));
        QThreadPool::globalInstance()->start([mailbox = m_mailbox, generation = m_generation,
                                              next = std::move(next)] {
            const QImage image = decodedPicture(next.bytes, next.size, next.isTurned);
            const QMutexLocker lock(&mailbox->mutex);
            PictureCache *owner = mailbox->owner;
            if (owner) {
                QMetaObject::invokeMethod(
                    owner,
                    [owner, generation, image, next] { owner->arrive(next, generation, image); },
                    Qt::QueuedConnection);
            }
        });
    }
}

void PictureCache::arrive(const Request &request, int generation, const QImage &image)
{
    if (generation != m_generation) {
        return;
    }
    m_decoding.remove(keyOf(request));
    keep(request, image);
    startNext();
    emit arrived();
}

} // namespace quorvane
