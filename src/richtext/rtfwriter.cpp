#include "richtext/rtfwriter.h"

#include "richtext/fontnames.h"
#include "richtext/rtfcodepage.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QFont>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int whiteNumber = 1; // The table always has white at this place.
constexpr int firstFreeColour = 2;

void appendHex(QByteArray &out, int byte)
{
    constexpr char digits[] = "0123456789abcdef";
    out.append("\\'").append(digits[byte >> 4]).append(digits[byte & 15]);
}

/// Writes text in the dialect: bytes of Windows-1252 as \'hh, all else as \u without a fallback.
class TextEscaper final
{
public:
    explicit TextEscaper(QByteArray &out)
        : m_out(out)
    { }

    void text(QStringView text)
    {
        for (const QChar c : text) {
            unit(c.unicode());
        }
    }

    void unit(char16_t unit)
    {
        if (unit < 0x80) {
            ascii(char(unit));
        } else if (unit == QChar::Nbsp) {
            plain("\\~");
        } else if (const int byte = unit < 0xa0 ? -1 : toWindowsLatin(unit); byte >= 0) {
            m_isInUnicode = false;
            appendHex(m_out, byte);
        } else {
            unicode(unit);
        }
    }

    /// A name, where only letters and \u are sure to be understood.
    void name(QStringView name)
    {
        for (const QChar c : name) {
            if (c.unicode() >= u' ' && c.unicode() < 0x7f) {
                unit(c.unicode());
            } else {
                unicode(c.unicode());
            }
        }
    }

private:
    void unicode(char16_t unit)
    {
        if (!m_isInUnicode) {
            m_out.append("\\uc0");
            m_isInUnicode = true;
        }
        m_out.append("\\u").append(QByteArray::number(unit)).append(' ');
    }

    void plain(const char *text)
    {
        m_isInUnicode = false;
        m_out.append(text);
    }

    void ascii(char c)
    {
        if (c == '\\' || c == '{' || c == '}') {
            m_isInUnicode = false;
            m_out.append('\\').append(c);
        } else if (c == '\f') {
            plain("\\page ");
        } else if ((c >= ' ' && c < 0x7f) || c == '\t') {
            m_isInUnicode = false;
            m_out.append(c);
        } else {
            unicode(uchar(c));
        }
    }

    QByteArray &m_out;
    bool m_isInUnicode = false;
};

QByteArray fontEntry(qsizetype number, const QString &name)
{
    QByteArray entry = "\\f" + QByteArray::number(number)
        + (name == "Helvetica"_L1 ? "\\fswiss" : "\\fnil") + "\\fcharset0 ";
    TextEscaper escaper(entry);
    for (const QChar c : name) {
        if (c == u';') {
            appendHex(entry, ';'); // It would end the entry.
        } else {
            escaper.name(QStringView(&c, 1));
        }
    }
    return entry + ';';
}

QByteArray channel(int byte)
{
    return "\\c" + QByteArray::number((byte * 100000 + 127) / 255);
}

QByteArray alignmentWords(const QTextBlockFormat &format)
{
    if (!format.hasProperty(QTextFormat::BlockAlignment)) {
        return "\\pardirnatural";
    }
    switch ((format.alignment() & Qt::AlignHorizontal_Mask) & ~Qt::AlignAbsolute) {
    case Qt::AlignRight:
        return "\\pardirnatural\\qr";
    case Qt::AlignHCenter:
        return "\\pardirnatural\\qc";
    case Qt::AlignJustify:
        return "\\pardirnatural\\qj";
    default:
        return "\\pardirnatural\\ql";
    }
}

int milliPointsOf(const QTextCharFormat &format)
{
    constexpr double largest = 10'000'000;
    double points = 0;
    if (format.hasProperty(QTextFormat::FontPointSize)) {
        points = format.fontPointSize();
    } else if (format.hasProperty(QTextFormat::FontPixelSize)) {
        points = format.intProperty(QTextFormat::FontPixelSize) * 0.75; // At 96 pixels an inch.
    }
    return points > 0 ? int(std::min(points * 1000 + 0.5, largest)) : 0;
}

QByteArray sizeWords(int milliPoints)
{
    QByteArray words = "\\fs" + QByteArray::number((milliPoints + 250) / 500);
    if (milliPoints % 500 != 0) {
        words += "\\fsmilli" + QByteArray::number(milliPoints);
    }
    return words;
}

} // namespace

QByteArray RtfWriter::write()
{
    for (QTextBlock block = m_document.begin(); block.isValid(); block = block.next()) {
        writeBlock(block, !block.next().isValid());
    }
    return head() + m_body + '}';
}

QByteArray RtfWriter::head() const
{
    QByteArray out = "{\\rtf1\\ansi\\ansicpg1252\\cocoartf2709\n"
                     "\\cocoatextscaling0\\cocoaplatform0{\\fonttbl";
    for (qsizetype i = 0; i < m_fontNames.size(); ++i) {
        out += fontEntry(i, m_fontNames.at(i));
    }
    out += "}\n{\\colortbl;\\red255\\green255\\blue255;";
    QByteArray expanded = "}\n{\\*\\expandedcolortbl;;";
    for (const QRgb colour : m_colours) {
        out += "\\red" + QByteArray::number(qRed(colour)) + "\\green"
            + QByteArray::number(qGreen(colour)) + "\\blue" + QByteArray::number(qBlue(colour))
            + ';';
        // The plain values have no colour space; this one is sRGB.
        expanded +=
            "\\cssrgb" + channel(qRed(colour)) + channel(qGreen(colour)) + channel(qBlue(colour));
        if (qAlpha(colour) < 255) {
            expanded += channel(qAlpha(colour));
        }
        expanded += ';';
    }
    return out + expanded + "}\n";
}

void RtfWriter::writeBlock(const QTextBlock &block, bool isLast)
{
    const QTextBlockFormat format = block.blockFormat();
    if (!block.begin().atEnd()) {
        switchParagraph(format);
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            writeFragment(it.fragment());
        }
    } else {
        const RtfCharacter look = lookOf(block.charFormatIndex(), block.charFormat());
        const bool isPlain = look == RtfCharacter()
            && !format.hasProperty(QTextFormat::BlockAlignment)
            && !format.hasProperty(ParagraphWords);
        if (isLast && !m_hasParagraph && isPlain) {
            return; // The empty text has no paragraph either.
        }
        switchParagraph(format);
        switchTo(look);
    }
    if (!isLast) {
        m_body += "\\\n";
    }
}

void RtfWriter::writeFragment(const QTextFragment &fragment)
{
    const QTextCharFormat format = fragment.charFormat();
    switchTo(lookOf(fragment.charFormatIndex(), format));
    const QString text = fragment.text();
    const bool isAttachment = format.objectType() == attachmentObjectType;
    const bool isStandIn = format.hasProperty(OriginalUnit);
    TextEscaper escaper(m_body);
    if (!isAttachment && !isStandIn) {
        escaper.text(text);
        return;
    }
    for (const QChar c : text) {
        if (isAttachment && c == QChar::ObjectReplacementCharacter) {
            writeAttachment(format);
        } else if (isStandIn && c == QChar::ReplacementCharacter) {
            escaper.unit(char16_t(format.intProperty(OriginalUnit)));
        } else {
            escaper.unit(c.unicode());
        }
    }
}

void RtfWriter::writeAttachment(const QTextCharFormat &format)
{
    const QString name = format.stringProperty(AttachmentName);
    m_attachmentNames.insert(name);
    m_body += "{{\\NeXTGraphic ";
    TextEscaper(m_body).name(name);
    m_body += " \\width" + QByteArray::number(format.intProperty(AttachmentWidth)) + " \\height"
        + QByteArray::number(format.intProperty(AttachmentHeight));
    m_body += format.boolProperty(AttachmentNoOrient) ? " \\noorient " : " ";
    m_body += "\\appleattachmentpadding0 \\appleembedtype0 \\appleaqc\n}\xac}";
}

void RtfWriter::switchParagraph(const QTextBlockFormat &format)
{
    const QByteArray carried = format.property(ParagraphWords).toByteArray();
    const QByteArray words = (carried.isEmpty() ? QByteArray(defaultTabWords) : carried)
        + alignmentWords(format) + "\\partightenfactor0";
    if (m_hasParagraph && words == m_paragraphWords) {
        return;
    }
    m_hasParagraph = true;
    m_paragraphWords = words;
    m_body += "\\pard" + words + "\n\n";
}

void RtfWriter::switchTo(const RtfCharacter &look)
{
    if (m_hasLook && look == m_look) {
        return;
    }
    QByteArray words;
    const bool losesFont = m_look.font >= 0 && look.font < 0;
    if (losesFont || (m_look.milliPoints > 0 && look.milliPoints == 0)) {
        words += "\\plain";
        m_look = RtfCharacter();
    }
    if (look.font != m_look.font) {
        if (!m_body.endsWith('\n')) {
            m_body += '\n';
        }
        words += "\\f" + QByteArray::number(look.font);
    }
    if (look.italic != m_look.italic) {
        words += look.italic ? "\\i" : "\\i0";
    }
    if (look.bold != m_look.bold) {
        words += look.bold ? "\\b" : "\\b0";
    }
    if (look.milliPoints != m_look.milliPoints) {
        words += sizeWords(look.milliPoints);
    }
    if (look.underline != m_look.underline) {
        words += look.underline ? "\\ul" : "\\ulnone";
    }
    if (!words.isEmpty()) {
        words += ' ';
    }
    if (!m_hasLook || look.colour != m_look.colour) {
        words += "\\cf" + QByteArray::number(look.colour) + ' ';
    }
    m_body += words;
    m_look = look;
    m_hasLook = true;
}

RtfCharacter RtfWriter::lookOf(int index, const QTextCharFormat &format)
{
    const auto known = m_looks.constFind(index);
    if (known != m_looks.constEnd()) {
        return *known;
    }
    RtfCharacter look;
    look.font = fontNumber(format);
    look.milliPoints = milliPointsOf(format);
    look.colour = colourNumber(format);
    look.bold = format.fontWeight() >= QFont::DemiBold;
    look.italic = format.fontItalic();
    look.underline = format.fontUnderline();
    m_looks.insert(index, look);
    return look;
}

int RtfWriter::fontNumber(const QTextCharFormat &format)
{
    const QString family = format.fontFamilies().toStringList().value(0);
    if (family.isEmpty()) {
        return -1;
    }
    const QString told = format.stringProperty(FontName);
    const QString name =
        !told.isEmpty() && familyOfFontName(told) == family ? told : fontNameOfFamily(family);
    const auto known = m_fontNumbers.constFind(name);
    if (known != m_fontNumbers.constEnd()) {
        return *known;
    }
    const int number = int(m_fontNames.size());
    m_fontNames.append(name);
    m_fontNumbers.insert(name, number);
    return number;
}

int RtfWriter::colourNumber(const QTextCharFormat &format)
{
    const QBrush brush = format.foreground();
    if (brush.style() == Qt::NoBrush || brush.color() == QColor(Qt::black)) {
        return 0;
    }
    const QRgb colour = brush.color().rgba();
    if (colour == qRgb(255, 255, 255)) {
        return whiteNumber;
    }
    const auto known = m_colourNumbers.constFind(colour);
    if (known != m_colourNumbers.constEnd()) {
        return *known;
    }
    const int number = firstFreeColour + int(m_colours.size());
    m_colours.push_back(colour);
    m_colourNumbers.insert(colour, number);
    return number;
}

} // namespace quorvane
