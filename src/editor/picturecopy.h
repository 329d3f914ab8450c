#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>

namespace quorvane {

/// A picture as it was last shown, packed into a tenth of its size or less and unpacked within
/// the time that painting may take. It stands in for the picture itself, in its form, for the
/// moment in which that is decoded: it is not exact to the shade, and smaller than a large one.
struct PictureCopy
{
    QByteArray bytes;
    QSize size;
    QSize shown; ///< In which the picture was shown when this was made of it.

    /// May be called from any thread.
    static PictureCopy of(const QImage &image, const QSize &shown);

    /// No larger than \a most, and than the copy is. An empty one where there is no copy.
    QImage unpacked(const QSize &most) const;
};

/// The picture without a channel that says nothing: that all of it is opaque.
QImage withoutIdleAlpha(const QImage &image);

} // namespace quorvane
