#include "richtext/rtftokenizer.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quorvane {

namespace {

constexpr bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

constexpr bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

constexpr std::array<bool, 256> makeTextBytes()
{
    std::array<bool, 256> isText {};
    isText.fill(true);
    for (const char c : {'\\', '{', '}', '\r', '\n', '\0'}) {
        isText[std::size_t(c)] = false;
    }
    return isText;
}

constexpr std::array<bool, 256> textBytes = makeTextBytes();

} // namespace

RtfToken RtfTokenizer::next()
{
    while (m_at < m_rtf.size()) {
        switch (m_rtf[m_at]) {
        case '{':
            ++m_at;
            return {.kind = RtfToken::Kind::GroupStart, .text = {}};
        case '}':
            ++m_at;
            return {.kind = RtfToken::Kind::GroupEnd, .text = {}};
        case '\\':
            return control();
        case '\r':
        case '\n':
        case '\0': // Padding of clipboards and broken writers.
            ++m_at;
            break;
        default:
            return text();
        }
    }
    return {};
}

RtfToken RtfTokenizer::control()
{
    ++m_at;
    if (m_at >= m_rtf.size()) {
        return {};
    }
    const char c = m_rtf[m_at];
    if (isLetter(c)) {
        return word();
    }
    ++m_at;
    if (c == '\'') {
        return hex();
    }
    if (c == '\r' && m_at < m_rtf.size() && m_rtf[m_at] == '\n') {
        ++m_at;
    }
    return {.kind = RtfToken::Kind::Symbol, .text = {}, .byte = uchar(c == '\r' ? '\n' : c)};
}

RtfToken RtfTokenizer::word()
{
    const qsizetype start = m_at;
    while (m_at < m_rtf.size() && isLetter(m_rtf[m_at])) {
        ++m_at;
    }
    RtfToken token {.kind = RtfToken::Kind::Word, .text = m_rtf.sliced(start, m_at - start)};
    qsizetype digits = m_at;
    const bool negative = digits < m_rtf.size() && m_rtf[digits] == '-';
    digits += negative ? 1 : 0;
    if (digits < m_rtf.size() && isDigit(m_rtf[digits])) {
        qint64 value = 0;
        for (m_at = digits; m_at < m_rtf.size() && isDigit(m_rtf[m_at]); ++m_at) {
            value = std::min<qint64>(value * 10 + (m_rtf[m_at] - '0'), qint64(1) << 40);
        }
        token.hasParameter = true;
        token.parameter =
            int(std::clamp<qint64>(negative ? -value : value, std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::max()));
    }
    if (m_at < m_rtf.size() && m_rtf[m_at] == ' ') {
        ++m_at;
    }
    // A length beyond the end is a lie, and what follows may be text.
    if (token.parameter > 0 && token.text == "bin" && token.parameter <= m_rtf.size() - m_at) {
        token.kind = RtfToken::Kind::Binary;
        token.text = m_rtf.sliced(m_at, token.parameter);
        m_at += token.parameter;
    }
    return token;
}

RtfToken RtfTokenizer::hex()
{
    if (m_rtf.size() - m_at >= 2) {
        const int high = hexValue(m_rtf[m_at]);
        const int low = hexValue(m_rtf[m_at + 1]);
        if (high >= 0 && low >= 0) {
            m_at += 2;
            return {.kind = RtfToken::Kind::Hex, .text = {}, .byte = uchar(high * 16 + low)};
        }
    }
    return {.kind = RtfToken::Kind::Symbol, .text = {}, .byte = '\''};
}

RtfToken RtfTokenizer::text()
{
    const qsizetype start = m_at;
    while (m_at < m_rtf.size() && textBytes[uchar(m_rtf[m_at])]) {
        ++m_at;
    }
    return {.kind = RtfToken::Kind::Text, .text = m_rtf.sliced(start, m_at - start)};
}

} // namespace quorvane
