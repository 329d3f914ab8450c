#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QPalette>
#include <QSizeF>
#include <QTextObjectInterface>

#include <optional>

class QTextDocument;
class QTextFormat;

namespace quorvane {

/// What an attachment takes up at most, in pixels, by its format alone.
QSizeF largestAttachmentSize(const QTextFormat &format, double dotsPerInch);

/// Draws the attachments of a document that is shown: the picture itself where the text tells its
/// size, an icon with the name of the file otherwise.
class AttachmentObject final : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    /// Makes the document's layout draw attachments. It lasts as long as the document. The colours
    /// are those of the desktop where no others are given.
    static void registerFor(QTextDocument &document,
                            const std::optional<QPalette> &palette = std::nullopt);

    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document, int position,
                    const QTextFormat &format) override;

private:
    AttachmentObject(QTextDocument *document, std::optional<QPalette> palette);

    /// Whether a picture is shown: there is one in the file, and the text tells its size.
    bool isPicture(const QTextDocument &document, const QTextFormat &format);
    /// The picture in the file of that name, nothing where it cannot be read after all.
    const QImage *picture(const QTextDocument &document, const QString &name);

    std::optional<QPalette> m_palette;
    QCache<QString, QImage> m_pictures; // costs are kilobytes
    QHash<QString, bool> m_beginsAsPicture;
};

} // namespace quorvane
