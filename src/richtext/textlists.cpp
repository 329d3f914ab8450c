#include "richtext/textlists.h"

#include "richtext/rtfformats.h"
#include "richtext/rtftables.h"

#include <QTextCursor>
#include <QTextList>

namespace quorvane {

namespace {

constexpr int bullet = 23; // Number of \levelnfc.
constexpr int deepestLevel = 8;
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
        return false;
    }
    for (int deeper = paragraph.level + 1; deeper <= deepestLevel; ++deeper) {
        m_open.remove({paragraph.list, deeper});
    }
    const auto open = m_open.find({paragraph.list, paragraph.level});
    const bool isBullet = level->kind == bullet;
    const bool isOld = paragraph.list < 0;
    qsizetype &last = m_last[paragraph.list];
    const bool isNext = last + 1 == m_paragraph;
    last = m_paragraph;
    const bool hasRoom =
        open != m_open.end() && (open->items < usualItems || (!isBullet && m_visits < mostVisits));
    const bool continues = hasRoom && (isNext || !(isBullet || isOld));
    if (!continues) {
        m_needsList = true;
        return true;
    }
    m_visits += ++open->items;
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
    m_open.insert({paragraph.list, paragraph.level}, {list, 1});
    m_needsList = false;
}

} // namespace quorvane
