#include "editor/textsearch.h"

#include <QTextDocument>

#include <algorithm>

namespace quorvane {

namespace {

using Clock = std::chrono::steady_clock;

// A longer paragraph is not given to an expression in one piece: nobody could tell how long it
// takes.
constexpr int longParagraph = 1000;
constexpr int attemptsBetweenLooks = 32; // at the clock

bool beginsBefore(const TextSpan &match, int position)
{
    return match.from < position;
}

} // namespace

void TextSearch::begin(const QTextDocument &document, const SearchPattern &pattern, int from,
                       const std::optional<TextSpan> &within)
{
    stop();
    m_pattern = pattern;
    if (pattern.isEmpty() || !pattern.error().isEmpty()) {
        m_state = State::Complete;
        return;
    }
    m_within = within.value_or(TextSpan {0, document.characterCount()});
    m_first = document.findBlock(m_within.from);
    m_last = document.findBlock(m_within.end());
    if (!m_last.isValid()) {
        m_last = document.lastBlock();
    }
    m_begin = document.findBlock(qBound(m_within.from, from, m_within.end()));
    if (!m_begin.isValid()) {
        m_begin = m_last;
    }
    m_block = m_begin;
    m_subject = m_pattern.subject(m_block);
    m_state = State::Running;
}

void TextSearch::stop()
{
    m_state = State::Idle;
    m_subject.clear();
    m_offset = 0;
    m_hasWrapped = false;
    m_late.clear();
    m_early.clear();
}

bool TextSearch::advance(std::chrono::milliseconds budget)
{
    const Clock::time_point end = Clock::now() + budget;
    while (m_state == State::Running) {
        if (searchParagraph(end)) {
            nextParagraph();
        }
        if (Clock::now() >= end) {
            break;
        }
    }
    return m_state == State::Running;
}

/// \return whether the paragraph is done.
bool TextSearch::searchParagraph(const Clock::time_point &end)
{
    for (int attempts = 1;; ++attempts) {
        const SearchPattern::Result result = findFrom(m_offset, end);
        if (result.effort == SearchPattern::Effort::TooMuch) {
            m_state = State::TooMuch;
            return false;
        }
        if (result.effort == SearchPattern::Effort::NotFound) {
            return m_offset >= m_subject.size();
        }
        note({m_block.position() + result.span.from, result.span.length});
        m_offset = result.span.end();
        if (attempts % attemptsBetweenLooks == 0 && Clock::now() >= end) {
            return false;
        }
    }
}

/// Leaves the offset where the search has to go on if nothing was found.
SearchPattern::Result TextSearch::findFrom(int from, const Clock::time_point &end)
{
    if (!m_pattern.isCostly() || m_subject.size() <= longParagraph) {
        const SearchPattern::Result result = m_pattern.find(m_subject, from);
        m_offset = int(m_subject.size());
        return result;
    }
    for (int attempts = 1; from < m_subject.size(); ++attempts, ++from) {
        const SearchPattern::Result result = m_pattern.findAt(m_subject, from);
        if (result.effort != SearchPattern::Effort::NotFound) {
            return result;
        }
        if (attempts % attemptsBetweenLooks == 0 && Clock::now() >= end) {
            ++from;
            break;
        }
    }
    m_offset = from;
    return {};
}

void TextSearch::note(const TextSpan &match)
{
    if (match.from >= m_within.from && match.end() <= m_within.end()) {
        (m_hasWrapped ? m_early : m_late).push_back(match);
    }
}

void TextSearch::nextParagraph()
{
    if (m_block == m_last) {
        m_hasWrapped = true;
        m_block = m_first;
    } else {
        m_block = m_block.next();
    }
    if (m_block == m_begin) {
        m_state = State::Complete;
        m_early.insert(m_early.end(), m_late.begin(), m_late.end());
        m_late.clear();
        m_subject.clear();
        return;
    }
    m_subject = m_pattern.subject(m_block);
    m_offset = 0;
}

std::vector<TextSpan> TextSearch::matchesIn(const TextSpan &span) const
{
    std::vector<TextSpan> found;
    for (const std::vector<TextSpan> *matches : {&m_early, &m_late}) {
        const auto first =
            std::lower_bound(matches->begin(), matches->end(), span.from, beginsBefore);
        const auto last = std::lower_bound(first, matches->end(), span.end(), beginsBefore);
        found.insert(found.end(), first, last);
    }
    return found;
}

std::optional<TextSearch::Way> TextSearch::way(Direction direction, int position) const
{
    if (direction == Direction::Forward) {
        return wayForward(position);
    }
    return m_state == State::Complete ? std::optional(wayBackward(position)) : std::nullopt;
}

std::optional<TextSearch::Way> TextSearch::wayForward(int position) const
{
    const bool isComplete = m_state == State::Complete;
    const std::vector<TextSpan> &behind = isComplete ? m_early : m_late;
    // What lies before the paragraph where it began is looked at last.
    if (isComplete || position >= m_begin.position()) {
        const auto next = std::lower_bound(behind.begin(), behind.end(), position, beginsBefore);
        if (next != behind.end()) {
            return Way {*next, false};
        }
    }
    if (isComplete) {
        return m_early.empty() ? Way() : Way {m_early.front(), true};
    }
    if (m_hasWrapped && !m_early.empty() && position >= m_begin.position()) {
        return Way {m_early.front(), true};
    }
    return std::nullopt;
}

TextSearch::Way TextSearch::wayBackward(int position) const
{
    const auto behind =
        std::find_if(m_early.rbegin(), m_early.rend(),
                     [position](const TextSpan &match) { return match.end() <= position; });
    if (behind != m_early.rend()) {
        return {*behind, false};
    }
    return m_early.empty() ? Way() : Way {m_early.back(), true};
}

} // namespace quorvane
