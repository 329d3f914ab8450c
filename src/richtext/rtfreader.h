#pragma once

#include "richtext/rtfkeywords.h"
#include "richtext/rtflistreader.h"
#include "richtext/rtfpicturereader.h"
#include "richtext/rtfrowreader.h"
#include "richtext/rtfsink.h"
#include "richtext/rtftablereader.h"
#include "richtext/rtftables.h"
#include "richtext/rtftokenizer.h"

#include <QVarLengthArray>

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
    enum class Destination : uchar {
        Body,
        Fonts,
        Colours,
        ExpandedColours,
        Styles,
        Lists,
        ListOverrides,
        LevelText,
        FieldInstruction,
        Picture,
        Silent, ///< Where text is none, but a picture may be.
        Label,
        OldList,
        OldListText,
        Info,
        InfoText,
        Graphic,
    };
    enum class Alternative : uchar { None, Expected, Skipped, Taken };

    /// What a group inherits and gives back at its end.
    struct State
    {
        RtfCharacter character;
        RtfParagraph paragraph;
        Destination destination = Destination::Body;
        Alternative alternative = Alternative::None; ///< Of the very group, not inherited.
        bool deleted = false;
        std::size_t field = 0; ///< The depth of the innermost field's group; 0 outside.
        int styleDepth = 0; ///< 1 in the group of a style.
        int fallbackLength = 1;
        int codePage = windowsLatin;
        qsizetype alternativeStart = 0;
    };

    /// A group of text beside the text, read after it.
    struct Aside
    {
        qsizetype start; ///< Behind its control word.
        State state;
        int footnote; ///< Its number, where it is one.
    };

    struct Ending
    {
        RtfParagraph paragraph;
        RtfCharacter character;
    };

    /// The character that a field shows, for as long as its result shows nothing.
    struct Symbol
    {
        QString text;
        RtfCharacter character;
    };

    struct StyleHead
    {
        int number = 0;
        bool isOfCharacters = false;
        int base = -1;
        QString name;
    };

    void run();
    void readAsides();
    void handle(const RtfToken &token);
    void skip(const RtfToken &token);
    void skipGroup();
    void startGroup();
    void endGroup();
    void endRoot();
    void endDestination(Destination left);
    void endGraphic();
    void endPicture();
    void endField();
    void endInstruction();
    void takeSymbol();
    int symbolFont(const QString &name);
    void endStyle();

    void symbol(uchar byte);
    void hex(uchar byte);
    void binary(QByteArrayView bytes);
    void text(QByteArrayView bytes, bool isAscii);
    void bytes(QByteArrayView bytes, bool isAscii);
    void unicode(int number);
    void unit(char16_t unit);
    void append(QStringView text);
    bool takesText();
    void settleLabel();
    void flushBytes();
    void flushText();

    void word(const RtfToken &token);
    bool keepsStarred(RtfAction action) const;
    void destination(RtfKeyword keyword, const RtfToken &token);
    void openDestination(RtfKeyword keyword, const RtfToken &token);
    void tableWord(RtfKeyword keyword, const RtfToken &token);
    void graphicWord(RtfKeyword keyword, const RtfToken &token);
    void styleWord(RtfKeyword keyword, const RtfToken &token);
    void bodyWord(RtfKeyword keyword, const RtfToken &token);
    void headWord(RtfKeyword keyword, const RtfToken &token);
    void characterWord(RtfKeyword keyword, const RtfToken &token);
    void lineWord(RtfKeyword keyword, const RtfToken &token);
    void paragraphWord(RtfKeyword keyword, const RtfToken &token);
    void lengthWord(RtfKeyword keyword, const RtfToken &token);
    void tabWord(RtfKeyword keyword, const RtfToken &token);
    void plainModeWord(RtfKeyword keyword, const RtfToken &token);
    void rowWord(RtfKeyword keyword, const RtfToken &token);
    void setFont(int number);
    void setPlain();
    void applyStyle(const QHash<int, RtfStyle> &styles, int number);
    void carryCharacterWord(RtfKeyword keyword, const RtfToken &token);
    void paragraphEnd();
    void cellEnd(int nesting);
    void rowEnd(int nesting);
    void insertFootnoteNumber();

    QByteArrayView m_rtf;
    RtfTokenizer m_tokenizer;
    RtfSink &m_sink;
    const bool m_wantsFormats;
    RtfTables m_tables;
    RtfTableReader m_tableReader {m_tables};
    RtfListReader m_listReader {m_tables};
    RtfPictureReader m_pictureReader;
    RtfRowReader m_rowReader;
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
    QVarLengthArray<char16_t, 1024> m_text; ///< Text that waits for a change of format.
    QString m_decoded; ///< Keeps its memory.
    bool m_paragraphIsEmpty = true;

    RtfTab m_tab; ///< What was said of the next tab stop.
    bool m_isInBorder = false; ///< Words about borders are about a paragraph's.
    StyleHead m_style;
    QString m_label; ///< Waits for what its paragraph will be.
    RtfCharacter m_labelCharacter;
    QString m_instruction;
    QHash<QString, int> m_linkNumbers;
    std::optional<Symbol> m_symbol;
    QHash<QString, int> m_symbolFonts;
    QByteArray m_infoWord;
    int m_oldTextPlace = 0;

    std::vector<Aside> m_asides;
    bool m_isInAside = false;
    int m_asideCells = 0; ///< Cells beside the text become tabs.
    int m_footnotes = 0;
    int m_asideFootnote = 0;
    std::optional<Ending> m_pendingEnding; ///< A paragraph's end that comes true with more text.
};

} // namespace quorvane
