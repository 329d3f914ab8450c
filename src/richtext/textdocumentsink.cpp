#include "richtext/textdocumentsink.h"

#include "richtext/attachmentstore.h"
#include "richtext/fontnames.h"
#include "richtext/paragraphends.h"
#include "richtext/rtftables.h"
#include "richtext/textproperties.h"

#include <QFont>
#include <QTextBlockFormat>
#include <QTextDocument>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int defaultMilliPoints = 12000; // RTF 1.9.1: \fs24 where nothing is said.

std::optional<Qt::Alignment> alignmentOf(RtfAlignment alignment)
{
    switch (alignment) {
    case RtfAlignment::Natural:
        break;
    case RtfAlignment::Left:
        return Qt::AlignLeft;
    case RtfAlignment::Centre:
        return Qt::AlignHCenter;
    case RtfAlignment::Right:
        return Qt::AlignRight;
    case RtfAlignment::Justify:
        return Qt::AlignJustify;
    }
    return std::nullopt;
}

} // namespace

TextDocumentSink::TextDocumentSink(QTextDocument &document)
    : m_store(AttachmentStore::of(document))
    , m_cursor(&document)
{ }

void TextDocumentSink::begin(const RtfTables &tables)
{
    m_tables = &tables;
}

void TextDocumentSink::tablesChanged()
{
    m_formatIndex.clear();
    m_lastFormat.reset();
}

void TextDocumentSink::text(QStringView text, const RtfParagraph &paragraph,
                            const RtfCharacter &character)
{
    splitParagraphs(
        text, [&](QStringView piece) { appendText(piece, character); },
        [&] { flushParagraph(paragraph, character); });
}

void TextDocumentSink::appendText(QStringView text, const RtfCharacter &character)
{
    const std::size_t format = formatOf(character);
    const auto *internal = std::find_if(text.begin(), text.end(),
                                        [](QChar c) { return isDocumentInternal(c.unicode()); });
    while (internal != text.end()) {
        append(text.first(internal - text.begin()), format);
        append(QStringView(u"\ufffd"), standInFor(internal->unicode(), character));
        text = text.sliced(internal - text.begin() + 1);
        internal = std::find_if(text.begin(), text.end(),
                                [](QChar c) { return isDocumentInternal(c.unicode()); });
    }
    append(text, format);
}

void TextDocumentSink::append(QStringView text, std::size_t format)
{
    if (text.isEmpty()) {
        return;
    }
    m_text.append(text);
    if (!m_runs.empty() && m_runs.back().format == format) {
        m_runs.back().length += text.size();
    } else {
        m_runs.push_back({text.size(), format});
    }
}

void TextDocumentSink::attachment(const RtfAttachment &attachment, const RtfCharacter &character)
{
    QTextCharFormat format = m_formats[formatOf(character)];
    format.setObjectType(attachmentObjectType);
    format.setProperty(AttachmentName, attachment.name);
    format.setProperty(AttachmentId, m_store.nextId());
    if (attachment.width > 0) {
        format.setProperty(AttachmentWidth, attachment.width);
    }
    if (attachment.height > 0) {
        format.setProperty(AttachmentHeight, attachment.height);
    }
    if (attachment.noOrient) {
        format.setProperty(AttachmentNoOrient, true);
    }
    m_store.markPlaced(attachment.name);
    m_formats.push_back(format);
    append(QStringView(u"\ufffc"), m_formats.size() - 1);
}

void TextDocumentSink::paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    flushParagraph(paragraph, character);
}

void TextDocumentSink::end(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    flushParagraph(paragraph, character);
}

void TextDocumentSink::flushParagraph(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    const QTextBlockFormat &blockFormat = blockFormatOf(paragraph);
    // An empty paragraph looks like its end, any other like its first character.
    const std::size_t first = m_runs.empty() ? formatOf(character) : m_runs.front().format;
    QTextCharFormat blockCharFormat = m_formats[first];
    if (blockCharFormat.hasProperty(QTextFormat::ObjectType)) {
        blockCharFormat = m_formats[formatOf(character)];
    }
    if (m_isFirstBlock) {
        m_cursor.setBlockFormat(blockFormat);
        m_cursor.setBlockCharFormat(blockCharFormat);
        m_isFirstBlock = false;
    } else {
        m_cursor.insertBlock(blockFormat, blockCharFormat);
    }
    qsizetype at = 0;
    for (const Run &run : m_runs) {
        const bool isWhole = run.length == m_text.size();
        m_cursor.insertText(isWhole ? m_text : m_text.sliced(at, run.length),
                            m_formats[run.format]);
        at += run.length;
    }
    m_text.resize(0);
    m_runs.clear();
}

std::size_t TextDocumentSink::formatOf(const RtfCharacter &character)
{
    if (m_lastFormat && character == m_lastCharacter) {
        return *m_lastFormat;
    }
    const std::pair key(character, char16_t(0));
    auto found = m_formatIndex.constFind(key);
    if (found == m_formatIndex.constEnd()) {
        m_formats.push_back(makeFormat(character));
        found = m_formatIndex.insert(key, m_formats.size() - 1);
    }
    m_lastCharacter = character;
    m_lastFormat = *found;
    return *found;
}

std::size_t TextDocumentSink::standInFor(char16_t unit, const RtfCharacter &character)
{
    const std::pair key(character, unit);
    const auto found = m_formatIndex.constFind(key);
    if (found != m_formatIndex.constEnd()) {
        return *found;
    }
    QTextCharFormat format = m_formats[formatOf(character)];
    format.setProperty(OriginalUnit, int(unit));
    m_formats.push_back(format);
    m_formatIndex.insert(key, m_formats.size() - 1);
    return m_formats.size() - 1;
}

QTextCharFormat TextDocumentSink::makeFormat(const RtfCharacter &character) const
{
    QTextCharFormat format;
    if (const std::optional<RtfFont> font = m_tables->font(character.font);
        font && !font->name.isEmpty()) {
        format.setFontFamilies({familyOfFontName(font->name)});
        if (!fontNameIsPlain(font->name)) {
            format.setProperty(FontName, font->name);
        }
    }
    if (character.milliPoints > 0) {
        format.setFontPointSize(character.milliPoints / 1000.0);
    } else if (m_tables->defaultFont) {
        format.setFontPointSize(defaultMilliPoints / 1000.0);
    }
    if (character.bold) {
        format.setFontWeight(QFont::Bold);
    }
    if (character.italic) {
        format.setFontItalic(true);
    }
    if (character.underline) {
        format.setFontUnderline(true);
    }
    if (const std::optional<QRgb> colour = m_tables->colour(character.colour)) {
        format.setForeground(QColor::fromRgba(*colour));
    }
    return format;
}

const QTextBlockFormat &TextDocumentSink::blockFormatOf(const RtfParagraph &paragraph)
{
    if (paragraph == m_lastParagraph) {
        return m_lastBlockFormat;
    }
    m_lastParagraph = paragraph;
    m_lastBlockFormat = QTextBlockFormat();
    if (const std::optional<Qt::Alignment> alignment = alignmentOf(paragraph.alignment)) {
        m_lastBlockFormat.setAlignment(*alignment);
    }
    if (!paragraph.words.isEmpty() && paragraph.words != defaultTabWords) {
        m_lastBlockFormat.setProperty(ParagraphWords, paragraph.words);
    }
    return m_lastBlockFormat;
}

} // namespace quorvane
