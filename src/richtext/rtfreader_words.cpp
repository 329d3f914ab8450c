#include "richtext/rtfcarriedwords.h"
#include "richtext/rtffields.h"
#include "richtext/rtfreader.h"

#include <algorithm>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr std::size_t mostAsides = 65536;
constexpr int longestFallback = 16;
constexpr int symbolBase = 0xf000; // Where the private area has the places of symbol fonts.

} // namespace

void RtfReader::word(const RtfToken &token)
{
    flushBytes();
    m_fallbackLeft = 0;
    m_expectsPlaceholder = false;
    const RtfKeyword keyword = rtfKeyword(token.text);
    const bool starred = m_starred;
    m_starred = false;
    if (isDestination(keyword.action)) {
        // In the outermost group only a broken file has one that is not at the beginning.
        if (!m_stack.empty() && (m_isFirstInGroup || m_isInAside || m_stack.size() > 1)) {
            destination(keyword, token);
        }
        return;
    }
    if (starred && !keepsStarred(keyword.action)) {
        skipGroup();
        return;
    }
    switch (m_state.destination) {
    case Destination::Body:
    case Destination::Label:
        bodyWord(keyword, token);
        break;
    case Destination::Graphic:
        graphicWord(keyword, token);
        break;
    case Destination::Picture:
        m_pictureReader.word(keyword, token);
        break;
    case Destination::Styles:
        styleWord(keyword, token);
        break;
    default:
        tableWord(keyword, token);
        break;
    }
}

bool RtfReader::keepsStarred(RtfAction action) const
{
    return m_state.destination == Destination::Styles
        && (action == RtfAction::CharacterStyle || action == RtfAction::ParagraphStyle);
}

void RtfReader::destination(RtfKeyword keyword, const RtfToken &token)
{
    flushText();
    const bool isInBody = m_state.destination == Destination::Body;
    switch (keyword.action) {
    case RtfAction::Transparent:
        break;
    case RtfAction::Field:
        m_state.field = isInBody ? m_stack.size() : 0;
        break;
    case RtfAction::UnicodeAlternative:
        m_stack.back().alternative = Alternative::Taken;
        break;
    case RtfAction::Alternatives:
        if (m_unsavedGroups == 0 && m_tokenizer.position() > m_rewoundUntil) {
            m_state.alternative = Alternative::Expected;
        }
        break;
    case RtfAction::Aside:
        if (isInBody && !m_isInAside && m_asides.size() < mostAsides) {
            const bool isNote = token.text == "footnote";
            m_asides.push_back({m_tokenizer.position(), m_state, isNote ? m_footnotes : 0});
            m_asides.back().state.paragraph.nesting = 0;
            m_asides.back().state.field = 0;
            skipGroup();
        }
        break;
    default:
        openDestination(keyword, token);
        break;
    }
}

void RtfReader::openDestination(RtfKeyword keyword, const RtfToken &token)
{
    const Destination outer = m_state.destination;
    const bool isPicture = keyword.action == RtfAction::Picture;
    if (outer == Destination::Body && keyword.action == RtfAction::InfoText) {
        return; // Text of whatever it is that the group is for.
    }
    const bool isPlaced = outer == Destination::Body
        || (outer == Destination::Silent && (isPicture || keyword.action == RtfAction::ShapeValue))
        || (outer == Destination::Lists && keyword.action == RtfAction::LevelText)
        || (outer == Destination::OldList && keyword.action == RtfAction::OldListText)
        || (outer == Destination::Info && keyword.action == RtfAction::InfoText);
    // Without a saved state nothing could end the destination.
    if (!isPlaced || m_unsavedGroups > 0) {
        skipGroup();
        return;
    }
    switch (keyword.action) {
    case RtfAction::FontTable:
        m_state.destination = Destination::Fonts;
        break;
    case RtfAction::ColourTable:
        m_state.destination = Destination::Colours;
        m_tableReader.beginColours();
        break;
    case RtfAction::ExpandedColourTable:
        m_state.destination = Destination::ExpandedColours;
        m_tableReader.beginExpandedColours();
        break;
    case RtfAction::StyleSheet:
        m_state.destination = Destination::Styles;
        m_state.styleDepth = 0;
        break;
    case RtfAction::ListTable:
        m_state.destination = Destination::Lists;
        break;
    case RtfAction::ListOverrideTable:
        m_state.destination = Destination::ListOverrides;
        break;
    case RtfAction::LevelText:
        m_state.destination = Destination::LevelText;
        m_listReader.beginLevelText();
        break;
    case RtfAction::FieldInstruction:
        m_state.destination = Destination::FieldInstruction;
        m_instruction.clear();
        break;
    case RtfAction::Picture:
        m_state.destination = Destination::Picture;
        m_pictureReader.begin();
        break;
    case RtfAction::ShapeValue:
        m_state.destination = Destination::Silent;
        break;
    case RtfAction::Label:
        m_state.destination = Destination::Label;
        break;
    case RtfAction::OldList:
        m_state.destination = Destination::OldList;
        m_listReader.beginOld();
        break;
    case RtfAction::OldListText:
        m_state.destination = Destination::OldListText;
        m_oldTextPlace = keyword.value;
        break;
    case RtfAction::Info:
        m_state.destination = Destination::Info;
        break;
    case RtfAction::InfoText:
        m_state.destination = Destination::InfoText;
        m_infoWord = token.text.toByteArray();
        break;
    case RtfAction::Graphic:
        m_state.destination = Destination::Graphic;
        m_attachment = RtfAttachment();
        m_attachmentIsNamed = false;
        break;
    default:
        skipGroup();
        break;
    }
}

void RtfReader::tableWord(RtfKeyword keyword, const RtfToken &token)
{
    flushText();
    if (keyword.action == RtfAction::Unicode) {
        unicode(token.parameter);
        return;
    }
    if (keyword.action == RtfAction::FallbackLength) {
        m_state.fallbackLength = std::clamp(token.parameter, 0, longestFallback);
        return;
    }
    switch (m_state.destination) {
    case Destination::Fonts:
        m_tableReader.fontWord(keyword, token);
        break;
    case Destination::Colours:
    case Destination::ExpandedColours:
        m_tableReader.colourWord(keyword, token);
        break;
    case Destination::Lists:
        m_listReader.listWord(keyword, token);
        break;
    case Destination::ListOverrides:
        m_listReader.overrideWord(keyword, token);
        break;
    case Destination::OldList:
        m_listReader.oldWord(keyword, token);
        break;
    default:
        if (keyword.action == RtfAction::Insert) {
            unit(char16_t(keyword.value));
        } else if (keyword.action == RtfAction::Font) {
            setFont(token.parameter);
        }
        break;
    }
}

void RtfReader::graphicWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::Unicode:
        unicode(token.parameter);
        return;
    case RtfAction::FallbackLength:
        m_state.fallbackLength = std::clamp(token.parameter, 0, longestFallback);
        return;
    case RtfAction::Width:
        m_attachment.width = token.parameter;
        break;
    case RtfAction::Height:
        m_attachment.height = token.parameter;
        break;
    case RtfAction::NoOrient:
        m_attachment.noOrient = true;
        break;
    default:
        break;
    }
    flushText();
    m_attachmentIsNamed = true;
}

void RtfReader::bodyWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::None:
        return;
    case RtfAction::Insert:
        unit(char16_t(keyword.value));
        return;
    case RtfAction::Unicode:
        unicode(token.parameter);
        return;
    case RtfAction::FallbackLength:
        m_state.fallbackLength = std::clamp(token.parameter, 0, longestFallback);
        return;
    case RtfAction::ParagraphEnd:
        paragraphEnd();
        return;
    case RtfAction::CellEnd:
        cellEnd(1);
        return;
    case RtfAction::NestedCellEnd:
        cellEnd(std::max<int>(m_state.paragraph.nesting, 2));
        return;
    case RtfAction::RowEnd:
        rowEnd(1);
        return;
    case RtfAction::NestedRowEnd:
        rowEnd(std::max<int>(m_state.paragraph.nesting, 2));
        return;
    case RtfAction::FootnoteNumber:
        insertFootnoteNumber();
        return;
    default:
        break;
    }
    if (!m_wantsFormats) {
        plainModeWord(keyword, token);
    } else if (isCharacterAction(keyword.action)) {
        characterWord(keyword, token);
    } else if (isParagraphAction(keyword.action)) {
        paragraphWord(keyword, token);
    } else if (isRowAction(keyword.action)) {
        rowWord(keyword, token);
    } else {
        headWord(keyword, token);
    }
}

/// What changes the characters themselves, or which of them are text.
void RtfReader::plainModeWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::Font:
        setFont(token.parameter);
        break;
    case RtfAction::Plain:
        m_state.deleted = false;
        setFont(-1);
        break;
    case RtfAction::Deleted:
        m_state.deleted = !token.hasParameter || token.parameter != 0;
        break;
    case RtfAction::ParagraphDefaults:
        m_state.paragraph.list = 0;
        m_state.paragraph.level = 0;
        m_state.paragraph.nesting = 0;
        break;
    case RtfAction::ParagraphStyle:
    case RtfAction::CharacterStyle:
    case RtfAction::ListNumber:
    case RtfAction::ListLevel:
    case RtfAction::InTable:
    case RtfAction::Nesting:
        if (isCharacterAction(keyword.action)) {
            characterWord(keyword, token);
        } else {
            paragraphWord(keyword, token);
        }
        break;
    default:
        if (!isCharacterAction(keyword.action) && !isParagraphAction(keyword.action)
            && !isRowAction(keyword.action)) {
            headWord(keyword, token);
        }
        break;
    }
}

void RtfReader::headWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::DefaultFont:
        m_tables.defaultFont = token.parameter;
        break;
    case RtfAction::CodePage:
        m_tables.ansiCodePage = keyword.value;
        break;
    case RtfAction::AnsiCodePage:
        m_tables.ansiCodePage = token.parameter;
        break;
    case RtfAction::Platform:
        m_tables.isPlatforms = true;
        return;
    case RtfAction::DocumentWord:
        removeCarriedWord(m_tables.documentWords, token.text);
        appendCarriedWord(m_tables.documentWords, token);
        return;
    default:
        return;
    }
    flushText();
    setFont(m_state.character.font);
    m_sink.tablesChanged();
}

void RtfReader::setFont(int number)
{
    m_state.character.font = std::max(number, -1);
    m_state.codePage = m_tables.codePageOfFont(m_state.character.font);
}

/// Gives the link to all that follows in the group of the field.
void RtfReader::endInstruction()
{
    if (m_state.field == 0 || m_state.destination != Destination::Body) {
        return;
    }
    const QString address = addressOfHyperlink(m_instruction);
    if (address.isEmpty()) {
        takeSymbol();
        return;
    }
    int &number = m_linkNumbers[address];
    if (number == 0) {
        m_tables.links.append(address);
        number = int(m_tables.links.size());
    }
    m_state.character.link = number;
}

void RtfReader::takeSymbol()
{
    const std::optional<RtfSymbolField> field = symbolFieldOf(m_instruction);
    if (!field) {
        return;
    }
    m_symbol = Symbol {QString(), m_state.character};
    if (!field->font.isEmpty()) {
        m_symbol->character.font = symbolFont(field->font);
    }
    if (field->points > 0) {
        m_symbol->character.milliPoints = field->points * 1000;
    }
    const char byte = char(field->code);
    if (field->isUnicode || field->code > 0xff) {
        m_symbol->text = QString::fromUcs4(QList {char32_t(field->code)}.constData(), 1);
    } else if (isSymbolFont(field->font)) {
        m_symbol->text = QChar(symbolBase + field->code);
    } else {
        m_codePages.decode(m_tables.ansiCodePage, QByteArrayView(&byte, 1), m_symbol->text);
    }
}

/// The number of a font that an instruction names, which need not be in the table.
int RtfReader::symbolFont(const QString &name)
{
    int &number = m_symbolFonts[name];
    if (number == 0) {
        number = std::numeric_limits<int>::max() - int(m_symbolFonts.size());
        m_tables.fonts.insert(number, {name, {}, {}});
    }
    return number;
}

/// Shows the character of a field whose result has shown nothing.
void RtfReader::endField()
{
    if (!m_symbol || m_state.destination != Destination::Body) {
        return;
    }
    const Symbol symbol = *std::exchange(m_symbol, std::nullopt);
    if (takesText()) {
        flushText();
        m_sink.text(symbol.text, m_state.paragraph, symbol.character);
    }
}

void RtfReader::paragraphEnd()
{
    if (m_state.destination != Destination::Body || m_state.deleted) {
        return;
    }
    flushBytes();
    settleLabel();
    flushText();
    if (m_isInAside) {
        // Asides end where they end; an end before the first text would be an empty line.
        if (!m_pendingEnding && !m_paragraphIsEmpty) {
            m_pendingEnding = Ending {m_state.paragraph, m_state.character};
            m_paragraphIsEmpty = true;
        }
        return;
    }
    m_sink.paragraphEnd(m_state.paragraph, m_state.character);
    tellProgress();
    m_paragraphIsEmpty = true;
}

void RtfReader::cellEnd(int nesting)
{
    if (m_state.destination != Destination::Body) {
        return;
    }
    flushBytes();
    settleLabel();
    flushText();
    if (m_isInAside) {
        ++m_asideCells;
        return;
    }
    m_sink.cellEnd(m_state.paragraph, m_state.character, nesting);
    m_paragraphIsEmpty = true;
}

void RtfReader::rowEnd(int nesting)
{
    if (m_state.destination != Destination::Body) {
        return;
    }
    flushBytes();
    settleLabel();
    flushText();
    if (m_isInAside) {
        m_asideCells = 0;
        paragraphEnd();
        return;
    }
    m_sink.rowEnd(m_rowReader.row(nesting), nesting);
    m_paragraphIsEmpty = true;
}

void RtfReader::insertFootnoteNumber()
{
    const int number = m_isInAside ? m_asideFootnote : ++m_footnotes;
    if (number > 0) {
        append(QString::number(number));
    }
}

} // namespace quorvane
