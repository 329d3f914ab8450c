#pragma once

#include <QStringView>

class QTextBlock;

namespace quorvane {

/// How much there is of a text.
struct TextCounts
{
    qint64 words = 0;
    qint64 characters = 0; ///< As a reader counts: a surrogate pair is one, no ends of paragraphs.
    qint64 paragraphs = 0; ///< Those with something in them.

    TextCounts &operator+=(const TextCounts &other);
    bool operator==(const TextCounts &) const = default;
};

/// The counts of one paragraph. A word is a run of letters, digits and marks; an apostrophe or a
/// hyphen between two letters belongs to it; each ideograph is a word.
TextCounts countsOf(QStringView paragraph);

} // namespace quorvane
