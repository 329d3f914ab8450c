#include "richtext/rtftablereader.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int wholeChannel = 100000;

int byteOf(int channel)
{
    const qint64 part = std::clamp(channel, 0, wholeChannel);
    return int((part * 255 + wholeChannel / 2) / wholeChannel);
}

/// Colours of the system for ordinary text, which follow light and dark.
bool isTextColour(const QString &name)
{
    return name.contains("textColor"_L1, Qt::CaseInsensitive)
        || name.contains("labelColor"_L1, Qt::CaseInsensitive);
}

} // namespace

void RtfTableReader::beginColours()
{
    m_tables.colours.clear();
    m_hasColour = false;
    m_colour = qRgb(0, 0, 0);
}

void RtfTableReader::beginExpandedColours()
{
    m_tables.expandedColours.clear();
    m_channelsWanted = 0;
    m_channelCount = 0;
    m_isName = false;
    m_name.clear();
}

void RtfTableReader::fontWord(RtfKeyword keyword, const RtfToken &token)
{
    switch (keyword.action) {
    case RtfAction::Font:
        endFont();
        m_fontNumber = token.parameter;
        break;
    case RtfAction::Charset:
        m_font.charset = token.parameter;
        break;
    case RtfAction::FontCodePage:
        m_font.codePage = token.parameter;
        break;
    default:
        break;
    }
}

void RtfTableReader::fontText(QStringView text)
{
    for (;;) {
        const qsizetype end = text.indexOf(u';');
        m_font.name.append(end < 0 ? text : text.first(end));
        if (end < 0) {
            return;
        }
        endFont();
        text = text.sliced(end + 1);
    }
}

void RtfTableReader::endFont()
{
    m_font.name = m_font.name.trimmed();
    if (m_fontNumber) {
        m_tables.fonts.insert(*m_fontNumber, m_font);
    }
    m_fontNumber.reset();
    m_font = RtfFont();
}

int RtfTableReader::fontCodePage() const
{
    return m_font.codePage.value_or(
        codePageOfCharset(m_font.charset.value_or(0), m_tables.ansiCodePage));
}

void RtfTableReader::colourWord(RtfKeyword keyword, const RtfToken &token)
{
    const int value = std::clamp(token.parameter, 0, 255);
    switch (keyword.action) {
    case RtfAction::Red:
        m_colour = qRgb(value, qGreen(m_colour), qBlue(m_colour));
        m_hasColour = true;
        break;
    case RtfAction::Green:
        m_colour = qRgb(qRed(m_colour), value, qBlue(m_colour));
        m_hasColour = true;
        break;
    case RtfAction::Blue:
        m_colour = qRgb(qRed(m_colour), qGreen(m_colour), value);
        m_hasColour = true;
        break;
    case RtfAction::ColourSpace:
        m_channelsWanted = keyword.value;
        m_channelCount = 0;
        break;
    case RtfAction::Channel:
        if (m_channelCount < m_channels.size()) {
            m_channels[m_channelCount++] = token.parameter;
        }
        break;
    case RtfAction::ColourName:
        m_isName = true;
        break;
    default:
        break;
    }
}

void RtfTableReader::colourText(QStringView text)
{
    for (qsizetype i = text.count(u';'); i > 0; --i) {
        m_tables.colours.push_back(m_hasColour ? std::optional(m_colour) : std::nullopt);
        m_hasColour = false;
        m_colour = qRgb(0, 0, 0);
    }
}

void RtfTableReader::expandedColourText(QStringView text)
{
    for (const QChar c : text) {
        if (c == u';') {
            endExpandedColour();
        } else if (m_isName) {
            m_name.append(c);
        }
    }
}

void RtfTableReader::endExpandedColour()
{
    RtfExpandedColour colour;
    const auto wanted = std::size_t(m_channelsWanted);
    if (m_isName && isTextColour(m_name)) {
        colour.kind = RtfExpandedColour::Kind::Automatic;
    } else if (wanted > 0 && m_channelCount >= wanted) {
        const int alpha = m_channelCount > wanted ? m_channels[wanted] : wholeChannel;
        colour.kind = RtfExpandedColour::Kind::Rgba;
        colour.rgba = qRgba(byteOf(m_channels[0]), byteOf(m_channels[wanted > 1 ? 1 : 0]),
                            byteOf(m_channels[wanted > 1 ? 2 : 0]), byteOf(alpha));
    }
    m_tables.expandedColours.push_back(colour);
    m_channelsWanted = 0;
    m_channelCount = 0;
    m_isName = false;
    m_name.clear();
}

} // namespace quorvane
