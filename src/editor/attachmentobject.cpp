#include "editor/attachmentobject.h"

#include "editor/heightestimate.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QBuffer>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImageReader>
#include <QPainter>
#include <QPalette>
#include <QStyle>
#include <QTextDocument>

#include <algorithm>
#include <memory>
#include <utility>

namespace quorvane {

namespace {

constexpr int largestExtent = static_cast<int>(tallestImage);
constexpr int cachedKilobytes = 64 * 1024;
constexpr QSizeF iconFrame(120, 40);
constexpr QSizeF largestPicture(700, tallestImage); // a column's width
constexpr double iconExtent = 24;
constexpr double gap = 6;
constexpr double roundness = 5;
constexpr double twipsPerInch = 1440;

QImage decoded(const QByteArray &bytes)
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.width() > largestExtent || size.height() > largestExtent) {
        reader.setScaledSize(
            size.scaled(largestExtent, largestExtent, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    return reader.read();
}

bool hasPictureSize(const QTextFormat &format)
{
    return format.intProperty(AttachmentWidth) > 0 && format.intProperty(AttachmentHeight) > 0;
}

QSizeF pictureSize(const QTextFormat &format, double dotsPerInch)
{
    const double scale = dotsPerInch / twipsPerInch;
    const QSizeF told(format.intProperty(AttachmentWidth) * scale,
                      format.intProperty(AttachmentHeight) * scale);
    const bool fits =
        told.width() <= largestPicture.width() && told.height() <= largestPicture.height();
    return fits ? told : told.scaled(largestPicture, Qt::KeepAspectRatio);
}

const FlatRtfdEntry *fileOf(const QTextDocument &document, const QString &name)
{
    const AttachmentStore *store = AttachmentStore::find(document);
    const FlatRtfdEntry *entry = store ? store->entry(name) : nullptr;
    return entry && entry->kind == FlatRtfdEntry::Kind::File ? entry : nullptr;
}

double screenResolution()
{
    return QFontMetricsF(QGuiApplication::font()).fontDpi();
}

/// Of what the document is laid out for.
double resolutionOf(const QTextDocument &document)
{
    const QPaintDevice *device = document.documentLayout()->paintDevice();
    return device ? device->logicalDpiY() : screenResolution();
}

void drawFile(QPainter &painter, const QRectF &rect, const QString &name, const QPalette &palette)
{
    painter.setPen(palette.color(QPalette::Mid));
    painter.setBrush(palette.brush(QPalette::AlternateBase));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), roundness, roundness);
    const double extent = std::min({iconExtent, rect.width() - gap, rect.height() - gap});
    if (extent < 1) {
        return;
    }
    QRectF icon(0, 0, extent, extent);
    icon.moveCenter(rect.center());
    const bool hasName = rect.width() >= iconFrame.width() / 2;
    if (hasName) {
        icon.moveLeft(rect.left() + gap);
    }
    QApplication::style()
        ->standardIcon(QStyle::SP_FileIcon)
        .paint(&painter, icon.toRect(), Qt::AlignCenter);
    if (!hasName) {
        return;
    }
    const QRectF place(icon.right() + gap, rect.top(), rect.right() - icon.right() - 2 * gap,
                       rect.height());
    QFont font = QGuiApplication::font();
    font.setPixelSize(QFontInfo(font).pixelSize());
    painter.setFont(font);
    painter.setPen(palette.color(QPalette::Text));
    painter.drawText(
        place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
        QFontMetricsF(painter.font()).elidedText(name, Qt::ElideMiddle, place.width()));
}

} // namespace

QSizeF largestAttachmentSize(const QTextFormat &format, double dotsPerInch)
{
    return hasPictureSize(format) ? pictureSize(format, dotsPerInch).expandedTo(iconFrame)
                                  : iconFrame;
}

AttachmentObject::AttachmentObject(QTextDocument *document, std::optional<QPalette> palette)
    : QObject(document)
    , m_palette(std::move(palette))
    , m_pictures(cachedKilobytes)
{ }

void AttachmentObject::registerFor(QTextDocument &document, const std::optional<QPalette> &palette)
{
    if (!document.findChild<AttachmentObject *>(QString(), Qt::FindDirectChildrenOnly)) {
        document.documentLayout()->registerHandler(attachmentObjectType,
                                                   new AttachmentObject(&document, palette));
    }
}

QSizeF AttachmentObject::intrinsicSize(QTextDocument *document, int, const QTextFormat &format)
{
    if (!isPicture(*document, format)) {
        return iconFrame * (resolutionOf(*document) / screenResolution());
    }
    return pictureSize(format, resolutionOf(*document));
}

void AttachmentObject::drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document,
                                  int, const QTextFormat &format)
{
    const QString name = format.stringProperty(AttachmentName);
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    const QImage *image = isPicture(*document, format) ? picture(*document, name) : nullptr;
    if (image) {
        painter->drawImage(rect, *image);
    } else {
        // Drawn as on the screen, whatever the paper's resolution.
        const double scale = resolutionOf(*document) / screenResolution();
        painter->translate(rect.topLeft());
        painter->scale(scale, scale);
        drawFile(*painter, QRectF(QPointF(), rect.size() / scale), name,
                 m_palette.value_or(QGuiApplication::palette()));
    }
    painter->restore();
}

bool AttachmentObject::isPicture(const QTextDocument &document, const QTextFormat &format)
{
    const QString name = format.stringProperty(AttachmentName);
    const FlatRtfdEntry *file = hasPictureSize(format) ? fileOf(document, name) : nullptr;
    if (!file) {
        return false;
    }
    const auto known = m_beginsAsPicture.constFind(name);
    if (known != m_beginsAsPicture.constEnd()) {
        return *known;
    }
    QBuffer buffer;
    buffer.setData(file->bytes);
    return *m_beginsAsPicture.insert(name, QImageReader(&buffer).canRead());
}

const QImage *AttachmentObject::picture(const QTextDocument &document, const QString &name)
{
    if (!m_pictures.contains(name)) {
        const FlatRtfdEntry *file = fileOf(document, name);
        auto image = std::make_unique<QImage>(file ? decoded(file->bytes) : QImage());
        const qsizetype kilobytes =
            std::min<qsizetype>(image->sizeInBytes() / 1024, cachedKilobytes);
        m_pictures.insert(name, image.release(), kilobytes); // takes the image over
    }
    const QImage *image = m_pictures.object(name);
    return image->width() > 0 ? image : nullptr;
}

} // namespace quorvane
