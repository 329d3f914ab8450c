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

/// The counts of one paragraph. Words are parted by blanks and dashes, and have a letter or a digit
/// in them; each ideograph is a word.
TextCounts countsOf(QStringView paragraph);

} // namespace quorvane
