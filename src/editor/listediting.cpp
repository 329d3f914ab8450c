#include "editor/listediting.h"

#include "editor/listlevels.h"
#include "editor/listmarkpainter.h"
#include "editor/paragraphformats.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "richtext/listmarks.h"
#include "richtext/textproperties.h"

#include <QAction>
#include <QActionGroup>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextList>

#include <algorithm>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr char16_t dash = u'\u2043';
constexpr char16_t check = u'\u2713';

struct StyleRow
{
    QTextListFormat::Style kind;
    char16_t marker; // 0 where the kind says all
    const char16_t *title;
};

constexpr StyleRow bulletStyles[] = {
    {QTextListFormat::ListDisc, 0, u"•  Disc"},
    {QTextListFormat::ListCircle, 0, u"◦  Circle"},
    {QTextListFormat::ListSquare, 0, u"▪  Square"},
    {QTextListFormat::ListDisc, dash, u"⁃  Dash"},
    {QTextListFormat::ListDisc, check, u"✓  Check Mark"},
};
constexpr QTextListFormat::Style numberStyles[] = {
    QTextListFormat::ListDecimal, QTextListFormat::ListUpperAlpha, QTextListFormat::ListLowerAlpha,
    QTextListFormat::ListUpperRoman, QTextListFormat::ListLowerRoman};

/// What was typed at the beginning of a paragraph, where it is the mark of a list.
struct TypedMark
{
    QTextListFormat format;
    int number = 0; // 0 for bullets
};

std::optional<TypedMark> typedMark(const QString &typed)
{
    if (typed == u"-" || typed == u"*") {
        return TypedMark {newListFormat(ListLook::Bullets, 1)};
    }
    if (typed == u"[]" || typed == u"[ ]") {
        return TypedMark {newListFormat(ListLook::Checks, 1)};
    }
    if (typed == u"[x]" || typed == u"[X]") {
        return TypedMark {markedListFormat(checkedMark, 1)};
    }
    const bool hasSuffix = typed.endsWith(u'.') || typed.endsWith(u')');
    bool isNumber = false;
    const int number = typed.chopped(typed.isEmpty() ? 0 : 1).toInt(&isNumber);
    constexpr int longest = 4;
    if (!hasSuffix || !isNumber || number < 1 || typed.size() > longest || !typed.at(0).isDigit()) {
        return std::nullopt;
    }
    QTextListFormat format = newListFormat(ListLook::Numbers, 1);
    if (typed.endsWith(u')')) {
        format.setNumberSuffix(u")"_s);
    }
    return TypedMark {format, number};
}

bool isAtStart(const QTextCursor &cursor)
{
    return !cursor.hasSelection() && cursor.atBlockStart();
}

} // namespace

ListEditing::ListEditing(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
{
    constexpr std::pair<TextCommand, ListLook> looks[] = {
        {TextCommand::BulletedList, ListLook::Bullets},
        {TextCommand::NumberedList, ListLook::Numbers},
        {TextCommand::Checklist, ListLook::Checks}};
    for (const auto &[command, look] : looks) {
        commands.define(
            command, [this, look = look] { toggle(look); },
            [this, look = look] {
                const QTextList *list = m_editor.textCursor().currentList();
                return MenuItemState {
                    !m_editor.isReadOnly(), {}, list && listLookOf(list->format()) == look};
            });
    }
    commands.define(
        TextCommand::ToggleCheck, [this] { toggleDone(); },
        [this] {
            const QTextBlock block = m_editor.textCursor().block();
            return MenuItemState {
                !m_editor.isReadOnly() && isChecklistItem(block), {}, isDone(block)};
        });
    commands.define(TextMenu::ListStyle, [this](QMenu &menu) { fillStyles(menu); });
    editor.installEventFilter(this);
    editor.viewport()->installEventFilter(this);
    editor.viewport()->setMouseTracking(true);
    editor.addOverlay([this](QPainter &painter) { paint(painter); });
}

bool ListEditing::eventFilter(QObject *watched, QEvent *event)
{
    const bool isShown = !m_editor.isReadOnly() && !m_editor.isContentHidden();
    if (!isShown) {
        return QObject::eventFilter(watched, event);
    }
    switch (event->type()) {
    case QEvent::KeyPress:
        return watched == &m_editor && pressKey(*static_cast<QKeyEvent *>(event));
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
        return watched == m_editor.viewport() && mouse(*static_cast<QMouseEvent *>(event));
    default:
        return QObject::eventFilter(watched, event);
    }
}

// --- Commands -------------------------------------------------------------------------------

void ListEditing::changeSelected(const QString &name, const Change &change)
{
    m_editor.edit(name, [&change](QTextCursor &cursor) {
        const QList<QTextBlock> blocks = selectedBlocks(cursor);
        std::for_each(blocks.begin(), blocks.end(), change);
    });
    m_editor.setFocus();
}

void ListEditing::toggle(ListLook look)
{
    const auto looksSo = [look](const QTextBlock &block) {
        return block.textList() && listLookOf(block.textList()->format()) == look;
    };
    const QList<QTextBlock> blocks = selectedBlocks(m_editor.textCursor());
    const bool leaves = std::all_of(blocks.begin(), blocks.end(), looksSo);
    constexpr const char16_t *names[] = {u"Bulleted List", u"Numbered List", u"Checklist"};
    const QString name = QString::fromUtf16(names[int(look)]);
    if (leaves) {
        leaveLists(name);
        return;
    }
    changeSelected(name, [&](const QTextBlock &block) {
        if (!looksSo(block)) {
            const QTextList *list = block.textList();
            addToList(block, newListFormat(look, list ? list->format().indent() : 1));
        }
    });
}

// From the end: what follows an item that leaves is looked at, and is no item any more.
void ListEditing::leaveLists(const QString &name)
{
    m_editor.edit(name, [](QTextCursor &cursor) {
        const QList<QTextBlock> blocks = selectedBlocks(cursor);
        for (auto block = blocks.rbegin(); block != blocks.rend(); ++block) {
            leaveList(*block, LeftPlace::Margin);
        }
    });
    m_editor.setFocus();
}

void ListEditing::toggleDone()
{
    const QList<QTextBlock> blocks = selectedBlocks(m_editor.textCursor());
    const bool areDone = std::all_of(blocks.begin(), blocks.end(), [](const QTextBlock &block) {
        return !isChecklistItem(block) || isDone(block);
    });
    changeSelected(areDone ? u"Mark as Not Done"_s : u"Mark as Done"_s,
                   [areDone](const QTextBlock &block) { setDone(block, !areDone); });
}

void ListEditing::fillStyles(QMenu &menu)
{
    delete menu.findChild<QActionGroup *>(); // of its former items
    auto *group = new QActionGroup(&menu);
    group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    for (const StyleRow &row : bulletStyles) {
        QTextListFormat style;
        if (row.marker != 0) {
            style.setProperty(ListMarker, QString(QChar(row.marker)));
        }
        setListKind(style, row.kind);
        addStyle(menu, *group, QString::fromUtf16(row.title), style);
    }
    menu.addSeparator();
    for (const QTextListFormat::Style kind : numberStyles) {
        for (const QChar suffix : {u'.', u')'}) {
            QTextListFormat style;
            style.setStyle(kind);
            if (suffix != u'.') {
                style.setNumberSuffix(suffix);
            }
            QStringList sample;
            for (int number = 1; number <= 3; ++number) {
                sample << numberText(kind, number) + suffix;
            }
            addStyle(menu, *group, sample.join(u"  "_s), style);
        }
    }
    menu.addSeparator();
    const QTextList *list = m_editor.textCursor().currentList();
    const bool counts =
        list && listLookOf(list->format()) == ListLook::Numbers && !m_editor.isReadOnly();
    const auto addNumbering = [&](const QString &title, const QString &name, auto change) {
        QAction *action = menu.addAction(title);
        action->setEnabled(counts);
        connect(action, &QAction::triggered, this, [this, name, change] {
            m_editor.edit(name, [&](QTextCursor &cursor) { change(cursor.block()); });
        });
    };
    addNumbering(u"&Restart Numbering"_s, u"Restart Numbering"_s, restartNumbers);
    addNumbering(u"&Continue Numbering"_s, u"Continue Numbering"_s, continueNumbers);
}

void ListEditing::addStyle(QMenu &menu, QActionGroup &group, const QString &title,
                           const QTextListFormat &style)
{
    const QTextList *list = m_editor.textCursor().currentList();
    const bool isOn = list && listKind(list->format()) == listKind(style)
        && list->format().stringProperty(ListMarker) == style.stringProperty(ListMarker)
        && (!isNumbered(listKind(style))
            || numberSuffixOf(list->format()) == numberSuffixOf(style));
    QAction *action = menu.addAction(title);
    action->setCheckable(true);
    action->setChecked(isOn);
    action->setActionGroup(&group);
    action->setEnabled(!m_editor.isReadOnly());
    connect(action, &QAction::triggered, this, [this, style] { applyStyle(style); });
}

// Without a selection it is the whole list that is meant.
void ListEditing::applyStyle(const QTextListFormat &style)
{
    const auto atLevelOf = [&style](const QTextList *list) {
        QTextListFormat format = style;
        format.setIndent(list ? list->format().indent() : 1);
        return format;
    };
    QTextList *list = m_editor.textCursor().currentList();
    if (list && !m_editor.textCursor().hasSelection()) {
        m_editor.edit(u"List Style"_s, [&](QTextCursor &) { list->setFormat(atLevelOf(list)); });
        m_editor.setFocus();
        return;
    }
    changeSelected(u"List Style"_s,
                   [&](const QTextBlock &block) { addToList(block, atLevelOf(block.textList())); });
}

// --- Keys -----------------------------------------------------------------------------------

bool ListEditing::pressKey(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const bool isPlain = modifiers == Qt::NoModifier;
    switch (event.key()) {
    case Qt::Key_Tab:
        return isPlain && pressTab(true);
    case Qt::Key_Backtab:
        return modifiers == Qt::ShiftModifier && pressTab(false);
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return isPlain && pressReturn();
    case Qt::Key_Backspace:
        return isPlain && pressBackspace();
    case Qt::Key_Space:
        return isPlain && pressSpace();
    default:
        return false;
    }
}

// In a table the key leads on to the next cell.
bool ListEditing::pressTab(bool deeper)
{
    const QTextCursor caret = m_editor.textCursor();
    if (caret.currentTable()) {
        return false;
    }
    const QList<QTextBlock> blocks = selectedBlocks(caret);
    const bool areItems = std::any_of(blocks.begin(), blocks.end(), [](const QTextBlock &block) {
        return block.textList() != nullptr;
    });
    if (!areItems || (deeper && blocks.size() == 1 && !isAtStart(caret))) {
        return false;
    }
    changeSelected(deeper ? u"Increase Indent"_s : u"Decrease Indent"_s,
                   [deeper](const QTextBlock &block) { changeListLevel(block, deeper ? 1 : -1); });
    return true;
}

bool ListEditing::pressReturn()
{
    const QTextCursor caret = m_editor.textCursor();
    const QTextBlock block = caret.block();
    if (!block.textList() || caret.hasSelection()) {
        return false;
    }
    if (block.length() == 1) {
        return m_editor.edit(u"Typing"_s,
                             [](QTextCursor &cursor) { changeListLevel(cursor.block(), -1); });
    }
    if (!isDone(block) || !m_editor.hasRoomFor(2 * m_editor.cursorRect().height())) {
        return false;
    }
    m_editor.edit(u"Typing"_s, [](QTextCursor &cursor) {
        const bool goesBefore = cursor.atBlockStart();
        splitParagraph(cursor);
        setDone(goesBefore ? cursor.block().previous() : cursor.block(), false);
    });
    m_editor.ensureCursorVisible();
    return true;
}

bool ListEditing::pressBackspace()
{
    const QTextCursor caret = m_editor.textCursor();
    return caret.currentList() && isAtStart(caret)
        && m_editor.edit(u"Typing"_s,
                         [](QTextCursor &cursor) { leaveList(cursor.block(), LeftPlace::Kept); });
}

// The space is typed first, so that undo gives back what was typed.
bool ListEditing::pressSpace()
{
    QTextCursor caret = m_editor.textCursor();
    constexpr int longestMark = 4;
    if (caret.hasSelection() || caret.currentList() || caret.positionInBlock() > longestMark
        || caret.blockFormat().headingLevel() > 0
        || !m_editor.hasRoomFor(m_editor.cursorRect().height())) {
        return false;
    }
    const std::optional<TypedMark> mark =
        typedMark(caret.block().text().left(caret.positionInBlock()));
    if (!mark) {
        return false;
    }
    caret.insertText(u" "_s);
    m_editor.setTextCursor(caret);
    m_editor.edit(u"Automatic List"_s, [&mark](QTextCursor &cursor) {
        cursor.movePosition(QTextCursor::StartOfBlock, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        if (mark->number > 0) {
            addToNumberedList(cursor.block(), mark->format, mark->number);
        } else {
            addToList(cursor.block(), mark->format);
        }
    });
    return true;
}

// --- Boxes ----------------------------------------------------------------------------------

QTextBlock ListEditing::boxAt(const QPoint &place) const
{
    const QTextBlock block = m_editor.cursorForPosition(place).block();
    const bool isBox =
        isChecklistItem(block) && listMarkPlace(block).contains(place - m_editor.origin());
    return isBox ? block : QTextBlock();
}

bool ListEditing::mouse(const QMouseEvent &event)
{
    const bool presses = event.button() == Qt::LeftButton && event.modifiers() == Qt::NoModifier;
    const bool hovers = event.type() == QEvent::MouseMove && event.buttons() == Qt::NoButton;
    if (!presses && !hovers) {
        return false;
    }
    const QTextBlock box = boxAt(event.pos());
    if (hovers) {
        if (const bool isOver = box.isValid(); isOver != m_isOverBox) {
            m_isOverBox = isOver;
            m_editor.viewport()->setCursor(isOver ? Qt::PointingHandCursor : Qt::IBeamCursor);
        }
        return m_isOverBox;
    }
    if (!box.isValid()) {
        return false;
    }
    m_editor.edit(isDone(box) ? u"Mark as Not Done"_s : u"Mark as Done"_s,
                  [&box](QTextCursor &) { setDone(box, !isDone(box)); });
    return true;
}

void ListEditing::paint(QPainter &painter) const
{
    const QPoint origin = m_editor.origin();
    const QRect exposed = painter.clipBoundingRect().toAlignedRect();
    const QTextBlock first = m_editor.document()->findBlock(m_editor.spanIn(exposed).from);
    painter.save();
    painter.translate(origin);
    drawListMarks(painter, first, exposed.translated(-origin), m_editor.palette());
    painter.restore();
}

} // namespace quorvane
