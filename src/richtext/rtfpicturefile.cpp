#include "richtext/rtfpicturefile.h"

#include <QBuffer>
#include <QImageReader>

using namespace Qt::StringLiterals;

namespace quorvane {

QString extensionOfPicture(const RtfPicture &picture)
{
    if (picture.bytes.startsWith("\x89PNG")) {
        return u"png"_s;
    }
    if (picture.bytes.startsWith("\xff\xd8\xff")) {
        return u"jpg"_s;
    }
    switch (picture.kind) {
    case RtfPicture::Kind::Unsaid:
        break;
    case RtfPicture::Kind::Png:
        return u"png"_s;
    case RtfPicture::Kind::Jpeg:
        return u"jpg"_s;
    case RtfPicture::Kind::Emf:
        return u"emf"_s;
    case RtfPicture::Kind::Wmf:
        return u"wmf"_s;
    case RtfPicture::Kind::MacPict:
        return u"pict"_s;
    case RtfPicture::Kind::Dib:
        return u"dib"_s;
    case RtfPicture::Kind::Bitmap:
        return u"bmp"_s;
    }
    return u"bin"_s;
}

QSize sizeOfPicture(const RtfPicture &picture)
{
    constexpr int twipsPerPixel = 15;
    constexpr int mostPixels = 66'000; // A million twips.
    if (picture.width > 0 && picture.height > 0) {
        return {picture.width, picture.height};
    }
    QBuffer buffer;
    buffer.setData(picture.bytes);
    const QSize pixels = QImageReader(&buffer).size();
    return pixels.isValid() ? pixels.boundedTo({mostPixels, mostPixels}) * twipsPerPixel
                            : QSize(picture.width, picture.height);
}

} // namespace quorvane
