#pragma once

#include "richtext/rtfsink.h"

#include <QHash>
#include <QTextCharFormat>
#include <QTextCursor>

#include <vector>

class QTextDocument;

namespace quorvane {

class AttachmentStore;

/// Fills an empty document, a paragraph at a time and a format object for each look. The caller
/// holds the edit block.
class TextDocumentSink final : public RtfSink
{
public:
    /// \a document outlives the sink; its store of attachments has been filled before.
    explicit TextDocumentSink(QTextDocument &document);

    void begin(const RtfTables &tables) override;
    void tablesChanged() override;
    void text(QStringView text, const RtfParagraph &paragraph,
              const RtfCharacter &character) override;
    void attachment(const RtfAttachment &attachment, const RtfCharacter &character) override;
    void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) override;
    void end(const RtfParagraph &paragraph, const RtfCharacter &character) override;

private:
    /// A stretch of the paragraph in one format.
    struct Run
    {
        qsizetype length;
        std::size_t format;
    };

    std::size_t formatOf(const RtfCharacter &character);
    std::size_t standInFor(char16_t unit, const RtfCharacter &character);
    QTextCharFormat makeFormat(const RtfCharacter &character) const;
    const QTextBlockFormat &blockFormatOf(const RtfParagraph &paragraph);
    void append(QStringView text, std::size_t format);
    void appendText(QStringView text, const RtfCharacter &character);
    void flushParagraph(const RtfParagraph &paragraph, const RtfCharacter &character);

    const RtfTables *m_tables = nullptr;
    AttachmentStore &m_store;
    QTextCursor m_cursor;
    bool m_isFirstBlock = true;

    std::vector<QTextCharFormat> m_formats;
    QHash<std::pair<RtfCharacter, char16_t>, std::size_t> m_formatIndex;
    RtfCharacter m_lastCharacter;
    std::optional<std::size_t> m_lastFormat;
    RtfParagraph m_lastParagraph;
    QTextBlockFormat m_lastBlockFormat;

    QString m_text; ///< Of the paragraph that is being read.
    std::vector<Run> m_runs;
};

} // namespace quorvane
