#include "editor/attachmentobject.h"

#include "editor/attachmenticon.h"
#include "editor/heightestimate.h"
#include "editor/picturefile.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextFrame>

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr QSizeF largestPicture(700, tallestImage); // on a screen; a column's width
constexpr double twipsPerInch = 1440;
constexpr double narrowestColumn = 16;
constexpr int preparedPictures = 6; // on each side of what is seen
constexpr int lookedThrough = 300; // paragraphs, for these

double screenResolution()
{
    return QFontMetricsF(QGuiApplication::font()).fontDpi();
}

QSizeF fitting(const QSizeF &size, const QSizeF &most)
{
    const bool fits = size.width() <= most.width() && size.height() <= most.height();
    return fits ? size : size.scaled(most, Qt::KeepAspectRatio);
}

QSizeF pictureSize(const QTextFormat &format, double dotsPerInch)
{
    const double scale = dotsPerInch / twipsPerInch;
    const QSizeF told(format.intProperty(AttachmentWidth) * scale,
                      format.intProperty(AttachmentHeight) * scale);
    return fitting(told, largestPicture * (dotsPerInch / screenResolution()));
}

const FlatRtfdEntry *entryOf(const QTextDocument &document, const QTextFormat &format)
{
    const AttachmentStore *store = AttachmentStore::find(document);
    return store ? store->entry(format.stringProperty(AttachmentName)) : nullptr;
}

const FlatRtfdEntry *fileOf(const QTextDocument &document, const QTextFormat &format)
{
    const FlatRtfdEntry *entry = entryOf(document, format);
    return entry && entry->kind == FlatRtfdEntry::Kind::File ? entry : nullptr;
}

qint64 bytesOf(const FlatRtfdEntry &entry)
{
    qint64 bytes = entry.bytes.size();
    for (const FlatRtfdEntry &child : entry.children) {
        bytes += bytesOf(child);
    }
    return bytes;
}

/// Between the margins, as far as they are known; a paragraph's own are not.
double columnOf(const QTextDocument &document)
{
    const QTextFrameFormat frame = document.rootFrame()->frameFormat();
    const double scale = resolutionOf(document) / screenResolution();
    const double margins = (frame.leftMargin() + frame.rightMargin()) * scale;
    const double column = document.textWidth() - margins;
    return document.textWidth() > 0 ? std::max(column, narrowestColumn) : largestPicture.width();
}

PictureCache::Request requestFor(const QTextFormat &format, const QByteArray &bytes,
                                 const QSizeF &onDevice)
{
    return {format.stringProperty(AttachmentName), bytes, onDevice.toSize().expandedTo(QSize(1, 1)),
            !format.boolProperty(AttachmentNoOrient)};
}

} // namespace

bool hasPictureSize(const QTextFormat &format)
{
    return format.intProperty(AttachmentWidth) > 0 && format.intProperty(AttachmentHeight) > 0;
}

double resolutionOf(const QTextDocument &document)
{
    const QPaintDevice *device = document.documentLayout()->paintDevice();
    return device ? device->logicalDpiY() : screenResolution();
}

QSizeF largestAttachmentSize(const QTextFormat &format, double dotsPerInch)
{
    return hasPictureSize(format) ? pictureSize(format, dotsPerInch).expandedTo(largestFileFrame)
                                  : largestFileFrame;
}

AttachmentObject::AttachmentObject(QTextDocument *document, std::optional<QPalette> palette)
    : QObject(document)
    , m_document(*document)
    , m_palette(std::move(palette))
{
    connect(&m_pictures, &PictureCache::arrived, this,
            [this] { emit m_document.documentLayout()->update(); });
    connect(&m_pictures, &PictureCache::pageAsked, this, &AttachmentObject::prepareNeighbours);
}

AttachmentObject *AttachmentObject::of(const QTextDocument &document)
{
    return document.findChild<AttachmentObject *>(QString(), Qt::FindDirectChildrenOnly);
}

void AttachmentObject::registerFor(QTextDocument &document, const std::optional<QPalette> &palette)
{
    if (!of(document)) {
        document.documentLayout()->registerHandler(attachmentObjectType,
                                                   new AttachmentObject(&document, palette));
    }
}

QSizeF AttachmentObject::intrinsicSize(QTextDocument *document, int, const QTextFormat &format)
{
    const double resolution = resolutionOf(*document);
    if (!isPicture(format)) {
        return fileFrame(format.stringProperty(AttachmentName)) * (resolution / screenResolution());
    }
    const QSizeF size = pictureSize(format, resolution);
    return fitting(size, {columnOf(*document), size.height()});
}

void AttachmentObject::drawObject(QPainter *painter, const QRectF &rect, QTextDocument *,
                                  int position, const QTextFormat &format)
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (isPicture(format)) {
        noteSeen(position, *painter);
        drawPicture(*painter, rect, format);
    } else {
        drawIcon(*painter, rect, format);
    }
    painter->restore();
}

void AttachmentObject::drawPicture(QPainter &painter, const QRectF &rect, const QTextFormat &format)
{
    const FlatRtfdEntry *file = fileOf(m_document, format);
    if (!file) {
        return;
    }
    const QTransform toDevice = painter.deviceTransform();
    // Whole pixels of the device, else each one would be mixed of four; and as many of them
    // wherever the text is scrolled to.
    const QRectF place = toDevice.mapRect(rect);
    const PictureCache::Request request = requestFor(format, file->bytes, place.size());
    const QRect pixels(place.topLeft().toPoint(), request.size);
    PictureCache::Found found {};
    if (m_palette) {
        found.image = m_pictures.decodedNow(request);
        found.state = found.image ? PictureCache::State::Shown : PictureCache::State::Broken;
    } else {
        found = m_pictures.find(request);
    }
    if (found.state == PictureCache::State::Shown) {
        painter.drawImage(toDevice.inverted().mapRect(QRectF(pixels)), *found.image);
    } else if (found.state == PictureCache::State::Coming) {
        drawComingPicture(painter, rect, palette());
    } else {
        drawIcon(painter, rect, format);
    }
}

// --- What will be seen ----------------------------------------------------------------------

void AttachmentObject::noteSeen(int position, const QPainter &painter)
{
    m_seen.first = m_seen.first < 0 ? position : std::min(m_seen.first, position);
    m_seen.last = std::max(m_seen.last, position);
    m_seen.scale = painter.deviceTransform().m11();
    const double resolution = resolutionOf(m_document);
    if (m_resolution != resolution) {
        m_resolution = resolution;
        m_pictures.forgetPages();
    }
}

void AttachmentObject::forgetPictures()
{
    m_pictures.clear();
    m_seen = {}; // nothing is prepared for it any more
    m_preparedAround = {};
}

// Whoever reads on goes downwards, mostly.
void AttachmentObject::prepareNeighbours()
{
    const Seen seen = std::exchange(m_seen, Seen());
    if (seen.first < 0 || seen == m_preparedAround) {
        return;
    }
    m_preparedAround = seen;
    const QTextBlock first = m_document.findBlock(seen.first);
    const QTextBlock last = m_document.findBlock(seen.last);
    const bool isForward = seen.first >= m_wasFirst;
    m_wasFirst = seen.first;
    prepareFrom(isForward ? last.next() : first.previous(), isForward);
    prepareFrom(isForward ? first.previous() : last.next(), !isForward);
}

void AttachmentObject::prepareFrom(const QTextBlock &block, bool isForward)
{
    int left = preparedPictures;
    int looks = lookedThrough;
    for (QTextBlock at = block; at.isValid() && left > 0 && looks > 0; --looks) {
        for (auto part = at.begin(); !part.atEnd() && left > 0; ++part) {
            const QTextCharFormat format = part.fragment().charFormat();
            if (format.objectType() == attachmentObjectType && isPicture(format)) {
                const QSizeF size = intrinsicSize(&m_document, part.fragment().position(), format);
                m_pictures.prepare(requestFor(format, fileOf(m_document, format)->bytes,
                                              size * m_preparedAround.scale));
                --left;
            }
        }
        at = isForward ? at.next() : at.previous();
    }
}

// Drawn as on the screen, whatever the paper's resolution.
void AttachmentObject::drawIcon(QPainter &painter, const QRectF &rect, const QTextFormat &format)
{
    const double scale = resolutionOf(m_document) / screenResolution();
    const FlatRtfdEntry *entry = entryOf(m_document, format);
    painter.save();
    painter.translate(rect.topLeft());
    painter.scale(scale, scale);
    drawFile(painter, QRectF(QPointF(), rect.size() / scale), format.stringProperty(AttachmentName),
             entry ? bytesOf(*entry) : 0, palette());
    painter.restore();
}

QPalette AttachmentObject::palette() const
{
    return m_palette.value_or(QGuiApplication::palette());
}

bool AttachmentObject::isPicture(const QTextFormat &format)
{
    const FlatRtfdEntry *file = hasPictureSize(format) ? fileOf(m_document, format) : nullptr;
    if (!file) {
        return false;
    }
    const QString name = format.stringProperty(AttachmentName);
    const auto known = m_canBeShown.constFind(name);
    return known != m_canBeShown.constEnd()
        ? *known
        : *m_canBeShown.insert(name, pictureInfo(file->bytes).has_value());
}

} // namespace quorvane
