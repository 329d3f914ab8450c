#pragma once

#include <QImage>

#include <memory>

class QFont;
class QString;
class QTextDocument;
class QUrl;

namespace quorvane {

/// A document of what HTML says, as it would come back from a file: what a body cannot hold is left
/// out at once, and so are images. Black text and white ground are the author's defaults, not a
/// wish: they are left out too, so that the text can be read on a dark ground. Sizes that HTML
/// gives relative to the text around become points, by \a font.
std::unique_ptr<QTextDocument> pastedHtml(const QString &html, const QFont &font);

/// The image that a data: address holds, scaled down where it is very large. A transparent pixel
/// for anything else: no image is fetched, neither from the network nor from a file.
QImage imageOf(const QUrl &name);

} // namespace quorvane
