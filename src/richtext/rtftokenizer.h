#pragma once

#include <QByteArrayView>

#include <array>

namespace quorvane {

/// The value of a hexadecimal digit, or -1.
constexpr int hexValue(char c)
{
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// The bytes that stand for themselves.
constexpr std::array<bool, 256> rtfTextBytes = [] {
    std::array<bool, 256> isText {};
    isText.fill(true);
    for (const char c : {'\\', '{', '}', '\r', '\n', '\0'}) {
        isText[std::size_t(c)] = false;
    }
    return isText;
}();

/// One piece of RTF. Its views point into the bytes that the tokenizer was given.
struct RtfToken
{
    enum class Kind { End, GroupStart, GroupEnd, Word, Symbol, Hex, Text, Binary };

    Kind kind = Kind::End;
    QByteArrayView text; ///< Word: its letters. Text: bytes of text, line ends left out.
                         ///< Binary: the bytes behind \\bin.
    uchar byte = 0; ///< Symbol: the character behind the backslash. Hex: the value.
    bool isAscii = false; ///< Text: all of it.
    bool hasParameter = false;
    int parameter = 0; ///< Word: the number behind it, brought to the nearest one that fits.
};

/// Cuts RTF 1.9.1 into tokens. Each byte is looked at once; nothing is copied.
class RtfTokenizer final
{
public:
    explicit RtfTokenizer(QByteArrayView rtf)
        : m_rtf(rtf)
    { }

    // Inline, for a token is often but a few bytes.
    RtfToken next()
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

    qsizetype position() const { return m_at; } ///< Behind the last token.

    void setPosition(qsizetype position) { m_at = position; }

private:
    RtfToken text()
    {
        const qsizetype start = m_at;
        qsizetype end = start;
        uchar all = 0;
        while (end < m_rtf.size() && rtfTextBytes[uchar(m_rtf[end])]) {
            all |= uchar(m_rtf[end++]);
        }
        m_at = end;
        return {.kind = RtfToken::Kind::Text,
                .text = m_rtf.sliced(start, end - start),
                .isAscii = all < 0x80};
    }

    RtfToken control();
    RtfToken word();
    RtfToken hex();

    QByteArrayView m_rtf;
    qsizetype m_at = 0;
};

} // namespace quorvane
