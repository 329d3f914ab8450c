#pragma once

#include <QImage>

class QByteArray;
class QFont;
class QString;
class QUrl;

namespace quorvane {

/// The body of what HTML says: what a body cannot hold is left out at once. Images that stand in
/// the HTML itself become pictures with their files; others are left out. Black text and white
/// ground are the author's defaults, not a wish: they are left out too, so that the text can be
/// read on a dark ground. Sizes that HTML gives relative to the text around become points, by \a
/// font.
QByteArray bodyOfHtml(const QString &html, const QFont &font);

/// The image that a data: address holds, scaled down where it is very large. A transparent pixel
/// for anything else: no image is fetched, neither from the network nor from a file.
QImage imageOf(const QUrl &name);

} // namespace quorvane
