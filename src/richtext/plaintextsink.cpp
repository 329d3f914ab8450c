#include "richtext/plaintextsink.h"

#include "richtext/paragraphends.h"

namespace quorvane {

void PlainTextSink::text(QStringView text, const RtfParagraph &, const RtfCharacter &)
{
    settleCells();
    splitParagraphs(
        text, [this](QStringView piece) { m_text.append(piece); },
        [this] { m_text.append(u'\n'); });
}

void PlainTextSink::attachment(const RtfAttachment &, const RtfCharacter &)
{
    settleCells();
    m_text.append(QChar::ObjectReplacementCharacter);
}

void PlainTextSink::picture(const RtfPicture &, const RtfCharacter &)
{
    settleCells();
    m_text.append(QChar::ObjectReplacementCharacter);
}

void PlainTextSink::paragraphEnd(const RtfParagraph &, const RtfCharacter &)
{
    settleCells();
    m_text.append(u'\n');
}

void PlainTextSink::cellEnd(const RtfParagraph &, const RtfCharacter &, int)
{
    ++m_endedCells;
}

void PlainTextSink::rowEnd(const RtfRow &, int)
{
    m_endedCells = 0;
    m_text.append(u'\n');
}

void PlainTextSink::settleCells()
{
    if (m_endedCells > 0) {
        m_text.append(QString(m_endedCells, u'\t'));
        m_endedCells = 0;
    }
}

} // namespace quorvane
