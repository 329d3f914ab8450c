#include "richtext/textdocumentsink.h"

#include "richtext/attachmentstore.h"
#include "richtext/paragraphends.h"
#include "richtext/rtfformats.h"
#include "richtext/rtfpicturefile.h"
#include "richtext/rtftables.h"
#include "richtext/textproperties.h"

#include <QTextDocument>
#include <QTextFrame>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr std::size_t keptBlockLooks = 8;
constexpr qsizetype mostCells = 100'000; // The toolkit takes about a kilobyte for each.
constexpr qint64 mostMerging = 40'000'000; // Places looked at; each merge looks at a whole table.

} // namespace

TextDocumentSink::TextDocumentSink(QTextDocument &document)
    : m_document(document)
    , m_store(AttachmentStore::of(document))
    , m_cursor(&document)
    , m_mergingLeft(mostMerging)
{ }

void TextDocumentSink::begin(const RtfTables &tables)
{
    m_tables = &tables;
}

void TextDocumentSink::tablesChanged()
{
    m_formatIndex.clear();
    m_lastFormat.reset();
    m_blockLooks.clear();
}

void TextDocumentSink::text(QStringView text, const RtfParagraph &paragraph,
                            const RtfCharacter &character)
{
    splitParagraphs(
        text, [&](QStringView piece) { appendText(piece, character); },
        [&] { endParagraph(paragraph, character); });
}

void TextDocumentSink::appendText(QStringView text, const RtfCharacter &character)
{
    const std::size_t format = formatOf(character);
    if (m_pendingTabs > 0) {
        append(QString(m_pendingTabs, u'\t'), format);
        m_pendingTabs = 0;
    }
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

void TextDocumentSink::appendObject(QTextCharFormat format)
{
    format.setObjectType(attachmentObjectType);
    format.setProperty(AttachmentId, m_store.nextId());
    m_formats.push_back(format);
    append(QStringView(u"\ufffc"), m_formats.size() - 1);
}

void TextDocumentSink::attachment(const RtfAttachment &attachment, const RtfCharacter &character)
{
    QTextCharFormat format = m_formats[formatOf(character)];
    format.setProperty(AttachmentName, attachment.name);
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
    appendObject(format);
}

void TextDocumentSink::picture(const RtfPicture &picture, const RtfCharacter &character)
{
    const QString wanted =
        u"Image "_s + QString::number(++m_pictures) + u'.' + extensionOfPicture(picture);
    const QSize size = sizeOfPicture(picture);
    attachment({m_store.add(wanted, picture.bytes), size.width(), size.height()}, character);
}

void TextDocumentSink::paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    endParagraph(paragraph, character);
}

void TextDocumentSink::cellEnd(const RtfParagraph &paragraph, const RtfCharacter &character,
                               int nesting)
{
    if (++m_cells > mostCells) {
        ++m_pendingTabs;
        return;
    }
    closeTables(nesting);
    TextTable &table = tableAt(nesting);
    table.cell.push_back({takeParagraph(paragraph, character), nullptr});
    table.endCell();
}

void TextDocumentSink::rowEnd(const RtfRow &row, int nesting)
{
    if (m_cells > mostCells) {
        m_pendingTabs = 0;
        RtfParagraph paragraph;
        endParagraph(paragraph, m_lastCharacter);
        return;
    }
    closeTables(nesting);
    TextTable &table = tableAt(nesting);
    if (!m_text.isEmpty()) {
        table.cell.push_back({takeParagraph(RtfParagraph(), m_lastCharacter), nullptr});
    }
    table.endRow(row);
}

void TextDocumentSink::end(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    if (!m_text.isEmpty() && paragraph.nesting > 0) {
        endParagraph(paragraph, character);
    }
    closeTables(0);
    // What still speaks of a table's cell says nothing of the text behind the table.
    endParagraph(paragraph.nesting > 0 ? RtfParagraph() : paragraph, character);
    writeDocumentWords();
}

TextParagraph TextDocumentSink::takeParagraph(const RtfParagraph &paragraph,
                                              const RtfCharacter &character)
{
    // An empty paragraph looks like its end, any other like its first character.
    std::size_t first = m_runs.empty() ? formatOf(character) : m_runs.front().format;
    if (m_formats[first].hasProperty(QTextFormat::ObjectType)) {
        first = formatOf(character);
    }
    TextParagraph taken {std::move(m_text), std::move(m_runs), first, paragraph};
    m_text = QString();
    m_runs.clear();
    return taken;
}

void TextDocumentSink::endParagraph(const RtfParagraph &paragraph, const RtfCharacter &character)
{
    if (m_pendingTabs > 0) {
        appendText({}, character);
    }
    TextParagraph ended = takeParagraph(paragraph, character);
    const int nesting = m_cells > mostCells ? 0 : paragraph.nesting;
    closeTables(nesting);
    if (nesting > 0) {
        tableAt(nesting).cell.push_back({std::move(ended), nullptr});
        return;
    }
    write(ended, false);
    // The memory is good for the next one.
    m_text = std::move(ended.text);
    m_text.resize(0);
    m_runs = std::move(ended.runs);
    m_runs.clear();
}

TextTable &TextDocumentSink::tableAt(int nesting)
{
    while (m_openTables.size() < std::size_t(nesting)) {
        m_openTables.push_back(std::make_unique<TextTable>());
    }
    return *m_openTables[std::size_t(nesting) - 1];
}

/// Ends the tables that are deeper; the outermost one goes to the document.
void TextDocumentSink::closeTables(int nesting)
{
    while (m_openTables.size() > std::size_t(nesting)) {
        std::unique_ptr<TextTable> table = std::move(m_openTables.back());
        m_openTables.pop_back();
        table->close();
        if (table->rows.empty()) {
            continue;
        }
        if (m_openTables.empty()) {
            write(*table);
        } else {
            m_openTables.back()->cell.push_back({TextParagraph(), std::move(table)});
        }
    }
}

std::size_t TextDocumentSink::formatOf(const RtfCharacter &character)
{
    if (m_lastFormat && character == m_lastCharacter) {
        return *m_lastFormat;
    }
    const std::pair key(character, char16_t(0));
    auto found = m_formatIndex.constFind(key);
    if (found == m_formatIndex.constEnd()) {
        m_formats.push_back(charFormatOf(character, *m_tables));
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

const QTextBlockFormat &TextDocumentSink::blockFormat(const RtfParagraph &paragraph)
{
    for (const BlockLook &look : m_blockLooks) {
        if (look.paragraph == paragraph) {
            return look.format;
        }
    }
    if (m_blockLooks.size() < keptBlockLooks) {
        m_blockLooks.emplace_back();
        m_nextBlockLook = m_blockLooks.size() - 1;
    } else {
        m_nextBlockLook = (m_nextBlockLook + 1) % keptBlockLooks;
    }
    BlockLook &look = m_blockLooks[m_nextBlockLook];
    look = {paragraph, blockFormatOf(paragraph, *m_tables)};
    return look.format;
}

void TextDocumentSink::writeDocumentWords()
{
    const auto title = m_tables->info.constFind("title");
    if (title != m_tables->info.constEnd()) {
        m_document.setMetaInformation(QTextDocument::DocumentTitle, *title);
    }
    QVariantMap info;
    for (auto it = m_tables->info.constBegin(); it != m_tables->info.constEnd(); ++it) {
        if (it != title) {
            info.insert(QString::fromLatin1(it.key()), it.value());
        }
    }
    if (info.isEmpty() && m_tables->documentWords.isEmpty()) {
        return;
    }
    QTextFrameFormat format = m_document.rootFrame()->frameFormat();
    if (!m_tables->documentWords.isEmpty()) {
        format.setProperty(DocumentWords, m_tables->documentWords);
    }
    if (!info.isEmpty()) {
        format.setProperty(DocumentInfo, info);
    }
    m_document.rootFrame()->setFrameFormat(format);
}

void TextDocumentSink::write(const TextParagraph &paragraph, bool isInCell)
{
    QTextBlockFormat format = blockFormat(paragraph.look);
    const bool isItem = m_lists.enter(paragraph.look, *m_tables, format);
    const bool isFirstOfCell = isInCell && m_isFirst;
    enterBlock(format, m_formats[paragraph.endFormat], isFirstOfCell);
    if (isItem && m_lists.needsList()) {
        m_lists.createFor(m_cursor, paragraph.look, *m_tables);
    }
    qsizetype at = 0;
    for (const TextRun &run : paragraph.runs) {
        const bool isWhole = run.length == paragraph.text.size();
        m_cursor.insertText(isWhole ? paragraph.text : paragraph.text.sliced(at, run.length),
                            m_formats[run.format]);
        at += run.length;
    }
}

/// \a isFirstOfCell: the format of the block's characters is the one of the cell.
void TextDocumentSink::enterBlock(const QTextBlockFormat &format, const QTextCharFormat &charFormat,
                                  bool isFirstOfCell)
{
    if (!m_hasOpenBlock) {
        m_cursor.insertBlock(format, charFormat);
    } else {
        if (format.propertyCount() > 0) {
            m_cursor.setBlockFormat(format);
        }
        if (!isFirstOfCell && charFormat.propertyCount() > 0) {
            m_cursor.setBlockCharFormat(charFormat);
        }
    }
    m_hasOpenBlock = false;
    m_isFirst = false;
}

} // namespace quorvane
