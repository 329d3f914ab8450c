#include "richtext/rtfwriter.h"

#include "richtext/attachmentstore.h"
#include "richtext/rtfparagraph.h"
#include "richtext/rtfpicture.h"
#include "richtext/textproperties.h"

#include <QBuffer>
#include <QImage>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int deepestNesting = 32; // Of frames of any kind.
// No reader takes more than that.
constexpr int deepestTable = 8;
constexpr int mostColumns = 512;
constexpr char paragraphEnding[] = "\\\n";
constexpr char cellEnding[] = "\\cell\n";
constexpr char nestedCellEnding[] = "\\nestcell\n";

template <typename Value> Value &at(std::vector<Value> &values, int index)
{
    if (std::size_t(index) >= values.size()) {
        values.resize(std::size_t(index) + 1);
    }
    return values[std::size_t(index)];
}

QByteArray fileOf(const QVariant &resource)
{
    if (resource.userType() == QMetaType::QByteArray) {
        return resource.toByteArray();
    }
    QByteArray file;
    QBuffer buffer(&file);
    const auto image = resource.value<QImage>();
    return image.width() > 0 && buffer.open(QIODevice::WriteOnly) && image.save(&buffer, "PNG")
        ? file
        : QByteArray();
}

bool standsBeforeTable(const QTextBlock &block, const QTextFrame::iterator &next)
{
    return block.length() == 1 && block.blockFormat().hasProperty(BeforeTable)
        && qobject_cast<QTextTable *>(next.currentFrame());
}

} // namespace

RtfWriter::RtfWriter(const QTextDocument &document, Form form)
    : m_document(document)
    , m_form(form)
    , m_fallback(form == Form::Alone ? RtfEscaper::Fallback::QuestionMark
                                     : RtfEscaper::Fallback::None)
    , m_lists(m_fallback)
    , m_plainParagraph {rtfParagraphWords(QTextBlockFormat(), 0, m_tables) + "\n\n"}
{ }

QByteArray RtfWriter::write()
{
    m_body.reserve(qsizetype(m_document.characterCount()) * 3); // costs nothing where it is unused
    const QTextFrame &root = *m_document.rootFrame();
    writeFrame(root.begin(), root.end(), "");
    const QByteArray words = documentWords();
    m_body += '}';
    m_body.prepend(head() + words);
    return std::move(m_body);
}

QByteArray RtfWriter::head() const
{
    return "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709\n\\cocoatextscaling0\\cocoaplatform0"
        + m_tables.fontTable(m_fallback) + '\n' + m_tables.colourTables() + '\n' + m_lists.tables();
}

QByteArray RtfWriter::documentWords()
{
    const QTextFrameFormat format = m_document.rootFrame()->frameFormat();
    QVariantMap info = format.property(DocumentInfo).toMap();
    const QString title = m_document.metaInformation(QTextDocument::DocumentTitle);
    if (!title.isEmpty()) {
        info.insert(u"title"_s, title);
    }
    QByteArray out;
    for (auto entry = info.constBegin(); entry != info.constEnd(); ++entry) {
        out += (out.isEmpty() ? "{\\info{\\" : "{\\") + entry.key().toLatin1() + ' ';
        RtfEscaper(out, m_fallback).text(entry.value().toString());
        out += '}';
    }
    out += out.isEmpty() ? "" : "}\n";
    const QByteArray words = m_tables.withNumbers(format.property(DocumentWords).toByteArray());
    return words.isEmpty() ? out : out + words + '\n';
}

void RtfWriter::writeFrame(QTextFrame::iterator at, const QTextFrame::iterator &end,
                           const char *lastEnding)
{
    bool isBehindTable = false; // which would go on with the rows of the next one
    while (at != end) {
        QTextFrame *child = at.currentFrame();
        const QTextBlock block = at.currentBlock();
        ++at;
        if (child) {
            writeChild(*child);
        } else if (at == end) {
            writeBlock(block, lastEnding);
        } else if (isBehindTable || !standsBeforeTable(block, at)) {
            writeBlock(block, paragraphEnding);
        }
        isBehindTable = qobject_cast<const QTextTable *>(child);
    }
}

void RtfWriter::writeChild(QTextFrame &frame)
{
    const auto *table = qobject_cast<const QTextTable *>(&frame);
    const bool isReadable = !table || (m_depth < deepestTable && table->columns() <= mostColumns);
    if (m_nesting >= deepestNesting || !isReadable) {
        writeFlat(frame);
        return;
    }
    ++m_nesting;
    if (table) {
        writeTable(*table);
    } else {
        writeFrame(frame.begin(), frame.end(), paragraphEnding);
    }
    --m_nesting;
}

void RtfWriter::writeFlat(const QTextFrame &frame)
{
    const int end = frame.lastPosition();
    for (QTextBlock block = m_document.findBlock(frame.firstPosition());
         block.isValid() && block.position() <= end; block = block.next()) {
        writeBlock(block, paragraphEnding);
    }
}

void RtfWriter::writeTable(const QTextTable &table)
{
    ++m_depth;
    const auto spans = m_form == Form::Alone ? RtfRows::Spans::Wide : RtfRows::Spans::Merged;
    const qint64 roomOutside = m_room;
    const RtfRows rows(table, m_depth, m_room, m_tables, spans);
    const bool isNested = m_depth > 1;
    for (int row = 0; row < table.rows(); ++row) {
        const QByteArray definition = rows.definition(row);
        m_paragraph = nullptr; // Each row stands for itself.
        if (!isNested) {
            m_body += '\n' + definition;
        }
        writeRow(table, row, rows);
        const QByteArray last = row + 1 == table.rows() ? "\\lastrow" : "";
        if (isNested) {
            m_body +=
                "{\\*\\nesttableprops" + definition + last + "\\nestrow}{\\nonesttables\\par}\n";
        } else {
            m_body += last + "\\row\n";
        }
    }
    m_paragraph = nullptr;
    m_room = roomOutside;
    --m_depth;
}

void RtfWriter::writeRow(const QTextTable &table, int row, const RtfRows &rows)
{
    const char *ending = m_depth > 1 ? nestedCellEnding : cellEnding;
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        if (cell.row() == row && cell.column() == column) {
            m_room = rows.widthOf(cell);
            writeFrame(cell.begin(), cell.end(), ending);
        } else if (!rows.isSwallowed(row, column)) {
            switchParagraph(m_plainParagraph);
            m_body += ending;
        }
    }
}

void RtfWriter::writeBlock(const QTextBlock &block, const char *ending)
{
    if (!m_hasText && *ending == 0 && saysNothing(block)) {
        return; // The empty text has no paragraph either.
    }
    const Paragraph &paragraph = paragraphOf(block);
    switchParagraph(paragraph);
    const QTextBlock::iterator first = block.begin();
    if (paragraph.list) {
        writeListMarker(first, block, *paragraph.list);
    }
    if (first.atEnd()) {
        switchTo(styleOf(block).look);
    }
    for (QTextBlock::iterator it = first; !it.atEnd(); ++it) {
        writeFragment(it.fragment());
    }
    closeLink();
    m_body += ending;
}

void RtfWriter::writeListMarker(const QTextBlock::iterator &first, const QTextBlock &block,
                                const QTextList &list)
{
    const Style &style = first.atEnd() ? styleOf(block) : styleOf(first.fragment());
    if (style.link.isEmpty()) {
        switchTo(style.look);
    }
    m_lists.appendMarker(m_body, list);
}

void RtfWriter::writeFragment(const QTextFragment &fragment)
{
    const Style &style = styleOf(fragment);
    if (style.link != m_link) {
        closeLink();
        openLink(style.link);
    }
    switchTo(style.look);
    if (style.isText) {
        RtfEscaper(m_body, m_fallback).text(fragment.text());
    } else {
        writeObjects(fragment, fragment.charFormat());
    }
}

void RtfWriter::writeObjects(const QTextFragment &fragment, const QTextCharFormat &format)
{
    const bool isAttachment = format.objectType() == attachmentObjectType;
    const bool isStandIn = format.hasProperty(OriginalUnit);
    RtfEscaper escaper(m_body, m_fallback);
    for (const QChar c : fragment.text()) {
        const bool isObject = c == QChar::ObjectReplacementCharacter;
        if (isObject && isAttachment) {
            writeAttachment(format);
        } else if (isStandIn && c == QChar::ReplacementCharacter) {
            escaper.unit(char16_t(format.intProperty(OriginalUnit)));
        } else if (!isObject || !format.isImageFormat() || !writeImage(format)) {
            escaper.unit(c.unicode());
        }
    }
}

void RtfWriter::writeAttachment(const QTextCharFormat &format)
{
    const QString name = format.stringProperty(AttachmentName);
    const int width = format.intProperty(AttachmentWidth);
    const int height = format.intProperty(AttachmentHeight);
    m_attachmentNames.insert(name);
    if (m_form == Form::Alone) {
        const AttachmentStore *store = AttachmentStore::find(m_document);
        if (const FlatRtfdEntry *entry = store ? store->entry(name) : nullptr) {
            appendPicture(m_body, entry->bytes, width, height);
        }
        return;
    }
    m_body += "{{\\NeXTGraphic ";
    RtfEscaper(m_body, m_fallback).name(m_newNames.value(name, name));
    m_body += ' ';
    appendWord(m_body, "width", width);
    m_body += ' ';
    appendWord(m_body, "height", height);
    m_body += format.boolProperty(AttachmentNoOrient) ? " \\noorient " : " ";
    m_body += "\\appleattachmentpadding0 \\appleembedtype0 \\appleaqc\n}\xac}";
}

/// An image that belongs to the document itself.
bool RtfWriter::writeImage(const QTextCharFormat &format)
{
    const QTextImageFormat image = format.toImageFormat();
    const QByteArray file =
        fileOf(m_document.resource(QTextDocument::ImageResource, QUrl(image.name())));
    return !file.isEmpty()
        && appendPicture(m_body, file, int(twipsOf(image.width())), int(twipsOf(image.height())));
}

void RtfWriter::openLink(const QString &address)
{
    if (address.isEmpty()) {
        return;
    }
    m_link = address;
    m_lookBeforeLink = m_look;
    m_hadLookBeforeLink = m_hasLook;
    const bool isPlace = address.startsWith(u'#');
    m_body +=
        isPlace ? "{\\field{\\*\\fldinst{HYPERLINK \\\\l \"" : "{\\field{\\*\\fldinst{HYPERLINK \"";
    QString target = isPlace ? address.sliced(1) : address;
    target.replace(u'"', u"%22"_s);
    RtfEscaper(m_body, m_fallback).text(target);
    m_body += "\"}}{\\fldrslt ";
}

void RtfWriter::closeLink()
{
    if (m_link.isEmpty()) {
        return;
    }
    m_body += "}}";
    m_link.clear();
    m_look = m_lookBeforeLink; // The look of the group has ended with it.
    m_hasLook = m_hadLookBeforeLink;
}

void RtfWriter::switchParagraph(const Paragraph &paragraph)
{
    m_hasText = true;
    const bool isSame = m_paragraph && m_paragraphDepth == m_depth
        && (m_paragraph == &paragraph || m_paragraph->words == paragraph.words);
    if (isSame) {
        return;
    }
    m_paragraph = &paragraph;
    m_paragraphDepth = m_depth;
    m_body += "\\pard";
    if (m_depth > 0) {
        m_body += "\\intbl";
        appendWord(m_body, "itap", m_depth);
    }
    m_body += paragraph.words;
}

void RtfWriter::switchTo(const RtfLook &look)
{
    if (m_hasLook && (m_look == &look || *m_look == look)) {
        return;
    }
    m_look->appendChange(m_body, look, !m_hasLook);
    m_look = &look;
    m_hasLook = true;
}

template <typename Piece> const RtfWriter::Style &RtfWriter::styleOf(const Piece &piece)
{
    std::unique_ptr<Style> &style = at(m_styles, piece.charFormatIndex());
    if (!style) {
        style = makeStyle(piece.charFormat());
    }
    return *style;
}

std::unique_ptr<RtfWriter::Style> RtfWriter::makeStyle(const QTextCharFormat &format)
{
    const auto dialect =
        m_form == Form::Alone ? RtfLook::Dialect::Common : RtfLook::Dialect::Platform;
    auto style = std::make_unique<Style>();
    style->look = RtfLook(format, m_tables, dialect);
    style->link = format.isAnchor() ? format.anchorHref() : QString();
    style->isText = !format.hasProperty(QTextFormat::ObjectType)
        && !format.hasProperty(OriginalUnit) && !format.isImageFormat();
    return style;
}

const RtfWriter::Paragraph &RtfWriter::paragraphOf(const QTextBlock &block)
{
    std::unique_ptr<Paragraph> &paragraph = at(m_paragraphs, block.blockFormatIndex());
    if (!paragraph) {
        QTextList *list = block.textList();
        const int indent = list ? RtfLists::indentOf(*list) : 0;
        paragraph = std::make_unique<Paragraph>(
            Paragraph {rtfParagraphWords(block.blockFormat(), indent, m_tables) + '\n', list});
        paragraph->words += (list ? m_lists.placeIn(*list) : QByteArray()) + '\n';
    }
    return *paragraph;
}

bool RtfWriter::saysNothing(const QTextBlock &block)
{
    return block.begin().atEnd() && paragraphOf(block).words == m_plainParagraph.words
        && styleOf(block).look.isEmpty();
}

} // namespace quorvane
