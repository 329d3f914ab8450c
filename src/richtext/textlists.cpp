#include "richtext/textlists.h"

#include "richtext/rtfformats.h"
#include "richtext/rtftables.h"

#include <QTextCursor>
#include <QTextList>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int bullet = 23; // Number of \levelnfc.
// The toolkit looks at all items of a list for each new one. Bullets do not mind another list;
// numbers would begin anew, so that long ones are parted only when they have cost their share.
constexpr int usualItems = 200;
constexpr qint64 mostVisits = 500'000;

} // namespace

bool TextLists::enter(const RtfParagraph &paragraph, const RtfTables &tables,
                      QTextBlockFormat &format)
{
    ++m_paragraph;
    m_needsList = false;
    const RtfListLevel *const level = tables.level(paragraph);
    if (!level) {
        m_lastOfLevel.front() = m_paragraph;
        return false;
    }
    for (int deeper = paragraph.level + 1; deeper <= deepestLevel; ++deeper) {
        m_open.remove({paragraph.list, deeper});
    }
    const auto open = m_open.find({paragraph.list, paragraph.level});
    const bool isBullet = level->kind == bullet;
    const bool isOld = paragraph.list < 0;
    const auto behindLevel =
        m_lastOfLevel.begin() + std::min<int>(paragraph.level, deepestLevel) + 1;
    const qsizetype lastUpHere = *std::max_element(m_lastOfLevel.begin(), behindLevel);
    *(behindLevel - 1) = m_paragraph;
    const bool isNext = open != m_open.end() && open->last == lastUpHere;
    const bool hasRoom =
        open != m_open.end() && (open->items < usualItems || (!isBullet && m_visits < mostVisits));
    const bool continues = hasRoom && (isNext || !(isBullet || isOld));
    if (!continues) {
        m_needsList = true;
        return true;
    }
    m_visits += ++open->items;
    open->last = m_paragraph;
    format.setObjectIndex(open->list->objectIndex());
    return true;
}

void TextLists::createFor(QTextCursor &cursor, const RtfParagraph &paragraph,
                          const RtfTables &tables)
{
    const RtfListLevel *const level = tables.level(paragraph);
    if (!level) {
        return;
    }
    QTextList *const list = cursor.createList(listFormatOf(*level, paragraph.level));
    m_open.insert({paragraph.list, paragraph.level}, {list, 1, m_paragraph});
    m_needsList = false;
}

} // namespace quorvane
