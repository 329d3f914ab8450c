#pragma once

#include "editor/searchpattern.h"

#include <QTextBlock>

#include <chrono>
#include <optional>
#include <vector>

namespace quorvane {

/// Finds all matches in a document, a slice of time after the other. It begins where the caret is
/// and goes round, so that what lies next is known first. An edit makes it worthless: it must be
/// stopped then and begun anew.
class TextSearch final
{
public:
    enum class State { Idle, Running, Complete, TooMuch };
    enum class Direction { Forward, Backward };

    /// Where the way from a place leads.
    struct Way
    {
        std::optional<TextSpan> match; ///< Nothing where there is none.
        bool wraps = false;
    };

    /// \a within, where given, holds every match completely. The document must stay as it is.
    void begin(const QTextDocument &document, const SearchPattern &pattern, int from,
               const std::optional<TextSpan> &within);
    void stop();

    /// Goes on for that long, about. \return whether there is more to do.
    bool advance(std::chrono::milliseconds budget);

    State state() const { return m_state; }

    /// Matches that begin in the span, of those that are found so far.
    std::vector<TextSpan> matchesIn(const TextSpan &span) const;

    /// To the next match that begins at \a position or behind it, or to the last one that ends
    /// there or before. Nothing while it is not known.
    std::optional<Way> way(Direction direction, int position) const;

    /// All, in their order, once it is complete.
    const std::vector<TextSpan> &matches() const { return m_early; }

private:
    bool searchParagraph(const std::chrono::steady_clock::time_point &end);
    SearchPattern::Result findFrom(int from, const std::chrono::steady_clock::time_point &end);
    void note(const TextSpan &match);
    void nextParagraph();
    std::optional<Way> wayForward(int position) const;
    Way wayBackward(int position) const;

    SearchPattern m_pattern;
    State m_state = State::Idle;
    TextSpan m_within;
    QTextBlock m_begin; // where it began, and where it will end
    QTextBlock m_first;
    QTextBlock m_last;
    QTextBlock m_block;
    QString m_subject; // of the block
    int m_offset = 0; // in it
    bool m_hasWrapped = false;
    std::vector<TextSpan> m_late; // from where it began to the end of the text
    std::vector<TextSpan> m_early; // before; everything in the end
};

} // namespace quorvane
