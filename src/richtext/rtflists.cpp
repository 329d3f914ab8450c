#include "richtext/rtflists.h"

#include "richtext/listmarks.h"
#include "richtext/rtftables.h"
#include "richtext/textproperties.h"

#include <QTextList>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int deepestIndent = 9; // RTF 1.9.1: nine levels.
constexpr int firstListId = 1;
constexpr int templateBase = 100; // Identifiers of levels that no other list has.
constexpr qsizetype longestAffix = 29;

struct Style
{
    QTextListFormat::Style style;
    int number; ///< \levelnfc.
    const char *marker; ///< The platform's name.
};

constexpr std::array styles {
    Style {QTextListFormat::ListDisc, 23, "disc"},
    Style {QTextListFormat::ListCircle, 23, "circle"},
    Style {QTextListFormat::ListSquare, 23, "square"},
    Style {QTextListFormat::ListDecimal, 0, "decimal"},
    Style {QTextListFormat::ListUpperRoman, 1, "upper-roman"},
    Style {QTextListFormat::ListLowerRoman, 2, "lower-roman"},
    Style {QTextListFormat::ListUpperAlpha, 3, "upper-alpha"},
    Style {QTextListFormat::ListLowerAlpha, 4, "lower-alpha"},
    Style {QTextListFormat::ListStyleUndefined, 255, nullptr},
};

const Style &styleOf(const QTextListFormat &format)
{
    const auto *found = std::find_if(styles.begin(), styles.end(), [&](const Style &style) {
        return style.style == listKind(format);
    });
    return found != styles.end() ? *found : styles.back();
}

/// The text of a level, with the units 0 to 8 in place of the levels' numbers.
QString levelText(const QTextListFormat &format, const Style &style, int level)
{
    if (!isNumbered(style.style)) {
        return bulletOf(format);
    }
    const QString own = format.stringProperty(ListLevelText);
    if (!own.isEmpty()) {
        return own.left(longestLevelText);
    }
    return format.numberPrefix().left(longestAffix) + QChar(level)
        + numberSuffixOf(format).left(longestAffix);
}

void appendByte(QByteArray &out, qsizetype byte)
{
    out += "\\'" + QByteArray::number(byte, 16).rightJustified(2, '0');
}

/// The platform's names for bullets that are none of the toolkit's.
const char *bulletName(const QString &bullet, const char *usual)
{
    constexpr std::pair<char16_t, const char *> names[] = {{u'\u2043', "hyphen"},
                                                           {u'\u2713', "check"},
                                                           {uncheckedMark, "box"},
                                                           {checkedMark, "check"}};
    for (const auto &[mark, name] : names) {
        if (bullet == QChar(mark)) {
            return name;
        }
    }
    return usual;
}

/// The platform's own description, which says more of bullets.
QByteArray markerWords(const QTextListFormat &format, const Style &style,
                       RtfEscaper::Fallback fallback)
{
    if (!style.marker) {
        return {};
    }
    QByteArray words = "{\\*\\levelmarker ";
    if (!isNumbered(style.style)) {
        const char *name = bulletName(bulletOf(format), style.marker);
        return words + "\\{" + name + "\\}}";
    }
    RtfEscaper escaper(words, fallback);
    escaper.text(format.numberPrefix().left(longestAffix));
    words += "\\{" + QByteArray(style.marker) + "\\}";
    escaper.text(numberSuffixOf(format).left(longestAffix));
    return words + '}';
}

} // namespace

int RtfLists::indentOf(const QTextList &list)
{
    return std::clamp(list.format().indent(), 1, deepestIndent);
}

RtfLists::Known &RtfLists::known(const QTextList &list)
{
    auto known = m_known.find(&list);
    if (known == m_known.end()) {
        known = m_known.insert(&list, makeKnown(list.format()));
    }
    return *known;
}

RtfLists::Known RtfLists::makeKnown(const QTextListFormat &format)
{
    const int number = int(m_definitions.size()) + firstListId;
    m_definitions.push_back(definition(format, number));
    const Style &style = styleOf(format);
    const int level = std::clamp(format.indent(), 1, deepestIndent) - 1;
    Known known {rtfWord("ls", number) + rtfWord("ilvl", level),
                 {},
                 {},
                 int(style.style),
                 listStartOf(format)};
    if (!style.marker) {
        return known; // Where nothing is shown, readers would take the tabs for text.
    }
    known.beforeNumber = "{\\listtext\t";
    RtfEscaper(known.beforeNumber, m_fallback)
        .text(isNumbered(style.style) ? format.numberPrefix().left(longestAffix)
                                      : bulletOf(format));
    if (isNumbered(style.style)) {
        RtfEscaper(known.behindNumber, m_fallback).text(numberSuffixOf(format).left(longestAffix));
    }
    known.behindNumber += "\t}";
    return known;
}

void RtfLists::appendMarker(QByteArray &out, const QTextList &list)
{
    Known &known = this->known(list);
    out += known.beforeNumber;
    out += numberText(QTextListFormat::Style(known.style), known.next++).toLatin1();
    out += known.behindNumber;
}

/// One list; the levels above the one that is used look like it.
QByteArray RtfLists::definition(const QTextListFormat &format, int number) const
{
    const Style &style = styleOf(format);
    const int indent = std::clamp(format.indent(), 1, deepestIndent);
    QByteArray out = rtfWord("listtemplateid", number) + "\\listhybrid";
    for (int level = 0; level < indent; ++level) {
        out += "{\\listlevel" + rtfWord("levelnfc", style.number)
            + rtfWord("levelnfcn", style.number) + "\\leveljc0\\leveljcn0\\levelfollow0"
            + rtfWord("levelstartat", listStartOf(format)) + "\\levelspace360\\levelindent0";
        out += markerWords(format, style, m_fallback);
        out += "{\\leveltext" + rtfWord("leveltemplateid", number * templateBase + level);
        const QString text = levelText(format, style, level);
        appendByte(out, text.size());
        QByteArray numbers;
        RtfEscaper escaper(out, m_fallback);
        for (qsizetype i = 0; i < text.size(); ++i) {
            if (isNumbered(style.style) && text[i] <= QChar(deepestIndent - 1)) {
                appendByte(out, text[i].unicode());
                appendByte(numbers, i + 1);
            } else {
                escaper.name(QStringView(text).sliced(i, 1));
            }
        }
        out += ";}{\\levelnumbers" + numbers + ";}";
        const int left = (level + 1) * listLevelIndent;
        out += "\\fi-360" + rtfWord("li", left) + rtfWord("lin", left) + " }";
    }
    return out;
}

QByteArray RtfLists::tables() const
{
    if (m_definitions.empty()) {
        return {};
    }
    QByteArray lists = "{\\*\\listtable";
    QByteArray overrides = "}\n{\\*\\listoverridetable";
    for (std::size_t i = 0; i < m_definitions.size(); ++i) {
        const int number = int(i) + firstListId;
        lists += "{\\list" + m_definitions[i] + "{\\listname ;}" + rtfWord("listid", number) + '}';
        overrides += "{\\listoverride" + rtfWord("listid", number) + "\\listoverridecount0"
            + rtfWord("ls", number) + '}';
        lists += i + 1 < m_definitions.size() ? "\n" : "";
    }
    return lists + overrides + "}\n";
}

} // namespace quorvane
