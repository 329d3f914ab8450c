#pragma once

#include <QByteArrayView>

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

/// One piece of RTF. Its views point into the bytes that the tokenizer was given.
struct RtfToken
{
    enum class Kind { End, GroupStart, GroupEnd, Word, Symbol, Hex, Text, Binary };

    Kind kind = Kind::End;
    QByteArrayView text; ///< Word: its letters. Text: bytes of text, line ends left out.
                         ///< Binary: the bytes behind \\bin.
    uchar byte = 0; ///< Symbol: the character behind the backslash. Hex: the value.
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

    RtfToken next();

    qsizetype position() const { return m_at; } ///< Behind the last token.

    void setPosition(qsizetype position) { m_at = position; }

private:
    RtfToken control();
    RtfToken word();
    RtfToken hex();
    RtfToken text();

    QByteArrayView m_rtf;
    qsizetype m_at = 0;
};

} // namespace quorvane
