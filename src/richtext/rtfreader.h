#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtfsink.h"
#include "richtext/rtftablereader.h"
#include "richtext/rtftables.h"
#include "richtext/rtftokenizer.h"

#include <optional>
#include <vector>

namespace quorvane {

/// Reads RTF 1.9.1 and tells a sink of its text. Whatever the bytes are, it takes linear time,
/// bounded memory a group and bounded stack; what it does not know it passes over, keeping the
/// text. Footnotes, headers, comments and boxes follow at the end as paragraphs of their own.
class RtfReader final
{
public:
    /// \a rtf and \a sink outlive the reader.
    RtfReader(QByteArrayView rtf, RtfSink &sink);

    void read();

private:
    enum class Destination { Body, Fonts, Colours, ExpandedColours, Graphic };
    enum class Alternative { None, Expected, Skipped, Taken };

    /// What a group inherits and gives back at its end.
    struct State
    {
        RtfCharacter character;
        RtfParagraph paragraph;
        Destination destination = Destination::Body;
        Alternative alternative = Alternative::None; ///< Of the very group, not inherited.
        qsizetype alternativeStart = 0;
        int fallbackLength = 1;
        int codePage = windowsLatin;
        bool deleted = false;
    };

    /// A group of text beside the text, read after it.
    struct Aside
    {
        qsizetype start; ///< Behind its control word.
        State state;
    };

    struct Ending
    {
        RtfParagraph paragraph;
        RtfCharacter character;
    };

    void run();
    void readAsides();
    void handle(const RtfToken &token);
    void skip(const RtfToken &token);
    void skipGroup();
    void startGroup();
    void endGroup();
    void endRoot();
    void endGraphic();

    void symbol(uchar byte);
    void hex(uchar byte);
    void text(QByteArrayView bytes);
    void bytes(QByteArrayView bytes);
    void unicode(int number);
    void unit(char16_t unit);
    bool takesText();
    void flushBytes();
    void flushText();

    void word(const RtfToken &token);
    void destination(RtfAction action);
    void tableWord(RtfKeyword keyword, const RtfToken &token);
    void graphicWord(RtfKeyword keyword, const RtfToken &token);
    void bodyWord(RtfKeyword keyword, const RtfToken &token);
    void characterWord(RtfKeyword keyword, const RtfToken &token);
    void headWord(RtfKeyword keyword, const RtfToken &token);
    void setFont(int number);
    void carry(const RtfToken &token);
    void paragraphEnd();

    QByteArrayView m_rtf;
    RtfTokenizer m_tokenizer;
    RtfSink &m_sink;
    RtfTables m_tables;
    RtfTableReader m_tableReader {m_tables};
    RtfCodePages m_codePages;
    RtfAttachment m_attachment;
    bool m_attachmentIsNamed = false;

    State m_state;
    std::vector<State> m_stack;
    qsizetype m_unsavedGroups = 0; ///< Open groups beyond the stack's bound.
    qsizetype m_skippedGroups = 0; ///< Open groups of a destination that is passed over.
    bool m_isEnded = false;
    bool m_rootIsClosed = false;
    bool m_starred = false;
    bool m_isFirstInGroup = false;
    bool m_expectsPlaceholder = false;
    int m_fallbackLeft = 0; ///< Characters for old readers that still follow a \u.
    qsizetype m_rewoundUntil = 0;

    QByteArray m_bytes; ///< Text that waits for its code page.
    QString m_text; ///< Text that waits for a change of format.
    qsizetype m_pendingCells = 0;
    bool m_paragraphIsEmpty = true;

    std::vector<Aside> m_asides;
    bool m_isInAside = false;
    std::optional<Ending> m_pendingEnding; ///< A paragraph's end that comes true with more text.
};

} // namespace quorvane
