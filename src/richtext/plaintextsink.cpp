#include "richtext/plaintextsink.h"

#include "richtext/paragraphends.h"

namespace quorvane {

void PlainTextSink::text(QStringView text, const RtfParagraph &, const RtfCharacter &)
{
    splitParagraphs(
        text, [this](QStringView piece) { m_text.append(piece); },
        [this] { m_text.append(u'\n'); });
}

void PlainTextSink::attachment(const RtfAttachment &, const RtfCharacter &)
{
    m_text.append(QChar::ObjectReplacementCharacter);
}

void PlainTextSink::paragraphEnd(const RtfParagraph &, const RtfCharacter &)
{
    m_text.append(u'\n');
}

} // namespace quorvane
