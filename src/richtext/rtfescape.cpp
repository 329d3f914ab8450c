#include "richtext/rtfescape.h"

#include "richtext/rtfcodepage.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace quorvane {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";
constexpr qsizetype bytesPerLine = 64;

void appendNumber(QByteArray &out, qint64 number)
{
    std::array<char, 24> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out.append(digits.data(), end - digits.data());
}

void appendHexByte(QByteArray &out, int byte)
{
    const char escape[] = {'\\', '\'', hexDigits[byte >> 4], hexDigits[byte & 15]};
    out.append(escape, sizeof escape);
}

constexpr bool standsForItself(char16_t unit)
{
    return (unit >= u' ' && unit < 0x7f && unit != u'\\' && unit != u'{' && unit != u'}')
        || unit == u'\t';
}

} // namespace

void appendWord(QByteArray &out, const char *word, qint64 number)
{
    out.append('\\').append(word);
    appendNumber(out, number);
}

QByteArray rtfWord(const char *word, qint64 number)
{
    QByteArray out;
    appendWord(out, word, number);
    return out;
}

void appendHexLines(QByteArray &out, QByteArrayView bytes)
{
    const qsizetype lines = (bytes.size() + bytesPerLine - 1) / bytesPerLine;
    const qsizetype start = out.size();
    out.resize(start + bytes.size() * 2 + lines);
    char *to = out.data() + start;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (i % bytesPerLine == 0) {
            *to++ = '\n';
        }
        const auto byte = static_cast<unsigned char>(bytes[i]);
        *to++ = hexDigits[byte >> 4];
        *to++ = hexDigits[byte & 15];
    }
}

void RtfEscaper::text(QStringView text)
{
    const QChar *at = text.begin();
    while (at != text.end()) {
        const QChar *stop =
            std::find_if_not(at, text.end(), [](QChar c) { return standsForItself(c.unicode()); });
        if (stop != at) {
            m_isInUnicode = false;
            const qsizetype start = m_out.size();
            m_out.resize(start + (stop - at));
            std::transform(at, stop, m_out.data() + start,
                           [](QChar c) { return static_cast<char>(c.unicode()); });
        }
        if (stop != text.end()) {
            unit(stop->unicode());
            ++stop;
        }
        at = stop;
    }
}

void RtfEscaper::unit(char16_t unit)
{
    if (standsForItself(unit)) {
        m_isInUnicode = false;
        m_out.append(static_cast<char>(unit));
    } else if (unit == u'\\' || unit == u'{' || unit == u'}') {
        m_isInUnicode = false;
        m_out.append('\\').append(static_cast<char>(unit));
    } else if (unit == QChar::Nbsp) {
        plain("\\~");
    } else if (unit == u'\f') {
        plain("\\page ");
    } else if (unit == QChar::LineSeparator && m_fallback == Fallback::QuestionMark) {
        plain("\\line ");
    } else if (const int byte = unit < 0xa0 ? -1 : toWindowsLatin(unit); byte >= 0) {
        m_isInUnicode = false;
        appendHexByte(m_out, byte);
    } else {
        unicode(unit);
    }
}

void RtfEscaper::name(QStringView name)
{
    for (const QChar c : name) {
        if (c == u';') {
            m_isInUnicode = false;
            appendHexByte(m_out, ';');
        } else if (c.unicode() >= u' ' && c.unicode() < 0x7f) {
            unit(c.unicode());
        } else {
            unicode(c.unicode());
        }
    }
}

void RtfEscaper::unicode(char16_t unit)
{
    if (m_fallback == Fallback::QuestionMark) {
        appendWord(m_out, "u", qint16(unit));
        m_out.append('?');
        return;
    }
    if (!m_isInUnicode) {
        m_out.append("\\uc0");
        m_isInUnicode = true;
    }
    appendWord(m_out, "u", unit);
    m_out.append(' ');
}

void RtfEscaper::plain(const char *text)
{
    m_isInUnicode = false;
    m_out.append(text);
}

} // namespace quorvane
