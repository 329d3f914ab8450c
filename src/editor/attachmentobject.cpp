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
#include <QTextDocument>
#include <QTextFrame>

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr QSizeF largestPicture(700, tallestImage); // on a screen; a column's width
constexpr double twipsPerInch = 1440;
constexpr double narrowestColumn = 16;

bool hasPictureSize(const QTextFormat &format)
{
    return format.intProperty(AttachmentWidth) > 0 && format.intProperty(AttachmentHeight) > 0;
}

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

} // namespace

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

void AttachmentObject::drawObject(QPainter *painter, const QRectF &rect, QTextDocument *, int,
                                  const QTextFormat &format)
{
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    if (isPicture(format)) {
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
    // Whole pixels of the device: else each one would be mixed of four.
    const QRect pixels = toDevice.mapRect(rect).toAlignedRect();
    const PictureCache::Request request {format.stringProperty(AttachmentName), file->bytes,
                                         pixels.size().expandedTo(QSize(1, 1)),
                                         !format.boolProperty(AttachmentNoOrient)};
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
