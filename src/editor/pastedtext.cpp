#include "editor/pastedtext.h"

#include "editor/adaptivecolours.h"
#include "editor/heightestimate.h"
#include "editor/picturefile.h"
#include "editor/placedattachment.h"
#include "editor/tableshape.h"
#include "richtext/attachmentstore.h"
#include "richtext/body.h"

#include <QBuffer>
#include <QImageReader>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <QUrl>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int largestExtent = static_cast<int>(tallestImage);
constexpr double widestPicture = 700;
constexpr double widestMargin = 300;
constexpr double invisible = 1.2; // contrast

bool isData(const QUrl &url)
{
    return url.scheme().compare("data"_L1, Qt::CaseInsensitive) == 0;
}

/// While HTML is read, nothing that it names is looked for.
class ClosedDocument final : public QTextDocument
{
protected:
    QVariant loadResource(int type, const QUrl &name) override
    {
        return type == ImageResource ? QVariant(imageOf(name)) : QVariant(u" "_s);
    }
};

struct Run
{
    int position;
    QString text;
    QTextCharFormat format;
};

std::vector<Run> runsOf(const QTextDocument &document)
{
    std::vector<Run> runs;
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            const QTextFragment fragment = part.fragment();
            runs.push_back({fragment.position(), fragment.text(), fragment.charFormat()});
        }
    }
    return runs;
}

bool isPlain(const QTextCharFormat &format, QTextFormat::Property property, Qt::GlobalColor color)
{
    return format.hasProperty(property) && format.brushProperty(property).color() == QColor(color);
}

double scaleOf(int adjustment)
{
    constexpr std::array scales {0.7, 0.8, 1.0, 1.2, 1.5, 2.0, 2.4}; // as the toolkit draws them
    constexpr int unchanged = 2;
    return scales[static_cast<size_t>(
        std::clamp(adjustment + unchanged, 0, static_cast<int>(scales.size()) - 1))];
}

/// The bytes that a data: address holds.
QByteArray bytesOf(const QUrl &name)
{
    const QByteArray address = name.toEncoded();
    const qsizetype comma = address.indexOf(',');
    if (!isData(name) || comma < 0) {
        return {};
    }
    const bool isBase64 = address.first(comma).endsWith(";base64");
    const QByteArray bytes = QByteArray::fromPercentEncoding(address.sliced(comma + 1));
    return isBase64 ? QByteArray::fromBase64(bytes) : bytes;
}

/// As large as the HTML says, or as the picture itself where that is nothing.
QSizeF sizeOf(const QTextImageFormat &image, const QSizeF &natural)
{
    constexpr double largest = 4000;
    double width = image.width();
    double height = image.height();
    if (width <= 0 && height <= 0) {
        width = natural.width();
    }
    width = width > 0 ? width : height * natural.width() / natural.height();
    height = height > 0 ? height : width * natural.height() / natural.width();
    const QSizeF size(std::clamp(width, 1.0, largest), std::clamp(height, 1.0, largest));
    return size.width() <= widestPicture ? size
                                         : size.scaled(widestPicture, largest, Qt::KeepAspectRatio);
}

/// Makes the image an attachment where the HTML holds it; nothing is left of it otherwise.
void adoptImage(QTextCursor &cursor, const QTextImageFormat &image)
{
    const QByteArray bytes = bytesOf(QUrl(image.name()));
    const std::optional<PictureInfo> info = pictureInfo(bytes);
    cursor.deleteChar();
    const bool isSpacer = info && info->pixels.width() <= 2 && info->pixels.height() <= 2;
    if (!info || isSpacer) {
        return;
    }
    QTextDocument &document = *cursor.document();
    const QString name =
        AttachmentStore::of(document).add(u"Pasted Image."_s + info->ending, bytes);
    cursor.insertText(
        QString(QChar::ObjectReplacementCharacter),
        attachmentFormat(document, QTextCharFormat(), name, sizeOf(image, info->natural)));
}

void adoptImages(QTextCursor &cursor, const Run &run)
{
    for (qsizetype index = run.text.size() - 1; index >= 0; --index) {
        if (run.text.at(index) == QChar::ObjectReplacementCharacter) {
            cursor.setPosition(run.position + int(index));
            adoptImage(cursor, run.format.toImageFormat());
        }
    }
}

/// Pages hide text by its colour; here it would be there, and nobody knew.
bool isHidden(const QTextBlock &block, const QTextCharFormat &format)
{
    const QColor mark = format.background().color();
    const bool isMarked = format.hasProperty(QTextFormat::BackgroundBrush) && mark.alpha() > 0;
    const QColor ink = format.foreground().color();
    return format.hasProperty(QTextFormat::ForegroundBrush)
        && (ink.alpha() == 0
            || contrastOf(ink, isMarked ? mark : paperOf(block, Qt::white)) < invisible);
}

/// In the palette's colours, or on paper of its own in some that can be read there.
void reveal(QTextCharFormat &format, const QTextBlock &block)
{
    const QColor paper = paperOf(block, Qt::white);
    const QColor ink = format.foreground().color().rgb(); // which is no glass
    format.clearBackground();
    if (paper == QColor(Qt::white)) {
        format.clearForeground();
    } else {
        format.setForeground(readableInk(ink, paper));
    }
}

void adapt(QTextCursor &cursor, QTextCharFormat format, const QFont &font)
{
    const bool hidden = isHidden(cursor.block(), format);
    const bool black = isPlain(format, QTextFormat::ForegroundBrush, Qt::black);
    const bool white = isPlain(format, QTextFormat::BackgroundBrush, Qt::white);
    const bool isRelative = format.hasProperty(QTextFormat::FontSizeAdjustment);
    if (!hidden && !black && !white && !isRelative) {
        return;
    }
    if (isRelative) {
        const int adjustment = format.intProperty(QTextFormat::FontSizeAdjustment);
        format.clearProperty(QTextFormat::FontSizeAdjustment);
        format.setFontPointSize(font.pointSizeF() * scaleOf(adjustment));
    }
    if (hidden) {
        reveal(format, cursor.block());
    } else if (black) {
        format.clearForeground();
    }
    if (white) {
        format.clearBackground();
    }
    cursor.setCharFormat(format);
}

/// ... or by a place beside the page.
void moveIntoView(QTextCursor &cursor)
{
    const auto within = [](double margin) {
        return std::clamp(margin, 0.0, widestMargin);
    };
    QTextBlockFormat format = cursor.blockFormat();
    format.setLeftMargin(within(format.leftMargin()));
    format.setRightMargin(within(format.rightMargin()));
    format.setTextIndent(std::clamp(format.textIndent(), -format.leftMargin(), widestMargin));
    if (format != cursor.blockFormat()) {
        cursor.setBlockFormat(format);
    }
}

void moveIntoView(QTextDocument &document)
{
    QTextCursor cursor(&document);
    do {
        moveIntoView(cursor);
    } while (cursor.movePosition(QTextCursor::NextBlock));
}

/// Half of a character, or a mark of an end: no program takes it for text.
bool isNoText(const QString &text, qsizetype at)
{
    const QChar character = text.at(at);
    const bool isWhole =
        (at + 1 < text.size() && character.isHighSurrogate() && text.at(at + 1).isLowSurrogate())
        || (at > 0 && character.isLowSurrogate() && text.at(at - 1).isHighSurrogate());
    return character == QChar(u'\0') || (character.isSurrogate() && !isWhole);
}

void dropWhatIsNoText(QTextDocument &document)
{
    const QString text = document.toRawText();
    QTextCursor cursor(&document);
    for (qsizetype at = text.size() - 1; at >= 0; --at) {
        if (isNoText(text, at)) {
            cursor.setPosition(int(at));
            cursor.deleteChar();
            cursor.insertText(text.at(at).isSurrogate() ? QString(QChar::ReplacementCharacter)
                                                        : QString());
        }
    }
}

void dressTable(QTextTable &table)
{
    for (int row = 0; row < table.rows(); ++row) {
        for (int column = 0; column < table.columns(); ++column) {
            QTextTableCell cell = table.cellAt(row, column);
            if (cell.row() == row && cell.column() == column) {
                QTextTableCellFormat format = cell.format().toTableCellFormat();
                addUsualLook(format, table.format());
                cell.setFormat(format);
            }
        }
    }
}

/// A table of other tables arranges a page, and is to be seen no more than it was meant to be.
void dressTables(QTextFrame &frame)
{
    const QList<QTextFrame *> children = frame.childFrames();
    for (QTextFrame *child : children) {
        dressTables(*child);
    }
    auto *table = qobject_cast<QTextTable *>(&frame);
    if (table && children.isEmpty()) {
        dressTable(*table);
    }
}

} // namespace

QByteArray bodyOfHtml(const QString &html, const QFont &font)
{
    std::unique_ptr<QTextDocument> document = std::make_unique<ClosedDocument>();
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(font);
    document->setHtml(html);
    QTextCursor cursor(document.get());
    cursor.beginEditBlock();
    dropWhatIsNoText(*document);
    moveIntoView(*document);
    const std::vector<Run> runs = runsOf(*document);
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) { // from the end: places stay true
        cursor.setPosition(run->position);
        cursor.setPosition(run->position + int(run->text.size()), QTextCursor::KeepAnchor);
        adapt(cursor, run->format, font);
        adoptImages(cursor, *run);
    }
    dressTables(*document->rootFrame());
    cursor.endEditBlock();
    return bodyFromDocument(*document);
}

QImage imageOf(const QUrl &name)
{
    QImage nothing(1, 1, QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    QByteArray bytes = bytesOf(name);
    QBuffer buffer(&bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (size.width() > largestExtent || size.height() > largestExtent) {
        reader.setScaledSize(size.scaled(largestExtent, largestExtent, Qt::KeepAspectRatio));
    }
    const QImage image = reader.read();
    return image.width() > 0 ? image : nothing;
}

} // namespace quorvane
