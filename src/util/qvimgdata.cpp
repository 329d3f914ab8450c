#include "util/valuetransformers.h"

#include <QDataStream>
#include <QIODevice>
#include <QImage>

namespace quorvane {

namespace {

constexpr quint32 headerLength = 8;
constexpr quint16 shortType = 3;
constexpr quint16 longType = 4;

struct Tag
{
    quint16 number;
    quint16 type;
    quint32 count;
    quint32 value;
};

// Baseline TIFF 6.0: one uncompressed strip of 8-bit RGB with unassociated alpha, big-endian.
QByteArray tiffRepresentation(const QImage &source)
{
    const QImage image = source.convertToFormat(QImage::Format_RGBA8888);
    const auto width = static_cast<quint32>(image.width());
    const auto height = static_cast<quint32>(image.height());
    const quint32 stripLength = width * height * 4;
    const quint32 bitsOffset = headerLength + stripLength;
    const quint32 directoryOffset = bitsOffset + 4 * sizeof(quint16);
    const auto inField = [](quint32 value) {
        return value << 16; // a short stands left in its field
    };
    const Tag tags[] = {
        {256, longType, 1, width},       {257, longType, 1, height},
        {258, shortType, 4, bitsOffset}, {259, shortType, 1, inField(1)},
        {262, shortType, 1, inField(2)}, {273, longType, 1, headerLength},
        {277, shortType, 1, inField(4)}, {278, longType, 1, height},
        {279, longType, 1, stripLength}, {338, shortType, 1, inField(2)},
    };
    QByteArray bytes;
    QDataStream out(&bytes, QIODevice::WriteOnly);
    out.writeRawData("MM\0\x2a", 4);
    out << directoryOffset;
    for (int row = 0; row < image.height(); ++row) {
        out.writeRawData(reinterpret_cast<const char *>(image.constScanLine(row)),
                         static_cast<int>(width * 4));
    }
    for (int channel = 0; channel < 4; ++channel) {
        out << quint16(8);
    }
    out << static_cast<quint16>(std::size(tags));
    for (const Tag &tag : tags) {
        out << tag.number << tag.type << tag.count << tag.value;
    }
    out << quint32(0); // no further image
    return bytes;
}

} // namespace

QVariant QVImgData::transformedValue(const QVariant &value) const
{
    return QImage::fromData(value.toByteArray());
}

QVariant QVImgData::reverseTransformedValue(const QVariant &value) const
{
    const auto image = value.value<QImage>();
    return image.width() > 0 && image.height() > 0 ? QVariant(tiffRepresentation(image))
                                                   : QVariant();
}

} // namespace quorvane
