#include "richtext/rtfcarriedwords.h"

#include "richtext/rtftables.h"

namespace quorvane {

namespace {

constexpr qsizetype longestWords = 512;

void append(QByteArray &words, QByteArrayView word, const QByteArray &number)
{
    if (words.size() + word.size() + number.size() < longestWords) {
        words.append('\\').append(word.data(), word.size()).append(number);
    }
}

constexpr bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

} // namespace

void appendCarriedWord(QByteArray &words, const RtfToken &token)
{
    append(words, token.text,
           token.hasParameter ? QByteArray::number(token.parameter) : QByteArray());
}

void appendCarriedColour(QByteArray &words, const RtfToken &token, const RtfTables &tables)
{
    const std::optional<QRgb> colour = tables.exactColour(token.parameter);
    append(words, token.text,
           colour ? '#' + QByteArray::number(*colour, 16).rightJustified(8, '0') : QByteArray("0"));
}

void removeCarriedWord(QByteArray &words, QByteArrayView word)
{
    for (qsizetype at = 0; at < words.size();) {
        const qsizetype end = words.indexOf('\\', at + 1);
        const qsizetype next = end < 0 ? words.size() : end;
        const qsizetype behind = at + 1 + word.size();
        const bool isSame = QByteArrayView(words).sliced(at + 1).startsWith(word)
            && (behind >= words.size() || !isLetter(words.at(behind)));
        if (isSame) {
            words.remove(at, next - at);
        } else {
            at = next;
        }
    }
}

} // namespace quorvane
