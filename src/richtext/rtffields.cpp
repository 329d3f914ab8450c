#include "richtext/rtffields.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int largestPoints = 1000;

constexpr QLatin1StringView symbolFonts[] = {"Symbol"_L1,       "Wingdings"_L1, "Webdings"_L1,
                                             "ZapfDingbats"_L1, "Marlett"_L1,   "MT Extra"_L1};

/// Takes the next word off the front: what stands in quotation marks is one.
QString takeWord(QStringView &text)
{
    text = text.trimmed();
    if (text.startsWith(u'"')) {
        const qsizetype end = text.indexOf(u'"', 1);
        const QStringView word = end < 0 ? text.sliced(1) : text.sliced(1, end - 1);
        text = end < 0 ? QStringView() : text.sliced(end + 1);
        return word.toString();
    }
    qsizetype end = 0;
    while (end < text.size() && !text[end].isSpace()) {
        ++end;
    }
    const QStringView word = text.first(end);
    text = text.sliced(end);
    return word.toString();
}

} // namespace

QString addressOfHyperlink(const QString &instruction)
{
    QStringView rest(instruction);
    if (takeWord(rest).compare("HYPERLINK"_L1, Qt::CaseInsensitive) != 0) {
        return {};
    }
    QString address;
    QString place;
    while (!(rest = rest.trimmed()).isEmpty()) {
        const bool isSwitch = rest.startsWith(u'\\');
        const QString word = takeWord(rest);
        if (!isSwitch) {
            address = address.isEmpty() ? word : address;
        } else if (word == "\\l"_L1) {
            place = takeWord(rest);
        } else if (word == "\\o"_L1 || word == "\\t"_L1) {
            takeWord(rest); // What it says when it is pointed at, and the window that it opens in.
        }
    }
    return place.isEmpty() ? address : address + u'#' + place;
}

std::optional<RtfSymbolField> symbolFieldOf(const QString &instruction)
{
    QStringView rest(instruction);
    if (takeWord(rest).compare("SYMBOL"_L1, Qt::CaseInsensitive) != 0) {
        return std::nullopt;
    }
    RtfSymbolField symbol;
    bool isNumber = false;
    const QString code = takeWord(rest);
    const bool isHex = code.startsWith("0x"_L1, Qt::CaseInsensitive);
    symbol.code = isHex ? code.sliced(2).toInt(&isNumber, 16) : code.toInt(&isNumber);
    if (!isNumber || symbol.code < ' ' || symbol.code > 0x10ffff) {
        return std::nullopt;
    }
    while (!(rest = rest.trimmed()).isEmpty()) {
        const QString word = takeWord(rest);
        if (word == "\\u"_L1) {
            symbol.isUnicode = true;
        } else if (word == "\\f"_L1) {
            symbol.font = takeWord(rest);
        } else if (word == "\\s"_L1) {
            symbol.points = std::clamp(takeWord(rest).toInt(), 0, largestPoints);
        }
    }
    return symbol;
}

bool isSymbolFont(const QString &name)
{
    return std::any_of(std::begin(symbolFonts), std::end(symbolFonts), [&](QLatin1StringView font) {
        return name.startsWith(font, Qt::CaseInsensitive);
    });
}

} // namespace quorvane
