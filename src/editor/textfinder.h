#pragma once

#include "editor/textsearch.h"
#include "editor/visiblemarks.h"

#include <QObject>
#include <QTextCursor>
#include <QTimer>

#include <optional>

namespace quorvane {

class TextEditor;

/// Finds and replaces in the text of an editor. It never keeps a key waiting: what takes long goes
/// on in slices, and what was asked for happens when its place is known.
class TextFinder final : public QObject
{
    Q_OBJECT

public:
    using Direction = TextSearch::Direction;

    TextFinder(TextEditor &editor, VisibleMarks &marks);

    /// Looks for this from now on, without moving the caret.
    void setPattern(const SearchPattern &pattern);

    const SearchPattern &pattern() const { return m_pattern; }

    /// Marks every match in view.
    void setMarking(bool marks);
    /// Only what lies there is found and replaced; the range follows the edits. Nothing for all.
    void setRange(const std::optional<QTextCursor> &range);

    bool hasRange() const { return m_range.has_value(); }

    /// Selects the next match from the selection on.
    void find(Direction direction);
    /// Selects the first match from the beginning of the selection on.
    void findHere();
    /// Replaces the selection if it is a match, in one step of undo, and selects the next one.
    void replace(const QString &with);
    /// Replaces all matches, in one step of undo.
    void replaceAll(const QString &with);

    struct Standing
    {
        TextSearch::State state = TextSearch::State::Idle;
        int count = 0; ///< Once the search is complete.
        int current = 0; ///< The number of the selected match, from 1 on; 0 where none is.
        bool wrapped = false; ///< On the way to the selected one.
    };

    Standing standing() const;

    /// Forgets pattern, range and all that was found.
    void clear();

signals:
    void standingChanged();
    /// The outcome of a command, in words.
    void told(const QString &words);

private:
    struct Errand
    {
        Direction direction;
        int position;
    };

    void seek(const Errand &errand);
    void restart();
    void goOn();
    void runErrands();
    void select(const TextSpan &match);
    std::optional<TextSpan> selectedMatch() const;
    void replaceFound(const QString &with);
    void invalidate();
    void mark(VisibleMarks::Marks &marks);

    TextEditor &m_editor;
    VisibleMarks &m_marks;
    SearchPattern m_pattern;
    TextSearch m_search;
    QTimer m_slices;
    std::optional<QTextCursor> m_range;
    std::optional<Errand> m_errand;
    std::optional<QString> m_replaceAll; // as soon as all are known
    bool m_isMarking = false;
    bool m_hasWrapped = false;
};

} // namespace quorvane
