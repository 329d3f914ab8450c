#include "richtext/rtftokenizer.h"

#include <algorithm>
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

} // namespace

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
    const QByteArrayView rtf = m_rtf;
    const qsizetype start = m_at;
    qsizetype at = start;
    while (at < rtf.size() && isLetter(rtf[at])) {
        ++at;
    }
    RtfToken token {.kind = RtfToken::Kind::Word, .text = rtf.sliced(start, at - start)};
    const bool negative = at < rtf.size() && rtf[at] == '-';
    qsizetype digits = at + (negative ? 1 : 0);
    if (digits < rtf.size() && isDigit(rtf[digits])) {
        qint64 value = 0;
        for (; digits < rtf.size() && isDigit(rtf[digits]); ++digits) {
            value = std::min<qint64>(value * 10 + (rtf[digits] - '0'), qint64(1) << 40);
        }
        at = digits;
        token.hasParameter = true;
        token.parameter =
            int(std::clamp<qint64>(negative ? -value : value, std::numeric_limits<int>::min(),
                                   std::numeric_limits<int>::max()));
    }
    if (at < rtf.size() && rtf[at] == ' ') {
        ++at;
    }
    // A length beyond the end is a lie, and what follows may be text.
    if (token.parameter > 0 && token.text.size() == 3 && token.text == "bin"
        && token.parameter <= rtf.size() - at) {
        token.kind = RtfToken::Kind::Binary;
        token.text = rtf.sliced(at, token.parameter);
        at += token.parameter;
    }
    m_at = at;
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

} // namespace quorvane
