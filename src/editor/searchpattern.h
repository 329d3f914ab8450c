#pragma once

#include "editor/textspan.h"

#include <QRegularExpression>
#include <QString>

class QTextBlock;

namespace quorvane {

struct SearchOptions
{
    bool matchCase = false;
    bool wholeWords = false;
    bool isExpression = false; ///< A regular one.
    bool operator==(const SearchOptions &) const = default;
};

/// What is looked for in the paragraphs of a text, each for itself.
class SearchPattern final
{
public:
    enum class Effort { Found, NotFound, TooMuch };

    struct Result
    {
        Effort effort = Effort::NotFound;
        TextSpan span = {};
    };

    /// Finds nothing.
    SearchPattern() = default;
    SearchPattern(const QString &words, const SearchOptions &options);

    bool isEmpty() const { return m_words.isEmpty(); }

    /// What is wrong with the expression, and where; empty where nothing is.
    QString error() const;

    /// It asks for more than one paragraph in one match, which is never found.
    bool asksForParagraphs() const { return m_asksForParagraphs; }

    /// Finding may cost more than the length of a paragraph tells.
    bool isCostly() const { return m_options.isExpression; }

    /// The paragraph as the pattern sees it, as many units long.
    QString subject(const QTextBlock &block) const;

    /// The first match that is not empty and does not begin before \a from.
    Result find(const QString &subject, int from) const;
    /// One that begins there.
    Result findAt(const QString &subject, int from) const;
    /// What \a with stands for in the place of a match. Expressions have \\0 to \\9 and $0 to $9
    /// for what the groups matched, and \\n and \\t.
    QString replacement(const QString &subject, const TextSpan &match, const QString &with) const;

private:
    QRegularExpressionMatch match(const QString &subject, int from, bool isAnchored) const;

    QString m_words;
    SearchOptions m_options;
    QRegularExpression m_expression;
    int m_prefixLength = 0; // of the expression, before the words
    bool m_asksForParagraphs = false;
};

} // namespace quorvane
