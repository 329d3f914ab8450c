#include "richtext/listmarks.h"

#include "richtext/rtfformats.h"
#include "richtext/rtftables.h"
#include "richtext/textproperties.h"

#include <QTextBlock>
#include <QTextList>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int deepestLevel = 8;
constexpr int mostSearched = 500; // paragraphs above an item for the numbers of outer levels

QString alphabetic(int number)
{
    QString text;
    for (; number > 0; number = (number - 1) / 26) {
        text.prepend(QChar(u'a' + (number - 1) % 26));
    }
    return text;
}

QString roman(int number)
{
    constexpr std::pair<int, QLatin1StringView> digits[] = {
        {1000, "m"_L1}, {900, "cm"_L1}, {500, "d"_L1}, {400, "cd"_L1}, {100, "c"_L1},
        {90, "xc"_L1},  {50, "l"_L1},   {40, "xl"_L1}, {10, "x"_L1},   {9, "ix"_L1},
        {5, "v"_L1},    {4, "iv"_L1},   {1, "i"_L1}};
    if (number <= 0 || number > 4999) {
        return QString::number(number);
    }
    QString text;
    for (const auto &[value, digit] : digits) {
        for (; number >= value; number -= value) {
            text += digit;
        }
    }
    return text;
}

QString numberOf(const QTextList &list, const QTextBlock &item)
{
    const QTextListFormat format = list.format();
    return numberText(listKind(format), listStartOf(format) + list.itemNumber(item));
}

/// The number that counts above an item at a level further out.
QString outerNumber(const QTextBlock &item, int level)
{
    QTextBlock above = item.previous();
    for (int searched = 0; above.isValid() && searched < mostSearched; ++searched) {
        const QTextList *list = above.textList();
        if (list && list->format().indent() == level + 1) {
            return numberOf(*list, above);
        }
        above = above.previous();
    }
    return u"1"_s;
}

} // namespace

QTextListFormat::Style listKind(const QTextListFormat &format)
{
    return format.hasProperty(ListKind) ? QTextListFormat::Style(format.intProperty(ListKind))
                                        : format.style();
}

bool isNumbered(QTextListFormat::Style kind)
{
    return kind <= QTextListFormat::ListDecimal && kind >= QTextListFormat::ListUpperRoman;
}

void setListKind(QTextListFormat &format, QTextListFormat::Style kind)
{
    const bool isOwn = isNumbered(kind)
        ? format.hasProperty(ListStart) || format.hasProperty(ListLevelText)
        : kind >= QTextListFormat::ListSquare && kind <= QTextListFormat::ListDisc;
    format.setStyle(isOwn ? QTextListFormat::ListStyleUndefined : kind);
    if (isOwn) {
        format.setProperty(ListKind, int(kind));
    } else {
        format.clearProperty(ListKind);
    }
}

QString bulletOf(const QTextListFormat &format)
{
    switch (listKind(format)) {
    case QTextListFormat::ListDisc:
        return format.hasProperty(ListMarker)
            ? format.stringProperty(ListMarker).left(longestLevelText)
            : u"\u2022"_s;
    case QTextListFormat::ListCircle:
        return u"\u25e6"_s;
    case QTextListFormat::ListSquare:
        return u"\u25aa"_s;
    default:
        return {};
    }
}

QString numberSuffixOf(const QTextListFormat &format)
{
    return format.hasProperty(QTextFormat::ListNumberSuffix) ? format.numberSuffix() : u"."_s;
}

int listStartOf(const QTextListFormat &format)
{
    return format.hasProperty(ListStart) ? format.intProperty(ListStart) : 1;
}

QString numberText(QTextListFormat::Style kind, int number)
{
    switch (kind) {
    case QTextListFormat::ListLowerAlpha:
        return alphabetic(number);
    case QTextListFormat::ListUpperAlpha:
        return alphabetic(number).toUpper();
    case QTextListFormat::ListLowerRoman:
        return roman(number);
    case QTextListFormat::ListUpperRoman:
        return roman(number).toUpper();
    case QTextListFormat::ListDecimal:
        return QString::number(number);
    default:
        return {};
    }
}

QString listMarkOf(const QTextBlock &item)
{
    const QTextList *list = item.textList();
    if (!list) {
        return {};
    }
    const QTextListFormat format = list->format();
    if (!isNumbered(listKind(format))) {
        return bulletOf(format);
    }
    const QString own = format.stringProperty(ListLevelText).left(longestLevelText);
    if (own.isEmpty()) {
        return format.numberPrefix() + numberOf(*list, item) + numberSuffixOf(format);
    }
    QString mark;
    for (const QChar c : own) {
        const int level = c.unicode();
        if (level > deepestLevel) {
            mark += c;
        } else {
            mark += level + 1 == format.indent() ? numberOf(*list, item) : outerNumber(item, level);
        }
    }
    return mark;
}

} // namespace quorvane
