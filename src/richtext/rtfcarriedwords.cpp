#include "richtext/rtfcarriedwords.h"

#include "richtext/rtftables.h"

#include <algorithm>
#include <utility>

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

/// Where the words of the border below a paragraph stand: up to those of another border, or of
/// none.
std::pair<qsizetype, qsizetype> borderBelow(const QByteArray &words)
{
    constexpr QByteArrayView name("\\brdrb");
    qsizetype at = words.indexOf(name);
    while (at >= 0 && at + name.size() < words.size() && isLetter(words.at(at + name.size()))) {
        at = words.indexOf(name, at + 1); // a longer word
    }
    if (at < 0) {
        return {0, 0};
    }
    constexpr QByteArrayView ofBorders[] = {"\\brdrs", "\\brdrw", "\\brdrcf", "\\brsp",   "\\brdrd",
                                            "\\brdrh", "\\brdrn", "\\brdrth", "\\brdrtri"};
    qsizetype end = at + name.size();
    const auto belongs = [&](QByteArrayView word) {
        return QByteArrayView(words).sliced(end).startsWith(word);
    };
    while (end < words.size() && std::any_of(std::begin(ofBorders), std::end(ofBorders), belongs)) {
        const qsizetype next = words.indexOf('\\', end + 1);
        end = next < 0 ? words.size() : next;
    }
    return {at, end};
}

} // namespace

bool hasBorderBelow(const QByteArray &words)
{
    const auto [from, to] = borderBelow(words);
    const QByteArrayView border = QByteArrayView(words).sliced(from, to - from);
    return to > from && border.indexOf("\\brdrn") < 0;
}

void removeBorderBelow(QByteArray &words)
{
    const auto [from, to] = borderBelow(words);
    words.remove(from, to - from);
}

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
