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

    /// "\ls1\ilvl0".
    const QByteArray &placeIn(const QTextList &list) { return known(list).place; }

    /// The group that readers show who know no lists, for the next item of the list.
    void appendMarker(QByteArray &out, const QTextList &list);

    /// The tables of lists; nothing where there is none.
    QByteArray tables() const;

    /// 1 for the outermost.
    static int indentOf(const QTextList &list);

private:
    struct Known
    {
        QByteArray place;
        QByteArray beforeNumber; ///< Of the marker; all of it where there is no number.
        QByteArray behindNumber;
        int style; ///< Of QTextListFormat.
        int next; ///< The number of the next item.
    };

    Known &known(const QTextList &list);
    Known makeKnown(const QTextListFormat &format);

    QByteArray definition(const QTextListFormat &format, int number) const;

    RtfEscaper::Fallback m_fallback;
    QHash<const QTextList *, Known> m_known;
    std::vector<QByteArray> m_definitions;
};

} // namespace quorvane
