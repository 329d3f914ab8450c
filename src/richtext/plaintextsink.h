#pragma once

#include "richtext/rtfsink.h"

namespace quorvane {

/// Keeps the characters only. Paragraphs are parted by LF; an attachment is U+FFFC.
class PlainTextSink final : public RtfSink
{
public:
    QString text() const { return m_text; }

    void begin(const RtfTables &) override { }

    void tablesChanged() override { }

    void text(QStringView text, const RtfParagraph &paragraph,
              const RtfCharacter &character) override;
    void attachment(const RtfAttachment &attachment, const RtfCharacter &character) override;
    void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) override;

    void end(const RtfParagraph &, const RtfCharacter &) override { }

private:
    QString m_text;
};

} // namespace quorvane
