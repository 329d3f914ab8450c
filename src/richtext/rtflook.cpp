#include "richtext/rtflook.h"

#include "richtext/rtfescape.h"
#include "richtext/rtfwritertables.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QFont>
#include <QTextCharFormat>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {

constexpr double pointsPerPixel = 0.75; // A document's pixel is 1/96 inch.
constexpr double twipsPerPixel = 15;
constexpr double largestNumber = 10'000'000;

qint64 rounded(double number)
{
    return std::isfinite(number) ? qRound64(std::clamp(number, -largestNumber, largestNumber)) : 0;
}

double pointsOf(const QTextCharFormat &format)
{
    if (format.hasProperty(QTextFormat::FontPointSize)) {
        return format.fontPointSize();
    }
    return format.intProperty(QTextFormat::FontPixelSize) * pointsPerPixel;
}

QByteArray sizeWords(double points)
{
    const qint64 milliPoints = rounded(points * 1000);
    if (milliPoints <= 0) {
        return {};
    }
    QByteArray words = rtfWord("fs", (milliPoints + 250) / 500);
    if (milliPoints % 500 != 0) {
        words += rtfWord("fsmilli", milliPoints);
    }
    return words;
}

QByteArray underlineWord(const QTextCharFormat &format)
{
    const QTextCharFormat::UnderlineStyle style = format.underlineStyle();
    const QByteArray told = format.property(UnderlineWord).toByteArray();
    QByteArray first;
    for (const UnderlineKind &kind : underlineKinds) {
        if (kind.style != style) {
            continue;
        }
        if (told == kind.word) {
            return '\\' + told;
        }
        first = first.isEmpty() ? QByteArray("\\") + kind.word : first;
    }
    return first;
}

bool looksAsLink(const QTextCharFormat &format)
{
    return format.boolProperty(LinkLook) && !format.anchorHref().isEmpty()
        && format.foreground().color().rgba() == linkColour
        && format.underlineStyle() == QTextCharFormat::SingleUnderline;
}

} // namespace

// A look without font, size or carried words is only reached by way of \plain.
const RtfLook::Ending RtfLook::endings[] = {
    {Italic, "\\i0"},
    {Bold, "\\b0"},
    {Colour, "\\cf0"},
    // White is no highlight there: one that is white has a number of its own.
    {Highlight, "\\cb1"},
    {Spacing, "\\kerning1\\expnd0\\expndtw0"},
    {Underline, "\\ulnone"},
    {UnderlineColour, "\\ulc0"},
    {Strike, "\\strike0\\striked0"},
    {Script, "\\nosupersub"},
    {Baseline, "\\up0"},
    {Capitals, "\\caps0\\scaps0"},
};

RtfLook::RtfLook(const QTextCharFormat &format, RtfWriterTables &tables, Dialect dialect)
{
    const bool isLink = looksAsLink(format);
    takeFont(format, tables);
    takeColours(format, tables, isLink, dialect);
    takeLines(format, tables, isLink);
    takePlace(format);
    takeSpacing(format);
    m_words[Carried] = tables.withNumbers(format.property(CharacterWords).toByteArray());
}

void RtfLook::takeColours(const QTextCharFormat &format, RtfWriterTables &tables, bool looksAsLink,
                          Dialect dialect)
{
    const QBrush foreground = format.foreground();
    if (foreground.style() != Qt::NoBrush && !looksAsLink) {
        const int number = tables.textColourNumber(foreground.color());
        m_words[Colour] = number > 0 ? rtfWord("cf", number) : QByteArray();
    }
    const int number = tables.colourNumber(format.background());
    if (number > 0 && dialect == Dialect::Common) {
        m_words[Highlight] = rtfWord("chcbpat", number);
    }
    if (number > 0) {
        appendWord(m_words[Highlight], "cb", number);
    }
}

void RtfLook::takeFont(const QTextCharFormat &format, RtfWriterTables &tables)
{
    if (const int number = tables.fontNumber(format); number >= 0) {
        m_words[Font] = rtfWord("f", number);
    }
    if (format.fontItalic()) {
        m_words[Italic] = "\\i";
    }
    if (format.fontWeight() >= QFont::DemiBold) {
        m_words[Bold] = "\\b";
    }
    m_words[Size] = sizeWords(pointsOf(format));
    if (format.fontCapitalization() == QFont::AllUppercase) {
        m_words[Capitals] = "\\caps";
    } else if (format.fontCapitalization() == QFont::SmallCaps) {
        m_words[Capitals] = "\\scaps";
    }
}

void RtfLook::takeLines(const QTextCharFormat &format, RtfWriterTables &tables, bool looksAsLink)
{
    m_words[Underline] = looksAsLink ? QByteArray() : underlineWord(format);
    const QColor lineColour = format.underlineColor();
    if (!m_words[Underline].isEmpty() && lineColour.isValid()) {
        m_words[UnderlineColour] = rtfWord("ulc", tables.colourNumber(lineColour));
    }
    if (!format.fontStrikeOut()) {
        return;
    }
    m_words[Strike] = format.boolProperty(DoubleStrike) ? "\\striked1" : "\\strike";
    const QColor strikeColour = format.colorProperty(StrikeColour);
    m_words[Strike] +=
        rtfWord("strikec", strikeColour.isValid() ? tables.colourNumber(strikeColour) : 0);
}

void RtfLook::takePlace(const QTextCharFormat &format)
{
    if (format.verticalAlignment() == QTextCharFormat::AlignSuperScript) {
        m_words[Script] = "\\super";
    } else if (format.verticalAlignment() == QTextCharFormat::AlignSubScript) {
        m_words[Script] = "\\sub";
    }
    const double percent = format.baselineOffset();
    if (percent == 0) {
        return;
    }
    const qint64 halfPoints = format.hasProperty(BaselineShift)
        ? format.intProperty(BaselineShift)
        : rounded(percent / 100 * pointsOf(format) * 2);
    m_words[Baseline] = halfPoints < 0 ? rtfWord("dn", -halfPoints) : rtfWord("up", halfPoints);
}

void RtfLook::takeSpacing(const QTextCharFormat &format)
{
    const bool isKerned = !format.hasProperty(QTextFormat::FontKerning) || format.fontKerning();
    const bool isAbsolute = format.fontLetterSpacingType() == QFont::AbsoluteSpacing;
    const double pixels = isAbsolute ? format.fontLetterSpacing() : 0;
    if (isKerned && pixels == 0) {
        return;
    }
    const qint64 quarterPoints = rounded(pixels * pointsPerPixel * 4);
    const qint64 twips = rounded(pixels * twipsPerPixel);
    m_words[Spacing] = isKerned ? QByteArray("\\kerning1") : QByteArray();
    m_words[Spacing] += rtfWord("expnd", quarterPoints) + rtfWord("expndtw", twips);
    m_words[Spacing] += isKerned ? QByteArray() : QByteArray("\\kerning0");
}

void RtfLook::appendChange(QByteArray &out, const RtfLook &to, bool isFirst) const
{
    const auto loses = [&](Slot slot) {
        return to.m_words[slot].isEmpty() && !m_words[slot].isEmpty();
    };
    const bool losesCarried =
        !m_words[Carried].isEmpty() && m_words[Carried] != to.m_words[Carried];
    if (loses(Font) || loses(Size) || losesCarried) {
        out += "\\plain";
        if (to.isEmpty()) {
            out += ' ';
        }
        RtfLook().appendChange(out, to, false);
        return;
    }
    const qsizetype start = out.size();
    if (to.m_words[Font] != m_words[Font] && !out.endsWith('\n')) {
        out += '\n';
    }
    const auto appendSlot = [&](int slot) {
        if (to.m_words[std::size_t(slot)] == m_words[std::size_t(slot)]) {
            return;
        }
        const auto *ending = std::find_if(std::begin(endings), std::end(endings),
                                          [slot](const Ending &e) { return e.slot == slot; });
        const bool isToggle = slot == Strike || slot == Capitals; // one does not end another
        const QByteArray &former = m_words[std::size_t(slot)];
        const QByteArray &words = to.m_words[std::size_t(slot)];
        if (ending != std::end(endings) && (words.isEmpty() || (isToggle && !former.isEmpty()))) {
            out += ending->words;
        }
        if (slot == Highlight && words.isEmpty() && former.startsWith("\\chcbpat")) {
            out += "\\chcbpat0";
        }
        out += words;
    };
    for (int slot = Font; slot < Colour; ++slot) {
        appendSlot(slot);
    }
    if (out.size() > start && out.back() != '\n') {
        out += ' ';
    }
    const qsizetype behindFont = out.size();
    if (isFirst && to.m_words[Colour].isEmpty()) {
        out += "\\cf0";
    }
    for (int slot = Colour; slot < SlotCount; ++slot) {
        appendSlot(slot);
    }
    if (out.size() > behindFont) {
        out += ' ';
    }
}

} // namespace quorvane
