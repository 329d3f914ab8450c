#pragma once

#include "richtext/rtfsink.h"

namespace quorvane {

/// Keeps the characters only. Paragraphs are parted by LF; an attachment and a picture are U+FFFC.
/// Cells of a row are parted by tabs, rows by LF.
class PlainTextSink final : public RtfSink
{
public:
    QString text() const { return m_text; }

    bool wantsFormats() const override { return false; }

    void begin(const RtfTables &) override { }

    void tablesChanged() override { }

    void text(QStringView text, const RtfParagraph &paragraph,
              const RtfCharacter &character) override;
    void attachment(const RtfAttachment &attachment, const RtfCharacter &character) override;
    void picture(const RtfPicture &picture, const RtfCharacter &character) override;
    void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) override;
    void cellEnd(const RtfParagraph &paragraph, const RtfCharacter &character,
                 int nesting) override;
    void rowEnd(const RtfRow &row, int nesting) override;

    void end(const RtfParagraph &, const RtfCharacter &) override { }

private:
    void settleCells();

    QString m_text;
    qsizetype m_endedCells = 0; ///< Empty cells at the end of a row are no text.
};

} // namespace quorvane
