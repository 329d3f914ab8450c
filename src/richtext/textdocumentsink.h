#pragma once

#include "richtext/rtfsink.h"
#include "richtext/textlists.h"
#include "richtext/texttable.h"

#include <QHash>
#include <QTextCharFormat>
#include <QTextCursor>

#include <memory>
#include <optional>
#include <vector>

class QTextDocument;
class QTextTable;

namespace quorvane {

class AttachmentStore;

/// Fills an empty document, a paragraph at a time and a format object for each look; tables as
/// soon as they end. The caller holds the edit block.
class TextDocumentSink final : public RtfSink
{
public:
    /// \a document outlives the sink; its store of attachments has been filled before.
    explicit TextDocumentSink(QTextDocument &document);

    bool wantsFormats() const override { return true; }

    void begin(const RtfTables &tables) override;
    void tablesChanged() override;
    void text(QStringView text, const RtfParagraph &paragraph,
              const RtfCharacter &character) override;
    void attachment(const RtfAttachment &attachment, const RtfCharacter &character) override;
    void picture(const RtfPicture &picture, const RtfCharacter &character) override;
    void paragraphEnd(const RtfParagraph &paragraph, const RtfCharacter &character) override;
    void cellEnd(const RtfParagraph &paragraph, const RtfCharacter &character,
                 int nesting) override;
    void rowEnd(const RtfRow &row, int nesting) override;
    void end(const RtfParagraph &paragraph, const RtfCharacter &character) override;

private:
    struct BlockLook
    {
        RtfParagraph paragraph;
        QTextBlockFormat format;
    };

    std::size_t formatOf(const RtfCharacter &character);
    std::size_t standInFor(char16_t unit, const RtfCharacter &character);
    const QTextBlockFormat &blockFormat(const RtfParagraph &paragraph);
    void append(QStringView text, std::size_t format);
    void appendText(QStringView text, const RtfCharacter &character);
    void appendObject(QTextCharFormat format);

    TextParagraph takeParagraph(const RtfParagraph &paragraph, const RtfCharacter &character);
    void endParagraph(const RtfParagraph &paragraph, const RtfCharacter &character);
    TextTable &tableAt(int nesting);
    void closeTables(int nesting);

    void write(const TextParagraph &paragraph, bool isInCell);
    void enterBlock(const QTextBlockFormat &format, const QTextCharFormat &charFormat,
                    bool isFirstOfCell);
    void write(TextTable &table);
    void write(TextCell &cell);
    void mergeCells(QTextTable &table, const TextTableGrid &grid);
    void fillCells(QTextTable &made, const TextTable &table, const TextTableGrid &grid);
    void writeDocumentWords();

    const RtfTables *m_tables = nullptr;
    QTextDocument &m_document;
    AttachmentStore &m_store;
    QTextCursor m_cursor;
    bool m_hasOpenBlock = true; ///< The block at the cursor is still nobody's.
    bool m_isFirst = true; ///< Nothing stands before the cursor in its cell or the document.

    std::vector<QTextCharFormat> m_formats;
    QHash<std::pair<RtfCharacter, char16_t>, std::size_t> m_formatIndex;
    RtfCharacter m_lastCharacter;
    std::optional<std::size_t> m_lastFormat;
    std::vector<BlockLook> m_blockLooks; ///< The last few.
    std::size_t m_nextBlockLook = 0;
    TextLists m_lists;

    QString m_text; ///< Of the paragraph that is being read.
    std::vector<TextRun> m_runs;
    std::vector<std::unique_ptr<TextTable>> m_openTables; ///< Each in a cell of the one before.
    qsizetype m_cells = 0;
    qsizetype m_pendingTabs = 0; ///< Cells that are too many to become some.
    qint64 m_mergingLeft;
    int m_pictures = 0;
};

} // namespace quorvane
