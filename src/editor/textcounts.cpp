#include "editor/textcounts.h"

#include <QChar>

namespace quorvane {

namespace {

bool isIdeograph(char32_t character)
{
    switch (QChar::script(character)) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
        return true;
    default:
        return false;
    }
}

bool joins(char32_t character)
{
    return character == U'\'' || character == U'-' || character == U'\u2019'
        || character == U'\u00ad' || character == U'\u2011';
}

} // namespace

TextCounts &TextCounts::operator+=(const TextCounts &other)
{
    words += other.words;
    characters += other.characters;
    paragraphs += other.paragraphs;
    return *this;
}

TextCounts countsOf(QStringView paragraph)
{
    TextCounts counts;
    bool isInWord = false;
    bool mayJoin = false; // the last character was one that only letters make part of a word
    bool hasContent = false;
    for (qsizetype index = 0; index < paragraph.size(); ++index) {
        char32_t character = paragraph.at(index).unicode();
        if (QChar::isHighSurrogate(character) && index + 1 < paragraph.size()
            && paragraph.at(index + 1).isLowSurrogate()) {
            ++index;
            character = QChar::surrogateToUcs4(char16_t(character), paragraph.at(index).unicode());
        }
        ++counts.characters;
        hasContent = hasContent || !QChar::isSpace(character);
        const bool isLetter = QChar::isLetterOrNumber(character) || QChar::isMark(character);
        if (isLetter && (isIdeograph(character) || (!isInWord && !mayJoin))) {
            ++counts.words;
        }
        mayJoin = isInWord && joins(character);
        isInWord = isLetter && !isIdeograph(character);
        if (isLetter) {
            mayJoin = false;
        }
    }
    counts.paragraphs = hasContent ? 1 : 0;
    return counts;
}

} // namespace quorvane
