#pragma once

#include "richtext/rtfsink.h"

#include <QHash>
#include <QTextBlockFormat>

#include <array>

class QTextCursor;
class QTextList;

namespace quorvane {

class RtfTables;

/// Gives each item of a list its place in one of the document's lists. A level starts anew behind
/// an item of a higher one; where something else than deeper items stands between two items,
/// numbers go on and bullets do not.
class TextLists final
{
public:
    /// Counts a paragraph; to be called for each, in the order of the text.
    /// \return whether it is an item. The format then has its list, or createFor is to be called
    /// when the paragraph is there.
    bool enter(const RtfParagraph &paragraph, const RtfTables &tables, QTextBlockFormat &format);
    /// Makes the list of the paragraph that was entered last.
    void createFor(QTextCursor &cursor, const RtfParagraph &paragraph, const RtfTables &tables);

    bool needsList() const { return m_needsList; }

private:
    struct Open
    {
        QTextList *list;
        int items;
        qsizetype last; ///< The paragraph of the last item.
    };

    using Key = std::pair<int, int>; ///< List and level.
    static constexpr int deepestLevel = 8;

    QHash<Key, Open> m_open;
    qsizetype m_paragraph = 0;
    /// The last item of each level, of whatever list; a paragraph that is none counts as the first.
    std::array<qsizetype, deepestLevel + 1> m_lastOfLevel {};
    qint64 m_visits = 0; ///< Of items, by the toolkit.
    bool m_needsList = false;
};

} // namespace quorvane
