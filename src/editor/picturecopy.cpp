#include "editor/picturecopy.h"

#include <QBuffer>
#include <QImageReader>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr int photoQuality = 80;
constexpr double mostPixels = 160'000;
constexpr double mostMixedPixels = 60'000; // as PNG, which is slower to unpack

QSize sizeWithin(double most, const QSize &size)
{
    const double pixels = double(size.width()) * size.height();
    const double scale = std::min(1.0, std::sqrt(most / std::max(1.0, pixels)));
    return QSize(int(size.width() * scale), int(size.height() * scale)).expandedTo(QSize(1, 1));
}

bool isOpaque(const QImage &image)
{
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        if (std::any_of(row, row + image.width(),
                        [](QRgb pixel) { return qAlpha(pixel) != 255; })) {
            return false;
        }
    }
    return true;
}

} // namespace

PictureCopy PictureCopy::of(const QImage &image, const QSize &shown)
{
    const QSize size =
        sizeWithin(image.hasAlphaChannel() ? mostMixedPixels : mostPixels, image.size());
    const QImage small = size == image.size()
        ? image
        : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    PictureCopy copy {{}, size, shown};
    QBuffer buffer(&copy.bytes);
    const bool isDone = small.hasAlphaChannel() ? small.save(&buffer, "PNG")
                                                : small.save(&buffer, "JPG", photoQuality);
    if (!isDone) {
        return {};
    }
    copy.bytes.squeeze(); // while it grew it took up to twice as much
    return copy;
}

QImage PictureCopy::unpacked(const QSize &most) const
{
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QSize wanted = most.boundedTo(size);
    if (wanted != size) {
        reader.setScaledSize(wanted);
    }
    const QImage image = reader.read();
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

QImage withoutIdleAlpha(const QImage &image)
{
    if (!image.hasAlphaChannel()) {
        return image.convertToFormat(QImage::Format_RGB32);
    }
    const QImage mixed = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return isOpaque(mixed) ? mixed.convertToFormat(QImage::Format_RGB32) : mixed;
}

} // namespace quorvane
