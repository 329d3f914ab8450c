#include "richtext/rtfformats.h"

#include "richtext/fontnames.h"
#include "richtext/listmarks.h"
#include "richtext/rtfcarriedwords.h"
#include "richtext/rtftables.h"
#include "richtext/textproperties.h"

#include <QBrush>
#include <QColor>
#include <QFont>
#include <QTextOption>

#include <algorithm>
#include <optional>

namespace quorvane {

namespace {

constexpr int defaultMilliPoints = 12000; // RTF 1.9.1: \fs24 where nothing is said.
constexpr double twipsPerPixel = 15;
constexpr int wholeLine = 240; // \sl of a single line.
constexpr int defaultTabDistance = 560;
constexpr int defaultTabCount = 12;
constexpr qsizetype usualFonts = 256;

double pixels(int twips)
{
    return twips / twipsPerPixel;
}

std::optional<QColor> colorOf(std::optional<QRgb> colour)
{
    return colour ? std::optional(QColor::fromRgba(*colour)) : std::nullopt;
}

void setFontOf(QTextCharFormat &format, const RtfCharacter &character, const RtfTables &tables)
{
    if (const std::optional<RtfFont> font = tables.font(character.font);
        font && !font->name.isEmpty()) {
        const QString family = familyOfFontName(font->name);
        format.setFontFamilies({family});
        if (tables.fonts.size() > usualFonts) {
            format.setProperty(FontKey, family);
        }
        if (!fontNameIsPlain(font->name)) {
            format.setProperty(FontName, font->name);
        }
    }
    if (character.milliPoints > 0) {
        format.setFontPointSize(character.milliPoints / 1000.0);
    } else if (tables.defaultFont) {
        format.setFontPointSize(defaultMilliPoints / 1000.0);
    }
    if (character.bold) {
        format.setFontWeight(QFont::Bold);
    }
    if (character.italic) {
        format.setFontItalic(true);
    }
    if (character.capitals != RtfCapitals::AsWritten) {
        format.setFontCapitalization(character.capitals == RtfCapitals::All ? QFont::AllUppercase
                                                                            : QFont::SmallCaps);
    }
    if (character.spacing != 0) {
        format.setFontLetterSpacingType(QFont::AbsoluteSpacing);
        format.setFontLetterSpacing(pixels(character.spacing));
    }
    if (character.noKerning) {
        format.setFontKerning(false);
    }
}

void setLinesOf(QTextCharFormat &format, const RtfCharacter &character, const RtfTables &tables)
{
    if (character.underline > 0) {
        const UnderlineKind &kind = underlineKinds[character.underline - 1];
        const auto *first =
            std::find_if(std::begin(underlineKinds), std::end(underlineKinds),
                         [&kind](const UnderlineKind &k) { return k.style == kind.style; });
        format.setUnderlineStyle(kind.style);
        if (first != &kind) {
            format.setProperty(UnderlineWord, QByteArray(kind.word));
        }
        if (const auto colour = colorOf(tables.exactColour(character.underlineColour))) {
            format.setUnderlineColor(*colour);
        }
    }
    if (!character.strike && !character.doubleStrike) {
        return;
    }
    format.setFontStrikeOut(true);
    if (character.doubleStrike) {
        format.setProperty(DoubleStrike, true);
    }
    if (const auto colour = colorOf(tables.exactColour(character.strikeColour))) {
        format.setProperty(StrikeColour, *colour);
    }
}

void setPlaceOf(QTextCharFormat &format, const RtfCharacter &character)
{
    if (character.script != RtfScript::Normal) {
        format.setVerticalAlignment(character.script == RtfScript::Super
                                        ? QTextCharFormat::AlignSuperScript
                                        : QTextCharFormat::AlignSubScript);
    }
    if (character.baselineShift != 0) {
        const int size = character.milliPoints > 0 ? character.milliPoints : defaultMilliPoints;
        format.setBaselineOffset(character.baselineShift * 50'000.0 / size);
        format.setProperty(BaselineShift, character.baselineShift);
    }
}

void setLinkOf(QTextCharFormat &format, const RtfCharacter &character, const RtfTables &tables)
{
    if (character.link <= 0 || character.link > tables.links.size()) {
        return;
    }
    format.setAnchor(true);
    format.setAnchorHref(tables.links.at(character.link - 1));
    const bool hasLook = format.hasProperty(QTextFormat::ForegroundBrush)
        || format.hasProperty(QTextFormat::TextUnderlineStyle);
    if (!hasLook) {
        format.setForeground(QColor(linkColour));
        format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
        format.setProperty(LinkLook, true);
    }
}

std::optional<Qt::Alignment> alignmentOf(RtfAlignment alignment)
{
    switch (alignment) {
    case RtfAlignment::Natural:
        break;
    case RtfAlignment::Left:
        return Qt::AlignLeft;
    case RtfAlignment::Centre:
        return Qt::AlignHCenter;
    case RtfAlignment::Right:
        return Qt::AlignRight;
    case RtfAlignment::Justify:
        return Qt::AlignJustify;
    }
    return std::nullopt;
}

void setLineHeightOf(QTextBlockFormat &format, const RtfParagraph &paragraph, QByteArray &words)
{
    const int height = paragraph.lineHeight;
    if (paragraph.lineIsMultiple && height != 0) {
        format.setLineHeight(std::abs(height) * 100.0 / wholeLine,
                             QTextBlockFormat::ProportionalHeight);
    } else if (height != 0) {
        format.setLineHeight(pixels(std::abs(height)),
                             height < 0 ? QTextBlockFormat::FixedHeight
                                        : QTextBlockFormat::MinimumHeight);
    } else if (paragraph.leading > 0) {
        format.setLineHeight(pixels(paragraph.leading), QTextBlockFormat::LineDistanceHeight);
    }
    if (height != 0 && paragraph.leading > 0) {
        words += "\\slleading" + QByteArray::number(paragraph.leading);
    }
    if (paragraph.lineMaximum > 0) {
        format.setProperty(MaximumLineHeight, paragraph.lineMaximum);
    }
}

bool isPlain(const RtfTab &tab, int position)
{
    return tab == RtfTab {position};
}

/// Whether the stops are those that the platform gives without being asked; those of a list come
/// after the two for its label.
bool areDefaultTabs(const QList<RtfTab> &tabs, int from, qsizetype at)
{
    int expected = (from / defaultTabDistance + 1) * defaultTabDistance;
    for (; at < tabs.size(); ++at, expected += defaultTabDistance) {
        if (!isPlain(tabs.at(at), expected)) {
            return false;
        }
    }
    return expected == (defaultTabCount + 1) * defaultTabDistance;
}

bool areListTabs(const RtfParagraph &paragraph)
{
    const QList<RtfTab> &tabs = paragraph.tabs;
    return tabs.size() >= 2 && isPlain(tabs.at(0), paragraph.left - listMarkerDistance)
        && isPlain(tabs.at(1), paragraph.left)
        && (tabs.size() == 2 || areDefaultTabs(tabs, paragraph.left, 2));
}

QTextOption::TabType tabTypeOf(RtfTabKind kind)
{
    switch (kind) {
    case RtfTabKind::Left:
        break;
    case RtfTabKind::Right:
        return QTextOption::RightTab;
    case RtfTabKind::Centre:
        return QTextOption::CenterTab;
    case RtfTabKind::Decimal:
        return QTextOption::DelimiterTab;
    }
    return QTextOption::LeftTab;
}

void setTabsOf(QTextBlockFormat &format, const RtfParagraph &paragraph, bool isInList)
{
    if (paragraph.tabs.isEmpty() || areDefaultTabs(paragraph.tabs, 0, 0)
        || (isInList && areListTabs(paragraph))) {
        return;
    }
    const int start = isInList ? paragraph.left : paragraph.left + paragraph.first;
    QList<QTextOption::Tab> positions;
    QByteArray leaders;
    for (const RtfTab &tab : paragraph.tabs) {
        const QTextOption::TabType type = tabTypeOf(tab.kind);
        const QChar delimiter = type == QTextOption::DelimiterTab ? u'.' : QChar();
        positions.append(QTextOption::Tab(pixels(tab.position - start), type, delimiter));
        leaders.append(char('0' + tab.leader));
    }
    format.setTabPositions(positions);
    if (leaders.count('0') < leaders.size()) {
        format.setProperty(TabLeaders, leaders);
    }
}

void setMarginsOf(QTextBlockFormat &format, const RtfParagraph &paragraph, bool isInList)
{
    int left = paragraph.left;
    int first = paragraph.first;
    if (isInList) {
        const bool isTold = left != 0 || first != 0;
        if (isTold && first != -left) {
            format.setProperty(ListFirstIndent, first);
        }
        left -= isTold ? listLevelIndent * (paragraph.level + 1) : 0;
        first = 0;
    }
    if (left != 0) {
        format.setLeftMargin(pixels(left));
    }
    if (first != 0) {
        format.setTextIndent(pixels(first));
    }
    if (paragraph.right != 0) {
        format.setRightMargin(pixels(paragraph.right));
    }
    if (paragraph.before != 0) {
        format.setTopMargin(pixels(paragraph.before));
    }
    if (paragraph.after != 0) {
        format.setBottomMargin(pixels(paragraph.after));
    }
}

QTextListFormat::Style listStyleOf(int kind)
{
    switch (kind) {
    case 1:
        return QTextListFormat::ListUpperRoman;
    case 2:
        return QTextListFormat::ListLowerRoman;
    case 3:
        return QTextListFormat::ListUpperAlpha;
    case 4:
        return QTextListFormat::ListLowerAlpha;
    default:
        return QTextListFormat::ListDecimal; // Counts in words and other scripts as well.
    }
}

void setBulletOf(QTextListFormat &format, const QString &text)
{
    // The second ones stand in fonts of symbols, where word processors take bullets from.
    constexpr QStringView disc = u"\u2022\uf0b7\u25cf\u00b7";
    constexpr QStringView circle = u"\u25e6\u25cboO";
    constexpr QStringView square = u"\u25aa\uf0a7\u25a0";
    const QString bullet = text.trimmed();
    auto kind = QTextListFormat::ListDisc;
    if (bullet.size() == 1 && circle.contains(bullet.at(0))) {
        kind = QTextListFormat::ListCircle;
    } else if (bullet.size() == 1 && square.contains(bullet.at(0))) {
        kind = QTextListFormat::ListSquare;
    } else if (!bullet.isEmpty() && (bullet.size() > 1 || !disc.contains(bullet.at(0)))) {
        format.setProperty(ListMarker, bullet);
    }
    setListKind(format, kind);
}

void setNumberOf(QTextListFormat &format, const QString &text, int level)
{
    const qsizetype place = text.indexOf(QChar(level));
    qsizetype start = place;
    while (start > 0 && text.at(start - 1).unicode() > 8) {
        --start;
    }
    if (start > 0) {
        format.setProperty(ListLevelText, text);
    }
    const QString prefix = place > start ? text.sliced(start, place - start) : QString();
    const QString suffix = place < 0 ? QString() : text.sliced(place + 1);
    if (!prefix.isEmpty() && start == 0) {
        format.setNumberPrefix(prefix);
    }
    if (suffix != QChar(u'.')) {
        format.setNumberSuffix(suffix);
    }
}

void setBorder(QTextTableCellFormat &format, std::size_t side, const RtfBorder &border,
               const RtfTables &tables)
{
    if (border.style == RtfBorder::Style::Unsaid || border.style == RtfBorder::Style::None) {
        return;
    }
    constexpr QTextFrameFormat::BorderStyle styles[] = {
        QTextFrameFormat::BorderStyle_None,    QTextFrameFormat::BorderStyle_None,
        QTextFrameFormat::BorderStyle_Solid,   QTextFrameFormat::BorderStyle_Double,
        QTextFrameFormat::BorderStyle_Dotted,  QTextFrameFormat::BorderStyle_Dashed,
        QTextFrameFormat::BorderStyle_DotDash, QTextFrameFormat::BorderStyle_DotDotDash,
    };
    constexpr int hairline = 15; // Twips, where no width is told.
    const QTextFrameFormat::BorderStyle style = styles[std::size_t(border.style)];
    const double width = pixels(border.width > 0 ? border.width : hairline);
    const QBrush brush(colorOf(tables.exactColour(border.colour)).value_or(QColor(Qt::black)));
    switch (side) {
    case 0:
        format.setTopBorder(width);
        format.setTopBorderStyle(style);
        format.setTopBorderBrush(brush);
        break;
    case 1:
        format.setLeftBorder(width);
        format.setLeftBorderStyle(style);
        format.setLeftBorderBrush(brush);
        break;
    case 2:
        format.setBottomBorder(width);
        format.setBottomBorderStyle(style);
        format.setBottomBorderBrush(brush);
        break;
    default:
        format.setRightBorder(width);
        format.setRightBorderStyle(style);
        format.setRightBorderBrush(brush);
        break;
    }
}

/// The border that the row gives to a side of a cell that says nothing of it.
const RtfBorder &rowBorder(const RtfRow &row, std::size_t side, std::size_t index, bool isFirstRow)
{
    constexpr std::size_t betweenRows = 4;
    constexpr std::size_t betweenColumns = 5;
    switch (side) {
    case 0:
        return row.borders[isFirstRow ? 0 : betweenRows];
    case 1:
        return row.borders[index == 0 ? 1 : betweenColumns];
    case 2:
        return row.borders[2];
    default:
        return row.borders[index + 1 >= row.cells.size() ? 3 : betweenColumns];
    }
}

void setPadding(QTextTableCellFormat &format, const RtfRow &row, const RtfSides &own)
{
    const RtfSides gap {0, row.gap, 0, row.gap};
    const auto of = [&](std::size_t side) {
        const int told = own[side] >= 0 ? own[side] : row.padding[side];
        return pixels(told >= 0 ? told : gap[side]);
    };
    const auto set = [&format](int property, double value) {
        if (value > 0) {
            format.setProperty(property, value);
        }
    };
    set(QTextFormat::TableCellTopPadding, of(0));
    set(QTextFormat::TableCellLeftPadding, of(1));
    set(QTextFormat::TableCellBottomPadding, of(2));
    set(QTextFormat::TableCellRightPadding, of(3));
}

} // namespace

QTextCharFormat charFormatOf(const RtfCharacter &character, const RtfTables &tables)
{
    QTextCharFormat format;
    setFontOf(format, character, tables);
    setLinesOf(format, character, tables);
    setPlaceOf(format, character);
    if (const auto colour = colorOf(tables.colour(character.colour))) {
        format.setForeground(*colour);
    }
    if (const auto colour = colorOf(tables.exactColour(character.background))) {
        format.setBackground(*colour);
    }
    setLinkOf(format, character, tables);
    QByteArray words = character.words;
    if (character.language > 0) {
        words += "\\lang" + QByteArray::number(character.language);
    }
    if (!words.isEmpty()) {
        format.setProperty(CharacterWords, words);
    }
    return format;
}

QTextBlockFormat blockFormatOf(const RtfParagraph &paragraph, const RtfTables &tables)
{
    QTextBlockFormat format;
    const bool isInList = tables.level(paragraph) != nullptr;
    QByteArray words = paragraph.words;
    if (const std::optional<Qt::Alignment> alignment = alignmentOf(paragraph.alignment)) {
        format.setAlignment(*alignment);
    }
    if (paragraph.direction != RtfDirection::Natural) {
        format.setLayoutDirection(
            paragraph.direction == RtfDirection::RightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    }
    setMarginsOf(format, paragraph, isInList);
    setLineHeightOf(format, paragraph, words);
    setTabsOf(format, paragraph, isInList);
    if (paragraph.heading > 0) {
        format.setHeadingLevel(paragraph.heading);
    }
    if (paragraph.pageBreakBefore) {
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    }
    if (const auto colour = colorOf(tables.exactColour(paragraph.background))) {
        format.setBackground(*colour);
    }
    if (!words.isEmpty()) {
        format.setProperty(ParagraphWords, words);
    }
    if (hasBorderBelow(words)) {
        format.setProperty(QTextFormat::BlockTrailingHorizontalRulerWidth,
                           QTextLength(QTextLength::PercentageLength, 100));
    }
    return format;
}

QTextListFormat listFormatOf(const RtfListLevel &listLevel, int level)
{
    constexpr int bullet = 23; // Number of \levelnfc.
    const QString text = listLevel.text.left(longestLevelText);
    QTextListFormat format;
    format.setIndent(level + 1);
    if (listLevel.kind == bullet) {
        setBulletOf(format, text);
        return format;
    }
    setNumberOf(format, text, level);
    if (listLevel.start != 1) {
        format.setProperty(ListStart, listLevel.start);
    }
    setListKind(format, listStyleOf(listLevel.kind));
    return format;
}

QTextTableFormat tableFormatOf(const RtfRow &row)
{
    QTextTableFormat format;
    format.setBorder(0);
    format.setBorderCollapse(true);
    format.setCellSpacing(0);
    format.setCellPadding(0);
    if (row.left + row.gap != 0) {
        format.setLeftMargin(pixels(row.left + row.gap));
    }
    if (const std::optional<Qt::Alignment> alignment = alignmentOf(row.alignment)) {
        format.setAlignment(*alignment);
    }
    return format;
}

QTextTableCellFormat cellFormatOf(const RtfRow &row, std::size_t index, bool isFirstRow,
                                  const RtfTables &tables)
{
    const RtfCell cell = index < row.cells.size() ? row.cells[index] : RtfCell();
    QTextTableCellFormat format;
    for (std::size_t side = 0; side < cell.borders.size(); ++side) {
        const bool isOwn = cell.borders[side].style != RtfBorder::Style::Unsaid;
        setBorder(format, side,
                  isOwn ? cell.borders[side] : rowBorder(row, side, index, isFirstRow), tables);
    }
    setPadding(format, row, cell.padding);
    if (const auto colour = colorOf(tables.exactColour(cell.background))) {
        format.setBackground(*colour);
    }
    if (cell.vertical > 0) {
        format.setVerticalAlignment(cell.vertical == 1 ? QTextCharFormat::AlignMiddle
                                                       : QTextCharFormat::AlignBottom);
    }
    if (!cell.words.isEmpty()) {
        format.setProperty(CellWords, cell.words);
    }
    if (index == 0 && !row.words.isEmpty()) {
        format.setProperty(RowWords, row.words);
    }
    return format;
}

} // namespace quorvane
