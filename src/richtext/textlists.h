#pragma once

#include "richtext/rtfsink.h"

#include <QHash>
#include <QTextBlockFormat>

#include <optional>

class QTextCursor;
class QTextList;

namespace quorvane {

class RtfTables;

/// Gives each item of a list its place in one of the document's lists. A level starts anew behind
/// an item of a higher one; where something else stands between two items, numbers go on.
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
    };

    using Key = std::pair<int, int>; ///< List and level.

    QHash<Key, Open> m_open;
    QHash<int, qsizetype> m_last; ///< The last paragraph of each list, on whatever level.
    qsizetype m_paragraph = 0;
    qint64 m_visits = 0; ///< Of items, by the toolkit.
    bool m_needsList = false;
};

} // namespace quorvane
