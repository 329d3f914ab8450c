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

/// Dashes do so without blanks around them, too.
bool partsWords(char32_t character)
{
    return QChar::isSpace(character) || character == U'\u2013' || character == U'\u2014';
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
        if (isIdeograph(character)) {
            ++counts.words;
            isInWord = false;
        } else if (partsWords(character)) {
            isInWord = false;
        } else if (!isInWord && QChar::isLetterOrNumber(character)) {
            ++counts.words;
            isInWord = true;
        }
    }
    counts.paragraphs = hasContent ? 1 : 0;
    return counts;
}

} // namespace quorvane
