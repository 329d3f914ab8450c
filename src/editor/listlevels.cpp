#include "editor/listlevels.h"

#include "editor/paragraphformats.h"
#include "richtext/listmarks.h"
#include "richtext/textproperties.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int mostSearched = 2000; // paragraphs above, for a list to go on with

// The toolkit looks at all items of a list for each that comes or goes. Longer ones are parted:
// bullets do not mind, and numbers go on.
constexpr int mostBullets = 200;
constexpr int mostNumbers = 1000;

QTextListFormat::Style usualKind(ListLook look, int level)
{
    constexpr QTextListFormat::Style bullets[] = {
        QTextListFormat::ListDisc, QTextListFormat::ListCircle, QTextListFormat::ListSquare};
    constexpr QTextListFormat::Style numbers[] = {QTextListFormat::ListDecimal,
                                                  QTextListFormat::ListLowerAlpha,
                                                  QTextListFormat::ListLowerRoman};
    const int step = (level - 1) % 3;
    return look == ListLook::Numbers ? numbers[step] : bullets[step];
}

int levelOf(const QTextBlock &block)
{
    const QTextList *list = block.textList();
    return list ? std::max(list->format().indent(), 1) : 0;
}

/// Where the numbers begin is no matter of looks.
bool looksSame(const QTextListFormat &one, const QTextListFormat &other)
{
    return listKind(one) == listKind(other) && one.indent() == other.indent()
        && one.stringProperty(ListMarker) == other.stringProperty(ListMarker)
        && one.stringProperty(ListLevelText) == other.stringProperty(ListLevelText)
        && one.numberPrefix() == other.numberPrefix()
        && numberSuffixOf(one) == numberSuffixOf(other);
}

/// The item of a list of that look beside a paragraph, with deeper items at most between.
QTextBlock neighbour(const QTextBlock &block, const QTextListFormat &format, bool above)
{
    QTextBlock candidate = above ? block.previous() : block.next();
    while (candidate.isValid() && levelOf(candidate) > format.indent()) {
        candidate = above ? candidate.previous() : candidate.next();
    }
    const bool isLevel = candidate.isValid() && levelOf(candidate) == format.indent();
    const bool isNeighbour = isLevel && areInOnePlace(block, candidate)
        && looksSame(candidate.textList()->format(), format);
    return isNeighbour ? candidate : QTextBlock();
}

QList<QTextBlock> itemsFrom(const QTextList &list, int position)
{
    QList<QTextBlock> items;
    for (int index = 0; index < list.count(); ++index) {
        if (const QTextBlock item = list.item(index); item.position() >= position) {
            items.append(item);
        }
    }
    return items;
}

void moveTo(QTextList &list, const QList<QTextBlock> &items)
{
    for (const QTextBlock &item : items) {
        list.add(item);
    }
}

bool hasRoomFor(const QTextList *list, int items)
{
    const bool counts = list && isNumbered(listKind(list->format()));
    return list && list->count() + items <= (counts ? mostNumbers : mostBullets);
}

/// A list that goes on behind another one.
void createBehind(const QTextBlock &block, const QTextListFormat &format, const QTextList *full)
{
    QTextListFormat fresh = format;
    if (full && isNumbered(listKind(format))) {
        fresh.setProperty(ListStart, listStartOf(full->format()) + full->count());
        setListKind(fresh, listKind(format));
    }
    QTextCursor(block).createList(fresh);
}

/// A list of its own for items that have another one.
void part(const QList<QTextBlock> &items, const QTextListFormat &format)
{
    QTextListFormat fresh = format;
    const QTextListFormat::Style kind = listKind(format);
    fresh.clearProperty(ListStart);
    setListKind(fresh, kind);
    moveTo(*QTextCursor(items.first()).createList(fresh), items);
}

/// Behind an item of a higher level, deeper ones begin anew.
void partDeeper(const QTextBlock &block)
{
    const int level = levelOf(block);
    QTextBlock next = block.next();
    for (; next.isValid() && levelOf(next) > level; next = next.next()) {
        const QTextList &list = *next.textList();
        if (list.item(0).position() < block.position()) {
            part(itemsFrom(list, next.position()), list.format());
        }
    }
}

} // namespace

QTextListFormat newListFormat(ListLook look, int level)
{
    if (look == ListLook::Checks) {
        return markedListFormat(uncheckedMark, level);
    }
    QTextListFormat format;
    format.setIndent(level);
    setListKind(format, usualKind(look, level));
    return format;
}

QTextListFormat markedListFormat(char16_t marker, int level)
{
    QTextListFormat format;
    format.setIndent(level);
    format.setProperty(ListMarker, QString(QChar(marker)));
    setListKind(format, QTextListFormat::ListDisc);
    return format;
}

ListLook listLookOf(const QTextListFormat &format)
{
    const QString marker = format.stringProperty(ListMarker);
    if (isNumbered(listKind(format))) {
        return ListLook::Numbers;
    }
    return marker == QChar(uncheckedMark) || marker == QChar(checkedMark) ? ListLook::Checks
                                                                          : ListLook::Bullets;
}

bool isChecklistItem(const QTextBlock &block)
{
    const QTextList *list = block.textList();
    return list && listLookOf(list->format()) == ListLook::Checks;
}

bool isDone(const QTextBlock &block)
{
    return isChecklistItem(block)
        && block.textList()->format().stringProperty(ListMarker) == QChar(checkedMark);
}

void setDone(const QTextBlock &block, bool done)
{
    if (isChecklistItem(block) && isDone(block) != done) {
        addToList(block, markedListFormat(done ? checkedMark : uncheckedMark, levelOf(block)));
    }
}

void addToList(const QTextBlock &block, const QTextListFormat &format)
{
    if (!block.textList()) {
        changeBlock(block, [](QTextBlockFormat &changed) {
            setIndents(changed, 0, 0);
            changed.setIndent(0);
            changed.clearProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
        });
    }
    QTextList *above = neighbour(block, format, true).textList();
    QTextList *below = neighbour(block, format, false).textList();
    if (above && (above == below || hasRoomFor(above, 1))) {
        above->add(block);
        if (below && below != above && hasRoomFor(above, below->count())) {
            moveTo(*above, itemsFrom(*below, 0));
        }
    } else if (hasRoomFor(below, 1)) {
        below->add(block);
    } else {
        createBehind(block, format, above);
    }
    partDeeper(block);
}

void addToNumberedList(const QTextBlock &block, const QTextListFormat &format, int number)
{
    const QTextBlock above = neighbour(block, format, true);
    const QTextList *list = above.textList();
    const int next = list ? listStartOf(list->format()) + list->itemNumber(above) + 1 : 1;
    addToList(block, format);
    if (next == number) {
        return;
    }
    QTextListFormat numbered = format;
    numbered.setProperty(ListStart, number);
    setListKind(numbered, listKind(format));
    moveTo(*QTextCursor(block).createList(numbered), {block});
}

void leaveList(const QTextBlock &block, LeftPlace place)
{
    const int level = levelOf(block);
    if (level == 0) {
        return;
    }
    changeBlock(block, [=, &block](QTextBlockFormat &format) {
        format.setObjectIndex(-1);
        format.clearProperty(ListFirstIndent);
        format.setIndent(0);
        const double indent = level * block.document()->indentWidth();
        setIndents(format, place == LeftPlace::Kept ? format.leftMargin() + indent : 0, 0);
    });
    partDeeper(block);
}

void changeListLevel(const QTextBlock &block, int by)
{
    const int level = levelOf(block);
    const int next = std::min(level + by, deepestListLevel);
    if (level == 0 || next == level) {
        return;
    }
    if (next < 1) {
        leaveList(block, LeftPlace::Margin);
        return;
    }
    QTextListFormat format = block.textList()->format();
    const ListLook look = listLookOf(format);
    const QTextListFormat::Style kind = listKind(format);
    format.setIndent(next);
    format.clearProperty(ListStart);
    const bool isUsual = look != ListLook::Checks && !format.hasProperty(ListMarker)
        && kind == usualKind(look, level);
    setListKind(format, isUsual ? usualKind(look, next) : kind);
    addToList(block, format);
}

void restartNumbers(const QTextBlock &block)
{
    if (const QTextList *list = block.textList()) {
        part(itemsFrom(*list, block.position()), list->format());
    }
}

bool continueNumbers(const QTextBlock &block)
{
    QTextList *list = block.textList();
    QTextBlock above = block.previous();
    for (int searched = 0; list && above.isValid() && searched < mostSearched; ++searched) {
        QTextList *earlier = above.textList();
        if (earlier && earlier != list && looksSame(earlier->format(), list->format())) {
            moveTo(*earlier, itemsFrom(*list, block.position()));
            return true;
        }
        above = above.previous();
    }
    return false;
}

} // namespace quorvane
