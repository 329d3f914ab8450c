#include "editor/formattoolbar.h"

#include "editor/fontfamilybox.h"
#include "editor/fontfields.h"
#include "editor/glyphicon.h"
#include "editor/paragraphstylebox.h"
#include "editor/texteditor.h"
#include "editor/toolstrip.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLayout>
#include <QLineEdit>
#include <QMenu>
#include <QToolButton>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct Icon
{
    TextCommand command;
    Glyph glyph;
};

constexpr Icon icons[] = {
    {TextCommand::Bold, Glyph::Bold},
    {TextCommand::Italic, Glyph::Italic},
    {TextCommand::Underline, Glyph::Underline},
    {TextCommand::Strikethrough, Glyph::Strikethrough},
    {TextCommand::LastTextColour, Glyph::TextColour},
    {TextCommand::LastHighlight, Glyph::Highlight},
    {TextCommand::AlignLeft, Glyph::AlignLeft},
    {TextCommand::AlignCentre, Glyph::AlignCentre},
    {TextCommand::AlignRight, Glyph::AlignRight},
    {TextCommand::Justify, Glyph::Justify},
    {TextCommand::BulletedList, Glyph::BulletedList},
    {TextCommand::NumberedList, Glyph::NumberedList},
    {TextCommand::Checklist, Glyph::Checklist},
    {TextCommand::InsertLink, Glyph::Link},
    {TextCommand::InsertPicture, Glyph::Picture},
    {TextCommand::InsertTable, Glyph::Table},
    {TextCommand::Find, Glyph::Find},
};

QString plainTitle(const QAction &action)
{
    return action.text().remove(u'&').remove(u'…');
}

QString tipOf(const QAction &action)
{
    const QString shortcut = action.shortcut().toString(QKeySequence::NativeText);
    return shortcut.isEmpty() ? plainTitle(action) : u"%1 (%2)"_s.arg(plainTitle(action), shortcut);
}

} // namespace

FormatToolbar::FormatToolbar(TextEditor &editor, TextCommands &commands, QWidget *parent)
    : QToolBar(u"Format"_s, parent)
    , m_editor(editor)
    , m_commands(commands)
    , m_fonts(new FontFields(editor, this))
    , m_strip(new ToolStrip(this))
{
    m_fonts->setParent(this);
    setObjectName(u"formatToolbar"_s);
    setAccessibleName(u"Format"_s);
    setMovable(false);
    setFloatable(false);
    setIconSize(glyphSize);
    layout()->setSpacing(4);
    layout()->setContentsMargins(6, 3, 6, 3);
    giveIcons();
    addWidget(m_strip);
    addGroups();
    QToolButton *find = button(TextCommand::Find);
    addWidget(find);
    orderTabs();
    connect(m_strip, &ToolStrip::moved, this, &FormatToolbar::orderTabs);
    defineKey();
    connect(&m_editor, &TextEditor::contentHiddenChanged, m_strip, &ToolStrip::closePanel);
}

void FormatToolbar::giveIcons()
{
    for (const Icon &icon : icons) {
        QAction &action = m_commands.action(icon.command);
        action.setIcon(glyphIcon(icon.glyph));
        action.setIconVisibleInMenu(false);
    }
}

// The higher the number, the earlier a group has no room.
void FormatToolbar::addGroups()
{
    auto *style = new ParagraphStyleBox(m_commands, this);
    const int height = m_fonts->family()->sizeHint().height();
    for (QComboBox *field :
         std::initializer_list<QComboBox *> {style, m_fonts->family(), m_fonts->size()}) {
        field->setFixedHeight(height);
        addTool(field);
    }
    using Command = TextCommand;
    m_strip->addGroup({style}, 2);
    m_strip->addGroup({m_fonts->family(), m_fonts->size()}, 3);
    m_strip->addGroup({button(Command::Bold), button(Command::Italic), button(Command::Underline),
                       button(Command::Strikethrough)},
                      0);
    m_strip->addGroup({button(Command::LastTextColour), chooser(Command::TextColour),
                       button(Command::LastHighlight), chooser(Command::HighlightColour)},
                      1);
    m_strip->addGroup({menuButton(u"Alignment"_s, std::nullopt,
                                  {Command::AlignLeft, Command::AlignCentre, Command::AlignRight,
                                   Command::Justify}),
                       menuButton(u"Spacing"_s, Glyph::LineSpacing,
                                  {Command::SingleSpacing, Command::WiderSpacing,
                                   Command::DoubleSpacing, Command::Paragraph})},
                      5);
    m_strip->addGroup(
        {button(Command::BulletedList), button(Command::NumberedList), button(Command::Checklist)},
        4);
    m_strip->addGroup(
        {button(Command::InsertLink), button(Command::InsertPicture), button(Command::InsertTable)},
        6);
    addTool(m_strip->moreButton());
    connect(m_fonts, &FontFields::applied, m_strip, &ToolStrip::closePanel);
    const QAction *bigger = &m_commands.action(Command::Bigger);
    const auto followSizes = [this, bigger] {
        m_fonts->setEnabled(bigger->isEnabled());
    };
    connect(bigger, &QAction::changed, m_fonts, followSizes);
    followSizes();
}

void FormatToolbar::addTool(QWidget *tool)
{
    tool->installEventFilter(this);
    if (auto *choice = qobject_cast<QComboBox *>(tool)) {
        choice->setFocusPolicy(Qt::StrongFocus);
        if (choice->lineEdit()) {
            choice->lineEdit()->installEventFilter(this);
        }
    }
    m_tools.push_back(tool);
}

QToolButton *FormatToolbar::button(TextCommand command)
{
    auto *made = new QToolButton(this);
    QAction &action = m_commands.action(command);
    const auto follow = [made, &action] {
        made->setAccessibleName(plainTitle(action));
        if (const QString tip = tipOf(action); action.toolTip() != tip) {
            action.setToolTip(tip);
        }
    };
    made->setDefaultAction(&action);
    made->setAutoRaise(true);
    made->setIconSize(glyphSize);
    made->setFocusPolicy(Qt::TabFocus);
    connect(&action, &QAction::changed, made, follow);
    follow();
    addTool(made);
    return made;
}

QToolButton *FormatToolbar::chooser(TextCommand command)
{
    constexpr QSize size(12, 18);
    m_commands.action(command).setIcon(glyphIcon(Glyph::Choose));
    m_commands.action(command).setIconVisibleInMenu(false);
    QToolButton *made = button(command);
    made->setIconSize(size);
    made->setFixedWidth(size.width() + 4);
    return made;
}

QToolButton *FormatToolbar::menuButton(const QString &name, std::optional<Glyph> glyph,
                                       std::initializer_list<TextCommand> commands)
{
    auto *made = new QToolButton(this);
    auto *menu = new QMenu(made);
    for (const TextCommand command : commands) {
        menu->addAction(&m_commands.action(command));
    }
    made->setMenu(menu);
    made->setPopupMode(QToolButton::InstantPopup);
    made->setAutoRaise(true);
    made->setIconSize(glyphSize);
    made->setFocusPolicy(Qt::TabFocus);
    made->setAccessibleName(name);
    made->setToolTip(name);
    made->setIcon(glyph ? glyphIcon(*glyph) : menu->actions().first()->icon());
    const auto follow = [this, made, showsCurrent = !glyph] {
        followMenu(*made, showsCurrent);
    };
    for (QAction *action : menu->actions()) {
        connect(action, &QAction::changed, made, follow);
    }
    connect(menu, &QMenu::aboutToShow, &m_commands, &TextCommands::validate);
    connect(menu, &QMenu::triggered, &m_editor, [this] { m_editor.setFocus(); });
    follow();
    addTool(made);
    return made;
}

void FormatToolbar::followMenu(QToolButton &button, bool showsCurrent)
{
    const QList<QAction *> actions = button.menu()->actions();
    button.setEnabled(std::any_of(actions.begin(), actions.end(),
                                  [](const QAction *action) { return action->isEnabled(); }));
    const auto current = std::find_if(actions.begin(), actions.end(),
                                      [](const QAction *action) { return action->isChecked(); });
    if (showsCurrent && current != actions.end()) {
        button.setIcon((*current)->icon());
    }
}

void FormatToolbar::addLockAction(QAction *action)
{
    addAction(action);
    if (auto *lock = qobject_cast<QToolButton *>(widgetForAction(action))) {
        lock->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
        lock->setFocusPolicy(Qt::TabFocus);
        addTool(lock);
        orderTabs();
    }
}

void FormatToolbar::resizeEvent(QResizeEvent *event)
{
    constexpr int roomy = 920;
    m_fonts->setRoomy(width() >= roomy);
    QToolBar::resizeEvent(event);
}

QWidget *FormatToolbar::shownWidget(TextCommand command) const
{
    const QAction *action = &m_commands.action(command);
    const auto tool = std::find_if(m_tools.begin(), m_tools.end(), [action](const QWidget *one) {
        const auto *made = qobject_cast<const QToolButton *>(one);
        return made && made->defaultAction() == action;
    });
    if (!isVisible() || tool == m_tools.end()) {
        return nullptr;
    }
    return (*tool)->isVisible() ? *tool : m_strip->moreButton();
}

// --- Keys -----------------------------------------------------------------------------------

void FormatToolbar::defineKey()
{
    m_commands.define(
        TextCommand::GoToToolbar,
        [this] {
            if (isAncestorOf(QApplication::focusWidget())) {
                leave();
            } else {
                moveFocus(nullptr, 1);
            }
        },
        [this] {
            return MenuItemState {!isHidden(), {}, {}};
        });
}

bool FormatToolbar::eventFilter(QObject *watched, QEvent *event)
{
    const auto *choice = qobject_cast<const QComboBox *>(watched);
    if (event->type() == QEvent::Wheel && choice && !choice->hasFocus()) {
        event->ignore(); // whoever turns the wheel over the bar means no other font
        return true;
    }
    if (event->type() != QEvent::KeyPress) {
        return QToolBar::eventFilter(watched, event);
    }
    const int key = static_cast<QKeyEvent *>(event)->key();
    if (key == Qt::Key_Escape) {
        m_strip->closePanel();
        leave();
        return true;
    }
    const bool isField = qobject_cast<QLineEdit *>(watched);
    if (auto *pressed = qobject_cast<QToolButton *>(watched);
        pressed && (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Down)) {
        if (pressed->menu()) {
            pressed->showMenu();
        } else if (key != Qt::Key_Down) {
            pressed->click();
        }
        return true;
    }
    const bool isSideways = key == Qt::Key_Left || key == Qt::Key_Right;
    if (!isField && isSideways) {
        const bool goesOn = (key == Qt::Key_Right) == (layoutDirection() == Qt::LeftToRight);
        moveFocus(watched, goesOn ? 1 : -1);
        return true;
    }
    return QToolBar::eventFilter(watched, event);
}

// As the tools stand on the screen, in the bar and in the panel, and to the text behind the last.
void FormatToolbar::orderTabs()
{
    QWidget *lastInBar = nullptr;
    QWidget *lastInPanel = nullptr;
    for (QWidget *tool : std::as_const(m_tools)) {
        QWidget *&last = m_strip->isInPanel(*tool) ? lastInPanel : lastInBar;
        if (last) {
            setTabOrder(last, tool);
        }
        last = tool;
    }
    setTabOrder(lastInBar, &m_editor);
}

void FormatToolbar::moveFocus(const QObject *from, int step)
{
    QList<QWidget *> shown;
    std::copy_if(m_tools.begin(), m_tools.end(), std::back_inserter(shown), [from](QWidget *tool) {
        const bool isBeside =
            !from || tool->window() == static_cast<const QWidget *>(from)->window();
        return tool->isVisible() && tool->isEnabled() && isBeside;
    });
    if (shown.isEmpty()) {
        return;
    }
    const auto at = std::find(shown.begin(), shown.end(), from);
    const qsizetype index = at == shown.end() ? -1 : at - shown.begin();
    const qsizetype next = (index + step + shown.size()) % shown.size();
    shown[next]->setFocus(Qt::TabFocusReason);
}

void FormatToolbar::leave()
{
    m_editor.setFocus();
}

} // namespace quorvane
