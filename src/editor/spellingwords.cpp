#include "editor/spellingwords.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr char16_t softHyphen = 0x00ad;
constexpr char16_t apostrophe = 0x2019;
constexpr int longestWord = 80; // what is longer is no word

bool isLetter(QChar c)
{
    return c.isLetter() || c.isMark() || c == softHyphen;
}

bool isOfWord(QChar c)
{
    return isLetter(c) || c.isDigit() || c == u'_';
}

/// Between letters it is a part of the word.
bool joins(QChar c)
{
    return c == u'\'' || c == apostrophe || c == u'.';
}

bool isWithoutSpaces(QChar c)
{
    switch (c.script()) {
    case QChar::Script_Han:
    case QChar::Script_Hiragana:
    case QChar::Script_Katakana:
    case QChar::Script_Thai:
    case QChar::Script_Lao:
    case QChar::Script_Khmer:
    case QChar::Script_Myanmar:
        return true;
    default:
        return false;
    }
}

bool isAddress(QStringView token)
{
    return token.contains("://"_L1) || token.contains(u'@') || token.contains(u'\\')
        || token.startsWith("www."_L1, Qt::CaseInsensitive) || token.startsWith(u'/')
        || token.startsWith("~/"_L1);
}

bool isToCheck(QStringView word)
{
    if (word.size() < 2 || word.size() > longestWord) {
        return false;
    }
    const bool isPlain = std::all_of(word.begin(), word.end(), [](QChar c) {
        return (isLetter(c) && !isWithoutSpaces(c)) || c == u'\'' || c == apostrophe;
    });
    return isPlain && std::any_of(word.begin(), word.end(), [](QChar c) { return c.isLower(); });
}

void addWords(QStringView token, int at, const TextSpan &within, std::vector<TextSpan> &words)
{
    if (isAddress(token)) {
        return;
    }
    for (int from = 0; from < token.size() && at + from <= within.end();) {
        if (!isOfWord(token.at(from))) {
            ++from;
            continue;
        }
        int to = from + 1;
        while (
            to < token.size()
            && (isOfWord(token.at(to))
                || (joins(token.at(to)) && to + 1 < token.size() && isOfWord(token.at(to + 1))))) {
            ++to;
        }
        if (at + to >= within.from && isToCheck(token.mid(from, to - from))) {
            words.push_back({at + from, to - from});
        }
        from = to;
    }
}

} // namespace

std::vector<TextSpan> wordsToCheck(const QString &paragraph, const TextSpan &within)
{
    const QStringView text(paragraph);
    int from = std::clamp(within.from, 0, int(text.size()));
    while (from > 0 && !text.at(from - 1).isSpace()) {
        --from;
    }
    std::vector<TextSpan> words;
    while (from < text.size() && from <= within.end()) {
        if (text.at(from).isSpace()) {
            ++from;
            continue;
        }
        int to = from;
        while (to < text.size() && !text.at(to).isSpace()) {
            ++to;
        }
        addWords(text.mid(from, to - from), from, within, words);
        from = to;
    }
    return words;
}

QString dictionaryForm(const QString &word)
{
    QString form = word.normalized(QString::NormalizationForm_C);
    form.remove(QChar(softHyphen));
    form.replace(QChar(apostrophe), u'\'');
    return form;
}

} // namespace quorvane
