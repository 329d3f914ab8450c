#include "editor/pastedtext.h"

#include "editor/heightestimate.h"
#include "richtext/body.h"

#include <QBuffer>
#include <QImageReader>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>
#include <array>
#include <vector>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int largestExtent = static_cast<int>(tallestImage);

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

/// A body has room for attachments, but HTML's images are none.
void removeObjects(QTextCursor &cursor, const Run &run)
{
    for (qsizetype index = run.text.size() - 1; index >= 0; --index) {
        if (run.text.at(index) == QChar::ObjectReplacementCharacter) {
            cursor.setPosition(run.position + int(index));
            cursor.deleteChar();
        }
    }
}

void adapt(QTextCursor &cursor, QTextCharFormat format, const QFont &font)
{
    const bool black = isPlain(format, QTextFormat::ForegroundBrush, Qt::black);
    const bool white = isPlain(format, QTextFormat::BackgroundBrush, Qt::white);
    const bool isRelative = format.hasProperty(QTextFormat::FontSizeAdjustment);
    if (!black && !white && !isRelative) {
        return;
    }
    if (isRelative) {
        const int adjustment = format.intProperty(QTextFormat::FontSizeAdjustment);
        format.clearProperty(QTextFormat::FontSizeAdjustment);
        format.setFontPointSize(font.pointSizeF() * scaleOf(adjustment));
    }
    if (black) {
        format.clearForeground();
    }
    if (white) {
        format.clearBackground();
    }
    cursor.setCharFormat(format);
}

} // namespace

std::unique_ptr<QTextDocument> pastedHtml(const QString &html, const QFont &font)
{
    std::unique_ptr<QTextDocument> document = std::make_unique<ClosedDocument>();
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(font);
    document->setHtml(html);
    std::vector<Run> runs = runsOf(*document);
    QTextCursor cursor(document.get());
    cursor.beginEditBlock();
    for (auto run = runs.rbegin(); run != runs.rend(); ++run) { // from the end: places stay true
        cursor.setPosition(run->position);
        cursor.setPosition(run->position + int(run->text.size()), QTextCursor::KeepAnchor);
        adapt(cursor, run->format, font);
        removeObjects(cursor, *run);
    }
    cursor.endEditBlock();
    const QByteArray body = bodyFromDocument(*document);
    auto kept = std::make_unique<QTextDocument>();
    kept->setUndoRedoEnabled(false);
    kept->setDefaultFont(font);
    readBody(body, *kept);
    return kept;
}

QImage imageOf(const QUrl &name)
{
    QImage nothing(1, 1, QImage::Format_ARGB32);
    nothing.fill(Qt::transparent);
    const QByteArray address = name.toEncoded();
    const qsizetype comma = address.indexOf(',');
    if (!isData(name) || comma < 0) {
        return nothing;
    }
    const bool isBase64 = address.first(comma).endsWith(";base64");
    QByteArray bytes = QByteArray::fromPercentEncoding(address.sliced(comma + 1));
    if (isBase64) {
        bytes = QByteArray::fromBase64(bytes);
    }
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
