#include "richtext/rtfreader.h"

#include <algorithm>

namespace quorvane {

namespace {

constexpr std::size_t mostAsides = 65536;
constexpr int longestFallback = 16;
constexpr qsizetype longestWords = 1024;

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
            destination(keyword.action);
        }
        return;
    }
    if (starred) {
        skipGroup();
        return;
    }
    switch (m_state.destination) {
    case Destination::Body:
        bodyWord(keyword, token);
        break;
    case Destination::Graphic:
        graphicWord(keyword, token);
        break;
    default:
        tableWord(keyword, token);
        break;
    }
}

void RtfReader::destination(RtfAction action)
{
    flushText();
    const bool isInBody = m_state.destination == Destination::Body;
    switch (action) {
    case RtfAction::Transparent:
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
            m_asides.push_back({m_tokenizer.position(), m_state});
            skipGroup();
        }
        break;
    default:
        // Without a saved state nothing could end the destination.
        if (!isInBody || m_unsavedGroups > 0 || action == RtfAction::Skip) {
            skipGroup();
        } else if (action == RtfAction::FontTable) {
            m_state.destination = Destination::Fonts;
        } else if (action == RtfAction::ColourTable) {
            m_state.destination = Destination::Colours;
            m_tableReader.beginColours();
        } else if (action == RtfAction::ExpandedColourTable) {
            m_state.destination = Destination::ExpandedColours;
            m_tableReader.beginExpandedColours();
        } else {
            m_state.destination = Destination::Graphic;
            m_attachment = RtfAttachment();
            m_attachmentIsNamed = false;
        }
        break;
    }
}

void RtfReader::tableWord(RtfKeyword keyword, const RtfToken &token)
{
    flushText();
    if (keyword.action == RtfAction::Unicode) {
        unicode(token.parameter);
    } else if (keyword.action == RtfAction::FallbackLength) {
        m_state.fallbackLength = std::clamp(token.parameter, 0, longestFallback);
    } else if (m_state.destination == Destination::Fonts) {
        m_tableReader.fontWord(keyword, token);
    } else {
        m_tableReader.colourWord(keyword, token);
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
    case RtfAction::Insert:
        unit(char16_t(keyword.value));
        break;
    case RtfAction::Unicode:
        unicode(token.parameter);
        break;
    case RtfAction::FallbackLength:
        m_state.fallbackLength = std::clamp(token.parameter, 0, longestFallback);
        break;
    case RtfAction::ParagraphEnd:
        paragraphEnd();
        break;
    case RtfAction::CellEnd:
        flushText();
        ++m_pendingCells;
        break;
    case RtfAction::RowEnd:
        m_pendingCells = 0;
        paragraphEnd();
        break;
    case RtfAction::ParagraphDefaults:
        m_state.paragraph = RtfParagraph();
        break;
    case RtfAction::Alignment:
        m_state.paragraph.alignment = RtfAlignment(keyword.value);
        break;
    case RtfAction::Carried:
        carry(token);
        break;
    case RtfAction::CodePage:
    case RtfAction::AnsiCodePage:
    case RtfAction::DefaultFont:
        headWord(keyword, token);
        break;
    case RtfAction::None:
        break;
    default:
        characterWord(keyword, token);
        break;
    }
}

void RtfReader::characterWord(RtfKeyword keyword, const RtfToken &token)
{
    flushText();
    RtfCharacter &character = m_state.character;
    const bool isOn = !token.hasParameter || token.parameter != 0;
    constexpr int largest = 10'000'000;
    switch (keyword.action) {
    case RtfAction::Font:
        setFont(token.parameter);
        break;
    case RtfAction::Size:
        character.milliPoints = std::clamp(token.parameter, 0, largest / 500) * 500;
        break;
    case RtfAction::SizeFraction:
        character.milliPoints = std::clamp(token.parameter, 0, largest);
        break;
    case RtfAction::Bold:
        character.bold = isOn;
        break;
    case RtfAction::Italic:
        character.italic = isOn;
        break;
    case RtfAction::Underline:
        character.underline = keyword.value != 0 && isOn;
        break;
    case RtfAction::Colour:
        character.colour = std::max(token.parameter, 0);
        break;
    case RtfAction::Deleted:
        m_state.deleted = isOn;
        break;
    case RtfAction::Plain:
        character = RtfCharacter();
        m_state.deleted = false;
        setFont(-1);
        break;
    default:
        break;
    }
}

void RtfReader::headWord(RtfKeyword keyword, const RtfToken &token)
{
    if (keyword.action == RtfAction::DefaultFont) {
        m_tables.defaultFont = token.parameter;
    } else {
        m_tables.ansiCodePage =
            keyword.action == RtfAction::CodePage ? keyword.value : token.parameter;
    }
    setFont(m_state.character.font);
    m_sink.tablesChanged();
}

void RtfReader::setFont(int number)
{
    m_state.character.font = std::max(number, -1);
    m_state.codePage = m_tables.codePageOfFont(m_state.character.font);
}

void RtfReader::carry(const RtfToken &token)
{
    QByteArray &words = m_state.paragraph.words;
    if (words.size() + token.text.size() + 12 > longestWords) {
        return;
    }
    words.append('\\');
    words.append(token.text.data(), token.text.size());
    if (token.hasParameter) {
        words.append(QByteArray::number(token.parameter));
    }
}

void RtfReader::paragraphEnd()
{
    flushBytes();
    flushText();
    if (m_state.destination != Destination::Body || m_state.deleted) {
        return;
    }
    if (m_isInAside) {
        // Asides end where they end; an end before the first text would be an empty line.
        if (!m_pendingEnding && !m_paragraphIsEmpty) {
            m_pendingEnding = Ending {m_state.paragraph, m_state.character};
            m_paragraphIsEmpty = true;
        }
        return;
    }
    m_pendingCells = 0;
    m_sink.paragraphEnd(m_state.paragraph, m_state.character);
    m_paragraphIsEmpty = true;
}

} // namespace quorvane
