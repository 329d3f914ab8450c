#include "richtext/rtfwriter.h"

#include "richtext/attachmentstore.h"
#include "richtext/rtfparagraph.h"
#include "richtext/rtfpicture.h"
#include "richtext/rtfrows.h"
#include "richtext/textproperties.h"

#include <QBuffer>
#include <QImage>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>
#include <QTextTable>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int deepestNesting = 32;
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
{ }

QByteArray RtfWriter::write()
{
    m_body.reserve(qsizetype(m_document.characterCount()) + m_document.characterCount() / 4);
    const QTextFrame &root = *m_document.rootFrame();
    writeFrame(root.begin(), root.end(), "");
    const QByteArray words = documentWords();
    return head() + words + m_body + '}';
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
    bool isFirst = true;
    while (at != end) {
        QTextFrame *child = at.currentFrame();
        const QTextBlock block = at.currentBlock();
        ++at;
        if (child) {
            writeChild(*child);
        } else if (at == end) {
            writeBlock(block, lastEnding);
        } else if (!isFirst || !standsBeforeTable(block, at)) {
            writeBlock(block, paragraphEnding);
        }
        isFirst = false;
    }
}

void RtfWriter::writeChild(QTextFrame &frame)
{
    if (m_nesting >= deepestNesting) {
        writeFlat(frame);
        return;
    }
    ++m_nesting;
    if (const auto *table = qobject_cast<const QTextTable *>(&frame)) {
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
    const RtfRows rows(table, m_depth, m_tables);
    const bool isNested = m_depth > 1;
    for (int row = 0; row < table.rows(); ++row) {
        const QByteArray definition = rows.definition(row);
        m_hasParagraph = false; // Each row stands for itself.
        if (!isNested) {
            m_body += '\n' + definition;
        }
        writeRow(table, row);
        const QByteArray last = row + 1 == table.rows() ? "\\lastrow" : "";
        if (isNested) {
            m_body +=
                "{\\*\\nesttableprops" + definition + last + "\\nestrow}{\\nonesttables\\par}\n";
        } else {
            m_body += last + "\\row\n";
        }
    }
    m_hasParagraph = false;
    --m_depth;
}

void RtfWriter::writeRow(const QTextTable &table, int row)
{
    const char *ending = m_depth > 1 ? nestedCellEnding : cellEnding;
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        if (cell.row() == row && cell.column() == column) {
            writeFrame(cell.begin(), cell.end(), ending);
        } else {
            switchParagraph(defaultTabWords, QByteArray());
            m_body += ending;
        }
    }
}

void RtfWriter::writeBlock(const QTextBlock &block, const char *ending)
{
    if (!m_hasParagraph && *ending == 0 && saysNothing(block)) {
        return; // The empty text has no paragraph either.
    }
    const Paragraph &paragraph = paragraphOf(block);
    if (paragraph.list) {
        const RtfLists::Item item = m_lists.nextItem(*paragraph.list);
        switchParagraph(paragraph.words, item.place);
        writeListMarker(block, item.marker);
    } else {
        switchParagraph(paragraph.words, QByteArray());
    }
    if (block.begin().atEnd()) {
        switchTo(styleOf(block.charFormatIndex(), block.charFormat()).look);
    }
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        writeFragment(it.fragment());
    }
    closeLink();
    m_body += ending;
}

void RtfWriter::writeListMarker(const QTextBlock &block, const QByteArray &marker)
{
    const QTextBlock::iterator first = block.begin();
    const Style &style = first.atEnd()
        ? styleOf(block.charFormatIndex(), block.charFormat())
        : styleOf(first.fragment().charFormatIndex(), first.fragment().charFormat());
    if (style.link.isEmpty()) {
        switchTo(style.look);
    }
    m_body += marker;
}

void RtfWriter::writeFragment(const QTextFragment &fragment)
{
    const Style &style = styleOf(fragment.charFormatIndex(), fragment.charFormat());
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
    target.replace(u'\\', u"\\\\"_s).replace(u'"', u"%22"_s);
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

void RtfWriter::switchParagraph(const QByteArray &words, const QByteArray &listPlace)
{
    QByteArray all = "\\pard";
    if (m_depth > 0) {
        all += "\\intbl" + rtfWord("itap", m_depth);
    }
    all += words + '\n' + listPlace + '\n';
    if (m_hasParagraph && all == m_paragraph) {
        return;
    }
    m_hasParagraph = true;
    m_body += all;
    m_paragraph = std::move(all);
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

const RtfWriter::Style &RtfWriter::styleOf(int index, const QTextCharFormat &format)
{
    std::unique_ptr<Style> &style = at(m_styles, index);
    if (!style) {
        const bool isText = !format.hasProperty(QTextFormat::ObjectType)
            && !format.hasProperty(OriginalUnit) && !format.isImageFormat();
        style = std::make_unique<Style>(Style {RtfLook(format, m_tables),
                                               format.isAnchor() ? format.anchorHref() : QString(),
                                               isText});
    }
    return *style;
}

const RtfWriter::Paragraph &RtfWriter::paragraphOf(const QTextBlock &block)
{
    std::optional<Paragraph> &paragraph = at(m_paragraphs, block.blockFormatIndex());
    if (!paragraph) {
        QTextList *list = block.textList();
        const int indent = list ? RtfLists::indentOf(*list) : 0;
        paragraph = {rtfParagraphWords(block.blockFormat(), indent, m_tables), list};
    }
    return *paragraph;
}

bool RtfWriter::saysNothing(const QTextBlock &block)
{
    const Paragraph &paragraph = paragraphOf(block);
    return block.begin().atEnd() && !paragraph.list
        && paragraph.words == rtfParagraphWords(QTextBlockFormat(), 0, m_tables)
        && styleOf(block.charFormatIndex(), block.charFormat()).look.isEmpty();
}

} // namespace quorvane
