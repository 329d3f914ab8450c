#include "editor/picturecache.h"

#include "editor/picturefile.h"

#include <QMutex>
#include <QThreadPool>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr qsizetype megabyte = 1'000'000;
constexpr qsizetype leastDecoded = 4 * megabyte; // whatever the page is
constexpr qsizetype mostBesidesPage = 4 * megabyte;
constexpr qsizetype mostCopied = 16 * megabyte;
constexpr qint64 smallPicture = 300'000; // pixels; decoded before anybody would see a placeholder
constexpr qint64 waitedForPixels = 700'000; // in all of a page, within the time of a frame
constexpr int fileWeight = 2; // of a file's pixels against those of a copy, in time
constexpr std::size_t mostWaiting = 24; // others are asked for again when they are painted
constexpr int mostDecoding = 2;
constexpr int restMilliseconds = 80;
constexpr int bytesPerPixel = 4;

QString keyOf(const PictureCache::Request &request)
{
    return u"%1/%2/%3"_s.arg(request.size.width()).arg(request.size.height()).arg(request.name);
}

qint64 pixelsOf(const QSize &size)
{
    return qint64(size.width()) * size.height();
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
    , m_images(leastDecoded)
    , m_copies(mostCopied)
    , m_rest(new QTimer(this))
{
    m_mailbox->owner = this;
    m_rest->setSingleShot(true);
    m_rest->setInterval(restMilliseconds);
    connect(m_rest, &QTimer::timeout, this, [this] {
        m_isAtRest = true;
        emit arrived();
    });
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
    note(request);
    if (const Decoded *known = m_images.object(keyOf(request))) {
        if (!known->isExact) {
            replaceAtRest(request);
        }
        return {State::Shown, &known->image};
    }
    if (const QImage *standIn = unpackedCopy(request)) {
        replaceAtRest(request);
        return {State::Shown, standIn};
    }
    const std::optional<PictureInfo> info = pictureInfo(request.bytes, request.isTurned);
    if (!info) {
        m_broken.insert(request.name);
        return {State::Broken, nullptr};
    }
    const qint64 pixels = pixelsOf(info->pixels);
    if (pixels <= smallPicture && mayWaitFor(fileWeight * pixels)) {
        const QImage *decoded = decodedNow(request);
        return {decoded ? State::Shown : State::Broken, decoded};
    }
    decodeSoon(request);
    return {State::Coming, nullptr};
}

void PictureCache::prepare(const Request &request)
{
    const bool isThere = m_copies.contains(request.name) || m_broken.contains(request.name)
        || m_images.contains(keyOf(request)) || m_decoding.contains(keyOf(request))
        || std::any_of(m_waiting.begin(), m_waiting.end(),
                       [&](const Job &job) { return job.request.name == request.name; });
    if (!isThere && m_waiting.size() < mostWaiting
        && pictureInfo(request.bytes, request.isTurned)) {
        m_waiting.push_back({request, false});
        startNext();
    }
}

const QImage *PictureCache::decodedNow(const Request &request)
{
    const Decoded *known = m_images.object(keyOf(request));
    if (known && known->isExact) {
        return &known->image;
    }
    return m_broken.contains(request.name)
        ? nullptr
        : keep(request, decodedPicture(request.bytes, request.size, request.isTurned), true);
}

void PictureCache::clear()
{
    ++m_generation;
    m_page = {};
    m_isAtRest = false;
    m_rest->stop();
    m_waiting.clear();
    m_decoding.clear();
    m_images.clear();
    m_copies.clear();
}

// --- What is seen ---------------------------------------------------------------------------

void PictureCache::note(const Request &request)
{
    if (m_page.pictures.isEmpty()) {
        QMetaObject::invokeMethod(this, &PictureCache::endPage, Qt::QueuedConnection);
    }
    const QString key = keyOf(request);
    if (m_page.pictures.contains(key)) {
        return;
    }
    m_page.pictures.insert(key);
    m_page.bytes += qsizetype(pixelsOf(request.size)) * bytesPerPixel;
    m_images.setMaxCost(std::max(m_images.maxCost(), m_page.bytes));
}

// All of a page has room, always: else what is decoded for it would drive out what is.
void PictureCache::endPage()
{
    if (m_page.pictures.isEmpty()) {
        return; // dropped meanwhile
    }
    m_largestPage = std::max(m_largestPage, m_page.bytes);
    m_page = {};
    m_isAtRest = false;
    m_images.setMaxCost(
        std::max(leastDecoded, m_largestPage + std::min(m_largestPage, mostBesidesPage)));
    emit pageAsked();
}

bool PictureCache::mayWaitFor(qint64 pixels)
{
    const bool isInTime = m_page.decodedPixels + pixels <= waitedForPixels;
    if (isInTime) {
        m_page.decodedPixels += pixels;
    }
    return isInTime;
}

/// Coarse where the time of the page is used up.
const QImage *PictureCache::unpackedCopy(const Request &request)
{
    constexpr int coarse = 4;
    const PictureCopy *copy = m_copies.object(request.name);
    if (!copy) {
        return nullptr;
    }
    const QSize size = request.size.boundedTo(copy->size);
    QImage image =
        copy->unpacked(mayWaitFor(pixelsOf(size)) ? size : (size / coarse).expandedTo(QSize(1, 1)));
    return image.width() > 0 ? keep(request, std::move(image), false) : nullptr;
}

// --- Keeping and decoding -------------------------------------------------------------------

const QImage *PictureCache::keep(const Request &request, QImage image, bool isExact)
{
    if (image.width() <= 0) {
        m_broken.insert(request.name);
        return nullptr;
    }
    const qsizetype bytes = image.sizeInBytes();
    m_images.setMaxCost(std::max(m_images.maxCost(), bytes));
    m_images.insert(keyOf(request),
                    std::make_unique<Decoded>(Decoded {std::move(image), isExact}).release(),
                    bytes);
    return &m_images.object(keyOf(request))->image;
}

void PictureCache::decodeSoon(const Request &request)
{
    const auto running = m_decoding.find(keyOf(request));
    if (running != m_decoding.end()) {
        *running = true;
        return;
    }
    std::erase_if(m_waiting, [&](const Job &job) { return job.request.name == request.name; });
    m_waiting.push_front({request, true});
    if (m_waiting.size() > mostWaiting) {
        m_waiting.pop_back();
    }
    startNext();
}

// Whoever leafs through has no use for it, and needs the machine for the next page.
void PictureCache::replaceAtRest(const Request &standIn)
{
    if (m_isAtRest) {
        decodeSoon(standIn);
    } else {
        m_rest->start();
    }
}

void PictureCache::startNext()
{
    while (m_decoding.size() < mostDecoding && !m_waiting.empty()) {
        auto [next, isAsked] = std::move(m_waiting.front());
        m_waiting.pop_front();
        m_decoding.insert(keyOf(next), isAsked);
        const PictureCopy *copy = m_copies.object(next.name);
        const bool needsCopy = !copy || copy->shown.width() < next.size.width();
        QThreadPool::globalInstance()->start(
            [mailbox = m_mailbox, generation = m_generation, needsCopy, next = std::move(next)] {
                const QImage image = decodedPicture(next.bytes, next.size, next.isTurned);
                std::optional<PictureCopy> made;
                if (needsCopy && image.width() > 0) {
                    made = PictureCopy::of(image, next.size);
                }
                const QMutexLocker lock(&mailbox->mutex);
                PictureCache *owner = mailbox->owner;
                if (owner) {
                    QMetaObject::invokeMethod(
                        owner,
                        [owner, generation, image, made, next] {
                            owner->arrive(next, generation, image, made);
                        },
                        Qt::QueuedConnection);
                }
            });
    }
}

void PictureCache::arrive(const Request &request, int generation, const QImage &image,
                          const std::optional<PictureCopy> &copy)
{
    if (generation != m_generation) {
        return;
    }
    const bool isAsked = m_decoding.take(keyOf(request));
    if (copy) {
        m_copies.insert(request.name, std::make_unique<PictureCopy>(*copy).release(),
                        copy->bytes.size());
    }
    const bool hasRoom = m_images.totalCost() + image.sizeInBytes() <= m_images.maxCost();
    if (isAsked || hasRoom || image.width() <= 0) {
        keep(request, image, true);
    }
    startNext();
    if (isAsked) {
        emit arrived();
    }
}

} // namespace quorvane
