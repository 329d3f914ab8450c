#include "editor/searchpattern.h"

#include <QTextBlock>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

// An attempt at one place of the text that needs more steps back than this is given up: there are
// expressions that would take years.
const auto stepLimit = u"(*LIMIT_MATCH=200000)"_s;
const auto wordBegin = u"(?<!\\w)(?:"_s;
const auto wordEnd = u")(?!\\w)"_s;

/// Lone halves of a pair would have to be looked for in each attempt anew.
QString withoutLoneSurrogates(QString text)
{
    if (text.isValidUtf16()) {
        return text;
    }
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPair =
            text.at(i).isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (text.at(i).isSurrogate()) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
    return text;
}

bool namesLineEnd(const QString &expression)
{
    for (qsizetype i = 0; i + 1 < expression.size(); ++i) {
        if (expression.at(i) == u'\\' && expression.at(++i) == u'n') {
            return true;
        }
    }
    return false;
}

} // namespace

SearchPattern::SearchPattern(const QString &words, const SearchOptions &options)
    : m_words(words)
    , m_options(options)
    , m_asksForParagraphs(options.isExpression && namesLineEnd(words))
{
    QString expression = options.isExpression ? words : QRegularExpression::escape(words);
    QString prefix = options.isExpression ? stepLimit : QString();
    if (options.wholeWords) {
        prefix += wordBegin;
        expression += wordEnd;
    }
    m_prefixLength = int(prefix.size());
    QRegularExpression::PatternOptions flags =
        QRegularExpression::UseUnicodePropertiesOption | QRegularExpression::MultilineOption;
    flags.setFlag(QRegularExpression::CaseInsensitiveOption, !options.matchCase);
    m_expression = QRegularExpression(prefix + expression, flags);
}

QString SearchPattern::error() const
{
    if (isEmpty() || m_expression.isValid()) {
        return {};
    }
    QString what = m_expression.errorString();
    if (!what.isEmpty()) {
        what[0] = what.at(0).toUpper();
    }
    const auto place =
        qBound(0, int(m_expression.patternErrorOffset()) - m_prefixLength, int(m_words.size()));
    return place >= m_words.size() ? u"%1, at the end"_s.arg(what)
                                   : u"%1, at character %2"_s.arg(what).arg(place + 1);
}

QString SearchPattern::subject(const QTextBlock &block) const
{
    QString text = withoutLoneSurrogates(block.text());
    text.replace(QChar::LineSeparator, u'\n');
    if (!m_options.isExpression && !m_words.contains(QChar::Nbsp)) {
        text.replace(QChar::Nbsp, u' '); // nobody sees the difference
    }
    return text;
}

QRegularExpressionMatch SearchPattern::match(const QString &subject, int from,
                                             bool isAnchored) const
{
    QRegularExpression::MatchOptions options =
        QRegularExpression::DontCheckSubjectStringMatchOption;
    options.setFlag(QRegularExpression::AnchorAtOffsetMatchOption, isAnchored);
    return m_expression.match(subject, from, QRegularExpression::NormalMatch, options);
}

SearchPattern::Result SearchPattern::find(const QString &subject, int from) const
{
    if (isEmpty() || !m_expression.isValid()) {
        return {};
    }
    while (from < subject.size()) {
        const QRegularExpressionMatch found = match(subject, from, false);
        if (!found.hasMatch()) {
            return {found.isValid() ? Effort::NotFound : Effort::TooMuch};
        }
        const TextSpan span {int(found.capturedStart()), int(found.capturedLength())};
        if (span.length > 0) {
            return {Effort::Found, span};
        }
        const bool isPair = span.from < subject.size() && subject.at(span.from).isHighSurrogate();
        from = span.from + (isPair ? 2 : 1);
    }
    return {};
}

SearchPattern::Result SearchPattern::findAt(const QString &subject, int from) const
{
    const bool isWithinPair =
        from > 0 && from < subject.size() && subject.at(from).isLowSurrogate();
    if (isEmpty() || !m_expression.isValid() || isWithinPair) {
        return {};
    }
    const QRegularExpressionMatch found = match(subject, from, true);
    if (!found.hasMatch()) {
        return {found.isValid() ? Effort::NotFound : Effort::TooMuch};
    }
    const TextSpan span {int(found.capturedStart()), int(found.capturedLength())};
    return {span.length > 0 ? Effort::Found : Effort::NotFound, span};
}

QString SearchPattern::replacement(const QString &subject, const TextSpan &found,
                                   const QString &with) const
{
    if (!m_options.isExpression) {
        return with;
    }
    const QRegularExpressionMatch groups = match(subject, found.from, true);
    QString text;
    for (qsizetype i = 0; i < with.size(); ++i) {
        const QChar mark = with.at(i);
        const QChar next = i + 1 < with.size() ? with.at(i + 1) : QChar();
        const bool isGroup = next >= u'0' && next <= u'9';
        if ((mark == u'\\' || mark == u'$') && isGroup) {
            // All of it also where \K has hidden what leads to it.
            QString group = next == u'0' ? subject.sliced(found.from, found.length)
                                         : groups.captured(next.digitValue());
            text += group.replace(u'\n', QChar::LineSeparator);
        } else if (mark == u'\\' && next == u'n') {
            text += u'\n';
        } else if (mark == u'\\' && next == u't') {
            text += u'\t';
        } else if ((mark == u'\\' || mark == u'$') && next == mark) {
            text += mark;
        } else {
            text += mark;
            continue;
        }
        ++i;
    }
    return text;
}

} // namespace quorvane
