#pragma once

#include "richtext/rtfescape.h"

#include <QHash>

#include <vector>

class QTextList;
class QTextListFormat;

namespace quorvane {

/// The lists of a text: their table, and the place and marker of each item. Items come in the order
/// of the text. Each list of a document is a list of its own in the table, so that other programs
/// number its items as the document does.
class RtfLists final
{
public:
    explicit RtfLists(RtfEscaper::Fallback fallback)
        : m_fallback(fallback)
    { }

    struct Item
    {
        QByteArray place; ///< "\ls1\ilvl0".
        QByteArray marker; ///< The group that readers show who know no lists.
    };

    Item nextItem(const QTextList &list);

    /// The tables of lists; nothing where there is none.
    QByteArray tables() const;

    /// 1 for the outermost.
    static int indentOf(const QTextList &list);

private:
    struct Known
    {
        int number;
        int items = 0;
    };

    QByteArray definition(const QTextListFormat &format, int number) const;

    RtfEscaper::Fallback m_fallback;
    QHash<const QTextList *, Known> m_known;
    std::vector<QByteArray> m_definitions;
};

} // namespace quorvane
