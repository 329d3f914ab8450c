#pragma once

#include <QCache>
#include <QHash>
#include <QImage>
#include <QObject>
#include <QSizeF>
#include <QTextObjectInterface>

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
    /// Makes the document's layout draw attachments. It lasts as long as the document.
    static void registerFor(QTextDocument &document);

    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document, int position,
                    const QTextFormat &format) override;

private:
    explicit AttachmentObject(QTextDocument *document);

    /// Whether a picture is shown: there is one in the file, and the text tells its size.
    bool isPicture(const QTextDocument &document, const QTextFormat &format);
    /// The picture in the file of that name, nothing where it cannot be read after all.
    const QImage *picture(const QTextDocument &document, const QString &name);

    QCache<QString, QImage> m_pictures; // costs are kilobytes
    QHash<QString, bool> m_beginsAsPicture;
};

} // namespace quorvane
