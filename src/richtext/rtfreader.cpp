#include "richtext/rtfreader.h"

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {

constexpr std::size_t deepest = 65536; // Real files reach a few thousand.
constexpr int utf8Page = 65001;
constexpr uchar placeholder = 0xac;
constexpr qsizetype longestName = 64; // Of a style.
constexpr qsizetype longestRun = 1 << 20; // Keeps the buffer small where no format changes.

} // namespace

RtfReader::RtfReader(QByteArrayView rtf, RtfSink &sink)
    : m_rtf(rtf)
    , m_tokenizer(rtf)
    , m_sink(sink)
    , m_wantsFormats(sink.wantsFormats())
{ }

void RtfReader::read()
{
    m_sink.begin(m_tables);
    run();
    readAsides();
    const Ending ending = m_pendingEnding.value_or(Ending {m_state.paragraph, m_state.character});
    m_sink.end(ending.paragraph, ending.character);
}

void RtfReader::run()
{
    while (!m_isEnded) {
        const RtfToken token = m_tokenizer.next();
        if (token.kind == RtfToken::Kind::End) {
            break;
        }
        if (m_skippedGroups > 0) {
            skip(token);
        } else {
            handle(token);
        }
    }
    m_skippedGroups = 0;
    flushBytes();
    flushText();
    // What the end of the bytes has cut off is there as far as it goes.
    const Destination left = m_state.destination;
    if (left == Destination::Graphic || left == Destination::Picture) {
        m_state.destination = Destination::Body;
        endDestination(left);
    }
    endField();
    settleLabel();
}

void RtfReader::readAsides()
{
    if (m_asides.empty()) {
        return;
    }
    const State main = m_state;
    if (!m_paragraphIsEmpty) {
        m_pendingEnding = Ending {m_state.paragraph, m_state.character};
    }
    m_isInAside = true;
    for (const Aside &aside : m_asides) {
        m_stack.clear();
        m_unsavedGroups = 0;
        m_asideCells = 0;
        m_asideFootnote = aside.footnote;
        m_state = aside.state;
        m_isEnded = false;
        m_rewoundUntil = 0;
        m_tokenizer.setPosition(aside.start);
        run();
        if (!m_pendingEnding && !m_paragraphIsEmpty) {
            m_pendingEnding = Ending {m_state.paragraph, m_state.character};
        }
    }
    m_state = main;
}

void RtfReader::handle(const RtfToken &token)
{
    switch (token.kind) {
    case RtfToken::Kind::GroupStart:
        startGroup();
        return;
    case RtfToken::Kind::GroupEnd:
        endGroup();
        return;
    case RtfToken::Kind::Word:
        word(token);
        break;
    case RtfToken::Kind::Symbol:
        symbol(token.byte);
        break;
    case RtfToken::Kind::Hex:
        hex(token.byte);
        break;
    case RtfToken::Kind::Text:
        text(token.text, token.isAscii);
        break;
    case RtfToken::Kind::Binary:
        binary(token.text);
        break;
    case RtfToken::Kind::End:
        break;
    }
    m_isFirstInGroup = m_isFirstInGroup && m_starred;
}

void RtfReader::skip(const RtfToken &token)
{
    if (token.kind == RtfToken::Kind::GroupStart) {
        ++m_skippedGroups;
    } else if (token.kind == RtfToken::Kind::GroupEnd && --m_skippedGroups == 0) {
        endGroup();
    }
}

void RtfReader::skipGroup()
{
    m_skippedGroups = 1;
}

void RtfReader::startGroup()
{
    flushBytes();
    m_fallbackLeft = 0;
    m_expectsPlaceholder = false;
    m_isFirstInGroup = true;
    m_starred = false;
    if (m_stack.size() >= deepest) {
        ++m_unsavedGroups;
        return;
    }
    const qsizetype start = m_tokenizer.position() - 1;
    const bool isOld = m_state.alternative == Alternative::Expected;
    if (isOld) {
        m_state.alternative = Alternative::Skipped;
        m_state.alternativeStart = start;
    }
    m_stack.push_back(m_state);
    m_state.alternative = Alternative::None;
    if (m_state.destination == Destination::Styles && ++m_state.styleDepth == 1) {
        m_state.character = RtfCharacter();
        m_state.paragraph = RtfParagraph();
        m_style = StyleHead();
    }
    if (isOld) {
        skipGroup();
    }
}

void RtfReader::endGroup()
{
    flushBytes();
    m_fallbackLeft = 0;
    m_isFirstInGroup = false;
    m_starred = false;
    m_expectsPlaceholder = false;
    if (m_unsavedGroups > 0) {
        --m_unsavedGroups;
        return;
    }
    if (m_state.alternative == Alternative::Skipped) {
        // The text in Unicode did not come: the one for old readers is all there is.
        m_state.alternative = Alternative::None;
        m_rewoundUntil = m_tokenizer.position();
        m_tokenizer.setPosition(m_state.alternativeStart);
        return;
    }
    if (m_stack.size() <= 1 && !m_isInAside) {
        endRoot();
        return;
    }
    if (m_stack.empty()) {
        m_isEnded = true;
        return;
    }
    flushText();
    const Destination left = m_state.destination;
    if (left == Destination::Styles && m_state.styleDepth == 1) {
        endStyle();
    }
    const bool endsField = m_state.field == m_stack.size();
    m_state = std::move(m_stack.back());
    m_stack.pop_back();
    if (left == Destination::Fonts) {
        m_tableReader.endFont();
    }
    if (left != m_state.destination) {
        endDestination(left);
    }
    if (endsField) {
        endField();
    }
}

void RtfReader::endDestination(Destination left)
{
    switch (left) {
    case Destination::Graphic:
        endGraphic();
        break;
    case Destination::Picture:
        endPicture();
        break;
    case Destination::FieldInstruction:
        endInstruction();
        break;
    case Destination::OldList:
        m_state.paragraph.list = m_listReader.endOld();
        m_state.paragraph.level = uchar(m_listReader.oldLevel());
        break;
    case Destination::Fonts:
    case Destination::Colours:
    case Destination::ExpandedColours:
    case Destination::Styles:
    case Destination::ListOverrides:
        m_state.codePage = m_tables.codePageOfFont(m_state.character.font);
        m_sink.tablesChanged();
        break;
    default:
        break;
    }
}

/// The outermost group keeps its state: braces that do not match are no reason to lose the rest.
void RtfReader::endRoot()
{
    if (m_rootIsClosed) {
        return;
    }
    m_rootIsClosed = true;
    const QByteArrayView rest = m_rtf.sliced(m_tokenizer.position());
    m_isEnded = !rest.contains('\\') && !rest.contains('}');
}

void RtfReader::endGraphic()
{
    if (m_attachment.name.endsWith(u' ')) {
        m_attachment.name.chop(1);
    }
    if (m_state.destination == Destination::Body && takesText()) {
        flushText();
        m_sink.attachment(m_attachment, m_state.character);
    }
    m_expectsPlaceholder = true;
}

void RtfReader::endPicture()
{
    const std::optional<RtfPicture> picture = m_pictureReader.take();
    const bool hasPlace =
        m_state.destination == Destination::Body || m_state.destination == Destination::Silent;
    if (!picture || !hasPlace) {
        return;
    }
    const Destination outer = std::exchange(m_state.destination, Destination::Body);
    if (takesText()) {
        flushText();
        m_sink.picture(*picture, m_state.character);
    }
    m_state.destination = outer;
}

void RtfReader::symbol(uchar byte)
{
    m_expectsPlaceholder = false;
    const bool startsGroup = m_isFirstInGroup;
    if (byte == '*') {
        m_starred = startsGroup && !m_stack.empty();
        return;
    }
    if (byte == '\n') {
        m_fallbackLeft = 0;
        paragraphEnd();
        return;
    }
    if (byte == '\'' || byte == '|' || byte == ':') {
        return;
    }
    if (m_fallbackLeft > 0) {
        --m_fallbackLeft;
        return;
    }
    if (byte == '~') {
        unit(QChar::Nbsp);
    } else if (byte == '-') {
        unit(QChar::SoftHyphen);
    } else if (byte == '_') {
        unit(0x2011);
    } else {
        const char c = char(byte);
        bytes(QByteArrayView(&c, 1), byte < 0x80);
    }
}

void RtfReader::hex(uchar byte)
{
    if (m_expectsPlaceholder && byte == placeholder) {
        m_expectsPlaceholder = false;
        return;
    }
    m_expectsPlaceholder = false;
    if (m_fallbackLeft > 0) {
        --m_fallbackLeft;
        return;
    }
    if (m_state.destination == Destination::Fonts && byte == ';') {
        unit(byte);
    } else if (m_state.destination == Destination::LevelText && byte < ' ') {
        unit(byte); // A place for a number, or the length.
    } else if (takesText()) {
        if (m_bytes.isEmpty() && m_state.codePage == windowsLatin
            && m_state.destination == Destination::Body) {
            m_text.append(fromWindowsLatin(byte));
        } else {
            m_bytes.append(char(byte));
        }
    }
}

void RtfReader::binary(QByteArrayView bytes)
{
    if (m_state.destination == Destination::Picture) {
        m_pictureReader.binary(bytes);
    }
}

void RtfReader::text(QByteArrayView bytes, bool isAscii)
{
    if (m_state.destination == Destination::Picture) {
        m_pictureReader.hex(bytes);
        return;
    }
    if (m_expectsPlaceholder && uchar(bytes[0]) == placeholder) {
        bytes = bytes.sliced(1);
    }
    m_expectsPlaceholder = false;
    const qsizetype skipped = std::min<qsizetype>(m_fallbackLeft, bytes.size());
    m_fallbackLeft -= int(skipped);
    this->bytes(bytes.sliced(skipped), isAscii);
}

void RtfReader::bytes(QByteArrayView bytes, bool isAscii)
{
    if (bytes.isEmpty() || !takesText()) {
        return;
    }
    // Behind a byte that waits even ASCII may be the second half of a character.
    if (m_bytes.isEmpty() && isAscii) {
        const qsizetype start = m_text.size();
        const qsizetype end = start + bytes.size();
        if (end > m_text.capacity()) {
            m_text.reserve(2
                           * end); // Of its own accord it would grow by no more than is asked for.
        }
        m_text.resize(end);
        std::transform(bytes.begin(), bytes.end(), m_text.begin() + start,
                       [](char c) { return uchar(c); });
    } else {
        m_bytes.append(bytes.data(), bytes.size());
    }
    if (m_text.size() > longestRun) {
        flushText();
    }
}

void RtfReader::unicode(int number)
{
    const int code = number < 0 ? number + 0x10000 : number;
    if (code >= 0 && code <= 0xffff) {
        unit(char16_t(code));
    } else if (code > 0xffff && code <= 0x10ffff) {
        unit(QChar::highSurrogate(char32_t(code)));
        unit(QChar::lowSurrogate(char32_t(code)));
    } else {
        unit(QChar::ReplacementCharacter);
    }
    m_fallbackLeft = m_state.fallbackLength;
}

void RtfReader::unit(char16_t unit)
{
    flushBytes();
    if (m_state.destination == Destination::Fonts) {
        flushText();
        m_tableReader.fontNameUnit(unit);
    } else if (takesText()) {
        m_text.append(unit);
    }
}

void RtfReader::append(QStringView text)
{
    if (takesText()) {
        m_text.append(text.utf16(), text.size());
    }
}

/// To be asked before each piece of text; makes true what was waiting for it.
bool RtfReader::takesText()
{
    if (m_state.destination != Destination::Body) {
        return m_state.destination != Destination::Silent
            && m_state.destination != Destination::Picture
            && (m_state.destination != Destination::Graphic || !m_attachmentIsNamed);
    }
    if (m_state.deleted) {
        return false;
    }
    if (m_pendingEnding) {
        m_sink.paragraphEnd(m_pendingEnding->paragraph, m_pendingEnding->character);
        m_pendingEnding.reset();
    }
    if (m_asideCells > 0) {
        flushBytes();
        for (; m_asideCells > 0; --m_asideCells) {
            m_text.append(u'\t');
        }
    }
    if (!m_label.isEmpty()) {
        settleLabel();
    }
    m_symbol.reset();
    m_paragraphIsEmpty = false;
    return true;
}

/// A label is text where the paragraph's list is not known: then nothing else shows it.
void RtfReader::settleLabel()
{
    if (m_label.isEmpty()) {
        return;
    }
    const QString label = std::exchange(m_label, QString());
    if (!m_tables.level(m_state.paragraph)) {
        flushText();
        m_sink.text(label, m_state.paragraph, m_labelCharacter);
        m_paragraphIsEmpty = false;
    }
}

void RtfReader::flushBytes()
{
    if (m_bytes.isEmpty()) {
        return;
    }
    int codePage = m_state.codePage;
    if (m_state.destination == Destination::Fonts) {
        codePage = m_tableReader.fontCodePage();
    } else if (m_state.destination == Destination::Graphic) {
        codePage = utf8Page;
    }
    m_decoded.resize(0);
    m_codePages.decode(codePage, m_bytes, m_decoded);
    m_bytes.resize(0);
    m_text.append(QStringView(m_decoded).utf16(), m_decoded.size());
}

void RtfReader::flushText()
{
    if (m_text.isEmpty()) {
        return;
    }
    const QStringView text(m_text);
    switch (m_state.destination) {
    case Destination::Body:
        m_sink.text(text, m_state.paragraph, m_state.character);
        break;
    case Destination::Fonts:
        m_tableReader.fontText(text);
        break;
    case Destination::Colours:
        m_tableReader.colourText(text);
        break;
    case Destination::ExpandedColours:
        m_tableReader.expandedColourText(text);
        break;
    case Destination::Styles:
        m_style.name.append(text.first(std::min(text.size(), longestName - m_style.name.size())));
        break;
    case Destination::LevelText:
        m_listReader.levelText(text);
        break;
    case Destination::FieldInstruction:
        m_instruction.append(text);
        break;
    case Destination::Label:
        m_labelCharacter = m_state.character;
        m_label.append(text);
        break;
    case Destination::OldListText:
        m_listReader.oldText(text, m_oldTextPlace);
        break;
    case Destination::InfoText:
        m_tables.info[m_infoWord].append(text);
        break;
    case Destination::Graphic:
        m_attachment.name.append(text);
        break;
    default:
        break;
    }
    m_text.clear();
}

} // namespace quorvane
