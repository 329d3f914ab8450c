#pragma once

#include "editor/picturecache.h"

#include <QHash>
#include <QObject>
#include <QPalette>
#include <QSizeF>
#include <QTextObjectInterface>

#include <optional>

class QTextBlock;
class QTextDocument;
class QTextFormat;

namespace quorvane {

/// Whether the text tells how large the picture is to be shown; else the file is an icon.
bool hasPictureSize(const QTextFormat &format);

/// What an attachment takes up at most, in pixels, by its format alone.
QSizeF largestAttachmentSize(const QTextFormat &format, double dotsPerInch);

/// Of what the document is laid out for, in dots per inch.
double resolutionOf(const QTextDocument &document);

/// Draws the attachments of a document that is shown: the picture itself where the text tells its
/// size, an icon with name and size of the file otherwise. A picture is never wider than its
/// column; how large it is is known from the text, before anything of it is decoded.
class AttachmentObject final : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    /// Makes the document's layout draw attachments. It lasts as long as the document. The colours
    /// are those of the desktop where no others are given: with others it is drawn for paper, and
    /// nothing may come later.
    static void registerFor(QTextDocument &document,
                            const std::optional<QPalette> &palette = std::nullopt);
    /// The one that draws this document's attachments, or nullptr.
    static AttachmentObject *of(const QTextDocument &document);

    /// Whether a picture is shown: there is one in the file, and the text tells its size.
    bool isPicture(const QTextFormat &format);

    QSizeF intrinsicSize(QTextDocument *document, int position, const QTextFormat &format) override;
    void drawObject(QPainter *painter, const QRectF &rect, QTextDocument *document, int position,
                    const QTextFormat &format) override;

    /// Draws the picture of that format as far as it is decoded.
    void drawPicture(QPainter &painter, const QRectF &rect, const QTextFormat &format);

    /// Drops all that was decoded.
    void forgetPictures();

private:
    AttachmentObject(QTextDocument *document, std::optional<QPalette> palette);

    QPalette palette() const;
    void noteSeen(int position, const QPainter &painter);
    void prepareNeighbours();
    void prepareFrom(const QTextBlock &block, bool isForward);
    void drawIcon(QPainter &painter, const QRectF &rect, const QTextFormat &format);

    QTextDocument &m_document; // its parent
    std::optional<QPalette> m_palette;
    PictureCache m_pictures {this};
    QHash<QString, bool> m_canBeShown;

    struct Seen
    {
        int first = -1; // positions; nothing was seen while they are negative
        int last = -1;
        double scale = 1; // of the text to pixels of the device

        bool operator==(const Seen &) const = default;
    };

    Seen m_seen; // of this page so far
    Seen m_preparedAround;
    int m_wasFirst = 0; // on the page before
    double m_resolution = 0; // of what is seen
};

} // namespace quorvane
