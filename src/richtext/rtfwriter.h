#pragma once

#include "richtext/rtfsink.h"

#include <QByteArray>
#include <QColor>
#include <QHash>
#include <QSet>
#include <QStringList>

#include <vector>

class QTextBlock;
class QTextBlockFormat;
class QTextCharFormat;
class QTextDocument;
class QTextFragment;

namespace quorvane {

/// Writes a document's text as 7-bit RTF, the placeholder of attachments apart. Cells of tables and
/// items of lists become paragraphs.
class RtfWriter final
{
public:
    /// \a document outlives the writer.
    explicit RtfWriter(const QTextDocument &document)
        : m_document(document)
    { }

    QByteArray write();

    /// The names of the attachments that write() has met.
    const QSet<QString> &attachmentNames() const { return m_attachmentNames; }

private:
    void writeBlock(const QTextBlock &block, bool isLast);
    void writeFragment(const QTextFragment &fragment);
    void writeAttachment(const QTextCharFormat &format);
    void switchParagraph(const QTextBlockFormat &format);
    void switchTo(const RtfCharacter &look);
    RtfCharacter lookOf(int index, const QTextCharFormat &format);
    int fontNumber(const QTextCharFormat &format);
    int colourNumber(const QTextCharFormat &format);
    QByteArray head() const;

    const QTextDocument &m_document;
    QByteArray m_body;
    QByteArray m_paragraphWords;
    bool m_hasParagraph = false;
    RtfCharacter m_look;
    bool m_hasLook = false;
    QHash<int, RtfCharacter> m_looks;
    QHash<QString, int> m_fontNumbers;
    QStringList m_fontNames;
    QHash<QRgb, int> m_colourNumbers;
    std::vector<QRgb> m_colours;
    QSet<QString> m_attachmentNames;
};

} // namespace quorvane
