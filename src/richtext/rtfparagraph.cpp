#include "richtext/rtfparagraph.h"

#include "richtext/rtfcarriedwords.h"
#include "richtext/rtfescape.h"
#include "richtext/rtfwritertables.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QTextBlockFormat>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double twipsPerPixel = 15;
constexpr double largestTwips = 30'000'000;
constexpr int blockIndent = 600; // As the toolkit draws it: 40 pixels a step.
constexpr int defaultTab = 560;
constexpr int defaultTabCount = 12;
constexpr char plainBorderBelow[] = "\\brdrb\\brdrs\\brdrw10\\brsp20";

const char *kindWord(QTextOption::TabType type)
{
    switch (type) {
    case QTextOption::RightTab:
        return "\\tqr";
    case QTextOption::CenterTab:
        return "\\tqc";
    case QTextOption::DelimiterTab:
        return "\\tqdec";
    case QTextOption::LeftTab:
        break;
    }
    return "";
}

const char *leaderWord(char digit)
{
    constexpr const char *words[] = {"",       "\\tldot", "\\tlmdot", "\\tlhyph",
                                     "\\tlul", "\\tlth",  "\\tleq"};
    const int number = digit - '0';
    return number >= 0 && number < int(std::size(words)) ? words[number] : "";
}

/// The stops that the platform gives to a paragraph of a list.
QByteArray listTabWords(int textIndent)
{
    QByteArray words = rtfWord("tx", textIndent - listMarkerDistance) + rtfWord("tx", textIndent);
    for (int number = 1; number <= defaultTabCount; ++number) {
        if (number * defaultTab > textIndent) {
            words += rtfWord("tx", number * defaultTab);
        }
    }
    return words;
}

QByteArray tabWords(const QTextBlockFormat &format, int listTextIndent)
{
    const QList<QTextOption::Tab> tabs = format.tabPositions();
    if (tabs.isEmpty()) {
        return listTextIndent > 0 ? listTabWords(listTextIndent) : QByteArray(defaultTabWords);
    }
    QByteArray leaders = format.property(TabLeaders).toByteArray();
    if (leaders.size() != tabs.size()) {
        leaders.clear();
    }
    const qint64 start =
        listTextIndent > 0 ? listTextIndent : twipsOf(format.leftMargin() + format.textIndent());
    QByteArray words;
    for (qsizetype i = 0; i < tabs.size(); ++i) {
        words += kindWord(tabs[i].type);
        words += leaders.isEmpty() ? "" : leaderWord(leaders[i]);
        appendWord(words, "tx", twipsOf(tabs[i].position) + start);
    }
    return words;
}

QByteArray lengthWord(const char *word, qint64 twips)
{
    return twips == 0 ? QByteArray() : rtfWord(word, twips);
}

QByteArray indentWords(const QTextBlockFormat &format, int listIndent)
{
    const qint64 left = twipsOf(format.leftMargin()) + qint64(format.indent()) * blockIndent
        + qint64(listIndent) * listLevelIndent;
    qint64 first = twipsOf(format.textIndent());
    if (listIndent > 0) {
        first = format.hasProperty(ListFirstIndent) ? format.intProperty(ListFirstIndent) : -left;
    }
    return lengthWord("li", left) + lengthWord("fi", first)
        + lengthWord("ri", twipsOf(format.rightMargin()));
}

QByteArray lineHeightWords(const QTextBlockFormat &format)
{
    const double height = format.lineHeight();
    QByteArray words;
    switch (format.lineHeightType()) {
    case QTextBlockFormat::ProportionalHeight:
        words = rtfWord("sl", twipsOf(height * 240 / 100 / twipsPerPixel)) + "\\slmult1";
        break;
    case QTextBlockFormat::FixedHeight:
        words = rtfWord("sl", -twipsOf(height)) + "\\slmult0";
        break;
    case QTextBlockFormat::MinimumHeight:
        words = rtfWord("sl", twipsOf(height)) + "\\slmult0";
        break;
    case QTextBlockFormat::LineDistanceHeight:
        words = rtfWord("slleading", twipsOf(height));
        break;
    default:
        break;
    }
    if (format.hasProperty(MaximumLineHeight)) {
        words += words.isEmpty() ? "\\sl0" : "";
        words += rtfWord("slmaximum", format.intProperty(MaximumLineHeight));
    }
    return words;
}

QByteArray directionWord(const QTextBlockFormat &format)
{
    if (!format.hasProperty(QTextFormat::LayoutDirection)) {
        return "\\pardirnatural";
    }
    return format.layoutDirection() == Qt::RightToLeft ? "\\rtlpar" : "\\ltrpar";
}

/// With the border below that stands for a horizontal rule, and without one where it has gone.
QByteArray carriedWords(const QTextBlockFormat &format)
{
    QByteArray words = format.property(ParagraphWords).toByteArray();
    const bool hasRule = format.hasProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
    if (hasRule && !hasBorderBelow(words)) {
        removeBorderBelow(words); // one that is none
        words += plainBorderBelow;
    } else if (!hasRule && hasBorderBelow(words)) {
        removeBorderBelow(words);
    }
    return words;
}

const char *alignmentWord(const QTextBlockFormat &format)
{
    if (!format.hasProperty(QTextFormat::BlockAlignment)) {
        return "";
    }
    switch ((format.alignment() & Qt::AlignHorizontal_Mask) & ~Qt::AlignAbsolute) {
    case Qt::AlignRight:
        return "\\qr";
    case Qt::AlignHCenter:
        return "\\qc";
    case Qt::AlignJustify:
        return "\\qj";
    default:
        return "\\ql";
    }
}

} // namespace

qint64 twipsOf(double pixels)
{
    const double twips = std::isfinite(pixels) ? pixels * twipsPerPixel : 0;
    return qRound64(std::clamp(twips, -largestTwips, largestTwips));
}

QByteArray rtfParagraphWords(const QTextBlockFormat &format, int listIndent,
                             RtfWriterTables &tables)
{
    const int listTextIndent =
        listIndent > 0 ? int(twipsOf(format.leftMargin())) + listIndent * listLevelIndent : 0;
    QByteArray words = tabWords(format, listTextIndent);
    words += tables.withNumbers(carriedWords(format));
    if (format.headingLevel() > 0) {
        appendWord(words, "outlinelevel", format.headingLevel() - 1);
    }
    if (format.pageBreakPolicy().testFlag(QTextFormat::PageBreak_AlwaysBefore)) {
        words += "\\pagebb";
    }
    if (const int number = tables.colourNumber(format.background())) {
        appendWord(words, "cbpat", number);
    }
    words += indentWords(format, listIndent) + lineHeightWords(format);
    words += lengthWord("sb", twipsOf(format.topMargin()));
    words += lengthWord("sa", twipsOf(format.bottomMargin()));
    words += directionWord(format) + alignmentWord(format);
    return words + "\\partightenfactor0";
}

} // namespace quorvane
