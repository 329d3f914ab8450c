#include "richtext/rtfcarriedwords.h"
#include "richtext/rtfreader.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int largestSize = 10'000'000; // Thousandths of a point.
constexpr int usualShift = 6; // Half points, where no number is said.
constexpr qsizetype mostTabs = 64;
constexpr int mostHeadings = 6;
constexpr int mostLevels = 9;

int length(const RtfToken &token)
{
    return std::clamp(token.parameter, -largestLength, largestLength);
}

bool isOn(const RtfToken &token)
{
    return !token.hasParameter || token.parameter != 0;
}

/// Takes over what a style says; what it does not say is as by default.
template <typename Look, typename... Values>
void overlay(Look &look, const Look &style, Values Look::*...fields)
{
    static const Look plain;
    const auto take = [&](auto field) {
        if (!(style.*field == plain.*field)) {
            look.*field = style.*field;
        }
    };
    (take(fields), ...);
}

void overlay(RtfCharacter &to, const RtfCharacter &style)
{
    using C = RtfCharacter;
    overlay(to, style, &C::font, &C::milliPoints, &C::colour, &C::background, &C::underlineColour,
            &C::strikeColour, &C::language, &C::spacing, &C::baselineShift, &C::script,
            &C::capitals, &C::underline, &C::bold, &C::italic, &C::strike, &C::doubleStrike,
            &C::noKerning, &C::words);
}

void overlay(RtfParagraph &to, const RtfParagraph &style)
{
    using P = RtfParagraph;
    overlay(to, style, &P::alignment, &P::direction, &P::pageBreakBefore, &P::lineIsMultiple,
            &P::heading, &P::level, &P::list, &P::left, &P::right, &P::first, &P::before, &P::after,
            &P::lineHeight, &P::lineMaximum, &P::leading, &P::background, &P::tabs, &P::words);
}

/// The level in the name that word processors give the styles of headings; 0 for other names.
int headingOfName(const QString &name)
{
    constexpr QLatin1StringView heading = "heading "_L1;
    if (!name.startsWith(heading, Qt::CaseInsensitive)) {
        return 0;
    }
    const int level = QStringView(name).sliced(heading.size()).toInt();
    return level <= mostHeadings ? std::max(level, 0) : 0;
}

} // namespace

void RtfReader::characterWord(RtfKeyword keyword, const RtfToken &token)
{
    flushText();
    RtfCharacter &character = m_state.character;
    switch (keyword.action) {
    case RtfAction::Font:
        setFont(token.parameter);
        break;
    case RtfAction::Size:
        character.milliPoints = std::clamp(token.parameter, 0, largestSize / 500) * 500;
        break;
    case RtfAction::SizeFraction:
        character.milliPoints = std::clamp(token.parameter, 0, largestSize);
        break;
    case RtfAction::Bold:
        character.bold = isOn(token);
        break;
    case RtfAction::Italic:
        character.italic = isOn(token);
        break;
    case RtfAction::Colour:
        character.colour = std::max(token.parameter, 0);
        break;
    case RtfAction::Background:
        // Entry 1 is the platform's white paper: the end of a highlight.
        character.background =
            m_tables.isPlatforms && token.parameter == 1 ? 0 : std::max(token.parameter, 0);
        break;
    case RtfAction::Script:
        character.script = isOn(token) ? RtfScript(keyword.value) : RtfScript::Normal;
        break;
    case RtfAction::Shift:
        character.baselineShift = keyword.value
            * (token.hasParameter ? std::clamp(token.parameter, -largestLength, largestLength)
                                  : usualShift);
        break;
    case RtfAction::Capitals:
        character.capitals = isOn(token) ? RtfCapitals(keyword.value) : RtfCapitals::AsWritten;
        break;
    case RtfAction::Deleted:
        m_state.deleted = isOn(token);
        break;
    case RtfAction::Plain:
        setPlain();
        break;
    case RtfAction::CharacterStyle:
        applyStyle(m_tables.characterStyles, token.parameter);
        break;
    default:
        lineWord(keyword, token);
        break;
    }
}

void RtfReader::lineWord(RtfKeyword keyword, const RtfToken &token)
{
    RtfCharacter &character = m_state.character;
    switch (keyword.action) {
    case RtfAction::Underline:
        character.underline = isOn(token) ? uchar(keyword.value) : 0;
        break;
    case RtfAction::UnderlineColour:
        character.underlineColour = std::max(token.parameter, 0);
        break;
    case RtfAction::Strike:
        character.strike = isOn(token);
        break;
    case RtfAction::DoubleStrike:
        character.doubleStrike = isOn(token);
        break;
    case RtfAction::StrikeColour:
        character.strikeColour = std::max(token.parameter, 0);
        break;
    case RtfAction::Spacing:
        character.spacing =
            std::clamp(length(token) * keyword.value, -largestLength, largestLength);
        break;
    case RtfAction::Kerning:
        // Elsewhere it is the size from which on pairs are kerned.
        character.noKerning = m_tables.isPlatforms && !isOn(token);
        break;
    case RtfAction::Language:
        character.language = std::max(token.parameter, 0);
        break;
    case RtfAction::CharacterWord:
        carryCharacterWord(keyword, token);
        break;
    default:
        break;
    }
}

void RtfReader::carryCharacterWord(RtfKeyword keyword, const RtfToken &token)
{
    QByteArray &words = m_state.character.words;
    removeCarriedWord(words, token.text);
    const auto number = CarriedNumber(keyword.value);
    if (!isOn(token) && number != CarriedNumber::PlainOrZero) {
        return;
    }
    if (number != CarriedNumber::Colour) {
        appendCarriedWord(words, token);
    } else if (m_tables.exactColour(token.parameter)) {
        appendCarriedColour(words, token, m_tables);
    }
}

void RtfReader::setPlain()
{
    const int link = m_state.character.link; // It is the field's.
    m_state.character = RtfCharacter();
    m_state.character.link = link;
    m_state.deleted = false;
    setFont(-1);
}

void RtfReader::applyStyle(const QHash<int, RtfStyle> &styles, int number)
{
    const auto style = styles.constFind(number);
    if (style == styles.constEnd()) {
        return;
    }
    overlay(m_state.character, style->character);
    overlay(m_state.paragraph, style->paragraph);
    setFont(m_state.character.font);
}

void RtfReader::styleWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::ParagraphStyle:
        m_style.number = token.parameter;
        break;
    case RtfAction::CharacterStyle:
        m_style.number = token.parameter;
        m_style.isOfCharacters = true;
        break;
    case RtfAction::StyleBase:
        m_style.base = token.parameter;
        break;
    case RtfAction::Unicode:
    case RtfAction::FallbackLength:
        tableWord(keyword, token);
        break;
    default:
        if (isCharacterAction(keyword.action)) {
            characterWord(keyword, token);
        } else if (isParagraphAction(keyword.action)) {
            paragraphWord(keyword, token);
        }
        break;
    }
}

void RtfReader::endStyle()
{
    QHash<int, RtfStyle> &styles =
        m_style.isOfCharacters ? m_tables.characterStyles : m_tables.paragraphStyles;
    RtfStyle style = styles.value(m_style.base);
    overlay(style.character, m_state.character);
    if (!m_style.isOfCharacters) {
        overlay(style.paragraph, m_state.paragraph);
        if (style.paragraph.heading == 0) {
            style.paragraph.heading = uchar(headingOfName(
                m_style.name.trimmed().chopped(m_style.name.trimmed().endsWith(u';') ? 1 : 0)));
        }
    }
    styles.insert(m_style.number, style);
}

void RtfReader::paragraphWord(RtfKeyword keyword, const RtfToken &token)
{
    RtfParagraph &paragraph = m_state.paragraph;
    m_isInBorder = keyword.action == RtfAction::ParagraphBorder;
    switch (keyword.action) {
    case RtfAction::ParagraphDefaults:
        paragraph = RtfParagraph();
        m_tab = RtfTab();
        break;
    case RtfAction::ParagraphStyle:
        flushText();
        applyStyle(m_tables.paragraphStyles, token.parameter);
        break;
    case RtfAction::Alignment:
        paragraph.alignment = RtfAlignment(keyword.value);
        break;
    case RtfAction::Direction:
        paragraph.direction = RtfDirection(keyword.value);
        break;
    case RtfAction::PageBreakBefore:
        paragraph.pageBreakBefore = isOn(token);
        break;
    case RtfAction::OutlineLevel:
        paragraph.heading =
            token.parameter < mostHeadings ? uchar(std::max(token.parameter, 0) + 1) : 0;
        break;
    case RtfAction::ParagraphBackground:
        paragraph.background = std::max(token.parameter, 0);
        break;
    case RtfAction::ListNumber:
        paragraph.list = std::max(token.parameter, 0);
        break;
    case RtfAction::ListLevel:
        paragraph.level = uchar(std::clamp(token.parameter, 0, mostLevels - 1));
        break;
    case RtfAction::InTable:
        paragraph.nesting = m_isInAside ? uchar(0) : std::max<uchar>(paragraph.nesting, 1);
        break;
    case RtfAction::Nesting:
        paragraph.nesting =
            m_isInAside ? uchar(0) : uchar(std::clamp(token.parameter, 0, deepestNesting));
        break;
    case RtfAction::ParagraphWord:
        removeCarriedWord(paragraph.words, token.text);
        [[fallthrough]];
    case RtfAction::ParagraphBorder:
        if (CarriedNumber(keyword.value) == CarriedNumber::Colour) {
            appendCarriedColour(paragraph.words, token, m_tables);
        } else {
            appendCarriedWord(paragraph.words, token);
        }
        break;
    default:
        lengthWord(keyword, token);
        break;
    }
}

void RtfReader::lengthWord(RtfKeyword keyword, const RtfToken &token)
{
    RtfParagraph &paragraph = m_state.paragraph;
    switch (keyword.action) {
    case RtfAction::Left:
        paragraph.left = length(token);
        break;
    case RtfAction::Right:
        paragraph.right = length(token);
        break;
    case RtfAction::First:
        paragraph.first = length(token);
        break;
    case RtfAction::Before:
        paragraph.before = std::max(length(token), 0);
        break;
    case RtfAction::After:
        paragraph.after = std::max(length(token), 0);
        break;
    case RtfAction::LineHeight:
        paragraph.lineHeight = length(token);
        break;
    case RtfAction::LineMultiple:
        paragraph.lineIsMultiple = isOn(token);
        break;
    case RtfAction::LineMaximum:
        paragraph.lineMaximum = std::max(length(token), 0);
        break;
    case RtfAction::Leading:
        paragraph.leading = std::max(length(token), 0);
        break;
    default:
        tabWord(keyword, token);
        break;
    }
}

void RtfReader::tabWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::TabKind:
        m_tab.kind = RtfTabKind(keyword.value);
        break;
    case RtfAction::TabLeader:
        m_tab.leader = uchar(keyword.value);
        break;
    case RtfAction::Tab:
        m_tab.position = length(token);
        if (m_state.paragraph.tabs.size() < mostTabs) {
            m_state.paragraph.tabs.append(m_tab);
        }
        m_tab = RtfTab();
        break;
    default:
        break;
    }
}

void RtfReader::rowWord(RtfKeyword keyword, const RtfToken &token)
{
    const bool isOfBorder = keyword.action >= RtfAction::BorderStyle;
    if (!isOfBorder || !m_isInBorder) {
        m_isInBorder = false;
        m_rowReader.word(keyword, token, m_state.paragraph.nesting);
        return;
    }
    if (keyword.action == RtfAction::BorderColour) {
        appendCarriedColour(m_state.paragraph.words, token, m_tables);
    } else {
        appendCarriedWord(m_state.paragraph.words, token);
    }
}

} // namespace quorvane
