#pragma once

#include <QByteArray>
#include <QImage>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <optional>

namespace quorvane {

/// What the beginning of a file says of the picture in it.
struct PictureInfo
{
    QSize pixels; ///< As it is shown: turned as the file wants it, where \a isTurned.
    QSizeF natural; ///< In a document's pixels (1/96 inch), by the resolution that the file tells.
    QString ending; ///< Of a name for such a file, without a dot.
    QString type; ///< By which programs know such a file: "image/png".
};

/// Nothing where the file is no picture that can be shown: of another kind, broken, or so large
/// that decoding it would take the machine's memory. Nothing is decoded. \a isTurned says whether
/// the orientation that a camera noted is followed.
std::optional<PictureInfo> pictureInfo(const QByteArray &bytes, bool isTurned = true);

/// The picture, no larger than \a most pixels and stretched to that shape; an empty one where it
/// cannot be decoded after all. May be called from any thread.
QImage decodedPicture(const QByteArray &bytes, const QSize &most, bool isTurned = true);

/// The file of the picture as a PNG, in its own size where memory allows; empty where it cannot be
/// decoded after all.
QByteArray pngOf(const QByteArray &bytes, bool isTurned = true);

/// Extensions, without a dot, of what may be shown.
QStringList pictureFileTypes();

} // namespace quorvane
