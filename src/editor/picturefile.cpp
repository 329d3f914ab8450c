#include "editor/picturefile.h"

#include "editor/picturecopy.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>

#include <array>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double dotsPerInch = 96;
constexpr double inchesPerMetre = 39.3701;
constexpr double leastResolution = 20; // what a file tells below and above is no resolution
constexpr double mostResolution = 2400;
constexpr qint64 mostPixels = 32'000'000; // four bytes each
constexpr qint64 mostJpegPixels = 120'000'000; // decoded at a fraction of its size
constexpr int longestSide = 60'000;

/// The kinds that are decoded at all, by their first bytes. Others may look for files, or are too
/// rarely used for their decoders to be trusted.
QByteArray formatOf(const QByteArray &bytes)
{
    constexpr std::array<std::pair<const char *, const char *>, 6> beginnings {{
        {"\x89PNG\r\n\x1a\n", "png"},
        {"\xff\xd8\xff", "jpeg"},
        {"GIF8", "gif"},
        {"BM", "bmp"},
        {"II*", "tiff"},
        {"MM", "tiff"},
    }};
    for (const auto &[beginning, format] : beginnings) {
        if (bytes.startsWith(beginning)) {
            return format;
        }
    }
    return bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WEBP" ? "webp"_ba : QByteArray();
}

template <typename Number> Number numberAt(const QByteArray &bytes, qsizetype at)
{
    return at + qsizetype(sizeof(Number)) <= bytes.size()
        ? qFromBigEndian<Number>(bytes.constData() + at)
        : Number(0);
}

/// Dots per inch that a PNG tells before its pixels; 0 for none.
double resolutionOfPng(const QByteArray &bytes)
{
    constexpr qsizetype signature = 8;
    constexpr qsizetype frame = 12; // length, name and checksum
    for (qsizetype at = signature; at + frame <= bytes.size();) {
        const QByteArray name = bytes.sliced(at + 4, 4);
        const bool isInMetres = name == "pHYs" && bytes.mid(at + 16, 1) == "\x01";
        if (isInMetres) {
            return numberAt<quint32>(bytes, at + 8) / inchesPerMetre;
        }
        if (name == "IDAT" || name == "pHYs") {
            return 0;
        }
        at += frame + numberAt<quint32>(bytes, at);
    }
    return 0;
}

double resolutionOfJpeg(const QByteArray &bytes)
{
    if (bytes.mid(2, 2) != "\xff\xe0" || bytes.mid(6, 4) != "JFIF") {
        return 0;
    }
    const auto unit = numberAt<quint8>(bytes, 13);
    const double density = numberAt<quint16>(bytes, 14);
    return unit == 1 ? density : unit == 2 ? density * 2.54 : 0;
}

double resolutionOf(const QByteArray &bytes, const QByteArray &format)
{
    const double told = format == "png" ? resolutionOfPng(bytes)
        : format == "jpeg"              ? resolutionOfJpeg(bytes)
                                        : 0;
    // Files tell it by the metre, which turns 96 into 96.01.
    return told >= leastResolution && told <= mostResolution ? std::round(told) : dotsPerInch;
}

/// The size in the file, before it is turned; an empty one where it is not to be decoded.
QSize sizeToDecode(const QImageReader &reader, const QByteArray &format)
{
    const QSize size = reader.size();
    const qint64 most = format == "jpeg" ? mostJpegPixels : mostPixels;
    const bool isFit = size.width() > 0 && size.height() > 0 && size.width() <= longestSide
        && size.height() <= longestSide && qint64(size.width()) * size.height() <= most;
    return isFit ? size : QSize();
}

bool turnsASide(const QImageReader &reader)
{
    return reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
}

} // namespace

std::optional<PictureInfo> pictureInfo(const QByteArray &bytes, bool isTurned)
{
    const QByteArray format = formatOf(bytes);
    if (format.isEmpty()) {
        return std::nullopt;
    }
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    QSize pixels = sizeToDecode(reader, format);
    if (pixels.isEmpty()) {
        return std::nullopt;
    }
    if (isTurned && turnsASide(reader)) {
        pixels.transpose();
    }
    return PictureInfo {pixels, QSizeF(pixels) * (dotsPerInch / resolutionOf(bytes, format)),
                        format == "jpeg" ? u"jpg"_s : QString::fromLatin1(format),
                        QString::fromLatin1("image/" + format)};
}

QImage decodedPicture(const QByteArray &bytes, const QSize &most, bool isTurned)
{
    const QByteArray format = formatOf(bytes);
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer, format);
    reader.setAutoDetectImageFormat(false);
    const QSize size = format.isEmpty() ? QSize() : sizeToDecode(reader, format);
    if (size.isEmpty()) {
        return {};
    }
    const bool isTransposed = isTurned && turnsASide(reader);
    reader.setAutoTransform(isTurned);
    const QSize scaled =
        (isTransposed ? most.transposed() : most).boundedTo(size).expandedTo(QSize(1, 1));
    if (scaled != size) {
        reader.setScaledSize(scaled);
    }
    QImage image = reader.read();
    if (image.width() <= 0) {
        return {};
    }
    return withoutIdleAlpha(image);
}

QByteArray pngOf(const QByteArray &bytes, bool isTurned)
{
    constexpr int littleEffort = 80; // somebody waits for it
    const std::optional<PictureInfo> info = pictureInfo(bytes, isTurned);
    if (!info) {
        return {};
    }
    const double pixels = double(info->pixels.width()) * info->pixels.height();
    const QSize size = info->pixels * std::min(1.0, std::sqrt(double(mostPixels) / pixels));
    QByteArray png;
    QBuffer buffer(&png);
    return decodedPicture(bytes, size, isTurned).save(&buffer, "PNG", littleEffort) ? png
                                                                                    : QByteArray();
}

QStringList pictureFileTypes()
{
    const QList<QByteArray> supported = QImageReader::supportedImageFormats();
    QStringList types;
    for (const char *type : {"png", "jpg", "jpeg", "gif", "bmp", "tif", "tiff", "webp"}) {
        if (supported.contains(type)) {
            types.append(QString::fromLatin1(type));
        }
    }
    return types;
}

} // namespace quorvane
