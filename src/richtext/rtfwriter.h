#pragma once

#include "richtext/rtfescape.h"
#include "richtext/rtflists.h"
#include "richtext/rtflook.h"
#include "richtext/rtfrows.h"
#include "richtext/rtfwritertables.h"

#include <QByteArray>
#include <QHash>
#include <QSet>
#include <QTextBlock>
#include <QTextFrame>

#include <memory>
#include <vector>

class QTextCharFormat;
class QTextDocument;
class QTextList;
class QTextTable;

namespace quorvane {

/// Writes a document's text as RTF in the platform's dialect, 7-bit but for the placeholder of
/// attachments. In linear time, but for what is nested deeper than anybody can read: there cells
/// become paragraphs.
class RtfWriter final
{
public:
    enum class Form {
        BesideFiles, ///< Attachments are named; their files stand beside the text.
        Alone, ///< Images stand in the text, other attachments are left out.
    };

    /// \a document outlives the writer.
    explicit RtfWriter(const QTextDocument &document, Form form = Form::BesideFiles);

    /// Names to write in place of those that the attachments have.
    void renameAttachments(const QHash<QString, QString> &names) { m_newNames = names; }

    QByteArray write();

    /// The names of the attachments that write() has met, as they are in the document.
    const QSet<QString> &attachmentNames() const { return m_attachmentNames; }

private:
    /// What a character format comes to.
    struct Style
    {
        RtfLook look;
        QString link;
        bool isText = true; ///< No objects and no stand-ins among its characters.
    };

    /// What a block format comes to.
    struct Paragraph
    {
        QByteArray words; ///< Without \pard and \itap.
        QTextList *list = nullptr;
    };

    void writeFrame(QTextFrame::iterator at, const QTextFrame::iterator &end,
                    const char *lastEnding);
    void writeChild(QTextFrame &frame);
    void writeTable(const QTextTable &table);
    void writeRow(const QTextTable &table, int row, const RtfRows &rows);
    void writeFlat(const QTextFrame &frame);
    void writeBlock(const QTextBlock &block, const char *ending);
    void writeListMarker(const QTextBlock::iterator &first, const QTextBlock &block,
                         const QTextList &list);
    void writeFragment(const QTextFragment &fragment);
    void writeObjects(const QTextFragment &fragment, const QTextCharFormat &format);
    void writeAttachment(const QTextCharFormat &format);
    bool writeImage(const QTextCharFormat &format);
    void openLink(const QString &address);
    void closeLink();
    void switchParagraph(const Paragraph &paragraph);
    void switchTo(const RtfLook &look);
    template <typename Piece> const Style &styleOf(const Piece &piece);
    std::unique_ptr<Style> makeStyle(const QTextCharFormat &format);
    const Paragraph &paragraphOf(const QTextBlock &block);
    bool saysNothing(const QTextBlock &block);
    QByteArray head() const;
    QByteArray documentWords();

    const QTextDocument &m_document;
    Form m_form;
    RtfEscaper::Fallback m_fallback;
    QHash<QString, QString> m_newNames;
    QByteArray m_body;
    RtfWriterTables m_tables;
    RtfLists m_lists;

    int m_nesting = 0; ///< Of frames and tables.
    int m_depth = 0; ///< Of tables.
    qint64 m_room = RtfRows::pageWidth; ///< For a table, in twips.
    const Paragraph *m_paragraph = nullptr; ///< The present one; none where it is to be said anew.
    int m_paragraphDepth = 0;
    bool m_hasText = false;
    const Paragraph m_plainParagraph;
    std::vector<std::unique_ptr<Paragraph>> m_paragraphs; ///< By block format.
    std::vector<std::unique_ptr<Style>> m_styles; ///< By character format.
    const RtfLook m_noLook;
    const RtfLook *m_look = &m_noLook;
    bool m_hasLook = false;
    QString m_link;
    const RtfLook *m_lookBeforeLink = &m_noLook;
    bool m_hadLookBeforeLink = false;
    QSet<QString> m_attachmentNames;
};

} // namespace quorvane
