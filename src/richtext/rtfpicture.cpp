#include "richtext/rtfpicture.h"

#include "richtext/rtfescape.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>

namespace quorvane {

namespace {

constexpr int twipsPerPixel = 15;
constexpr qint64 mostPixels = 50'000'000;
constexpr int placeableHeadLength = 22; ///< In front of a metafile; RTF says the same in words.

struct Picture
{
    const char *kind = nullptr;
    QByteArray bytes;
    QSize pixels;
};

QSize sizeOf(const QByteArray &file)
{
    QByteArray bytes = file;
    QBuffer buffer(&bytes);
    return QImageReader(&buffer).size();
}

QByteArray convertedToPng(const QByteArray &file, QSize &size)
{
    QByteArray bytes = file;
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    size = reader.size();
    if (qint64(size.width()) * size.height() > mostPixels) {
        return {};
    }
    const QImage image = reader.read();
    size = image.size();
    QByteArray png;
    QBuffer out(&png);
    return !size.isEmpty() && out.open(QIODevice::WriteOnly) && image.save(&out, "PNG")
        ? png
        : QByteArray();
}

Picture pictureOf(const QByteArray &file)
{
    if (file.startsWith("\x89PNG\r\n\x1a\n")) {
        return {"\\pngblip", file, sizeOf(file)};
    }
    if (file.startsWith("\xff\xd8\xff")) {
        return {"\\jpegblip", file, sizeOf(file)};
    }
    if (file.startsWith("\xd7\xcd\xc6\x9a")) {
        return {"\\wmetafile8", file.mid(placeableHeadLength), {}};
    }
    if (file.startsWith(QByteArrayView("\x01\0\x09\0", 4))) {
        return {"\\wmetafile8", file, {}};
    }
    if (file.startsWith(QByteArrayView("\x01\0\0\0", 4)) && file.mid(40, 4) == " EMF") {
        return {"\\emfblip", file, {}};
    }
    Picture picture {"\\pngblip", {}, {}};
    picture.bytes = convertedToPng(file, picture.pixels);
    return picture;
}

void appendExtent(QByteArray &out, const char *pixelWord, const char *goalWord, int pixels,
                  int twips)
{
    if (pixels > 0) {
        appendWord(out, pixelWord, pixels);
    }
    const int goal = twips > 0 ? twips : pixels * twipsPerPixel;
    if (goal > 0) {
        appendWord(out, goalWord, goal);
    }
}

} // namespace

bool appendPicture(QByteArray &out, const QByteArray &file, int width, int height)
{
    const Picture picture = pictureOf(file);
    if (picture.bytes.isEmpty()) {
        return false;
    }
    out += "{\\pict";
    out += picture.kind;
    appendExtent(out, "picw", "picwgoal", picture.pixels.width(), width);
    appendExtent(out, "pich", "pichgoal", picture.pixels.height(), height);
    appendHexLines(out, picture.bytes);
    out += '}';
    return true;
}

} // namespace quorvane
