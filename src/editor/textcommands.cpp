#include "editor/textcommands.h"

#include <QAction>
#include <QActionGroup>
#include <QKeyEvent>
#include <QMenu>
#include <QWidget>

#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

struct Row
{
    TextCommand command;
    QString title;
    QList<QKeySequence> shortcuts;
};

QList<Row> rows()
{
    using Command = TextCommand;
    constexpr auto ctrlShift = Qt::CTRL | Qt::SHIFT;
    constexpr auto ctrlAlt = Qt::CTRL | Qt::ALT;
    return {
        {Command::PasteAndMatchStyle, u"Paste and &Match Style"_s, {ctrlShift | Qt::Key_V}},
        {Command::CopyStyle, u"Copy St&yle"_s, {ctrlAlt | Qt::Key_C}},
        {Command::PasteStyle, u"Paste Sty&le"_s, {ctrlAlt | Qt::Key_V}},
        {Command::Find, u"&Find…"_s, {QKeySequence::Find}},
        {Command::FindAndReplace, u"Find and &Replace…"_s, {Qt::CTRL | Qt::Key_H}},
        {Command::FindNext, u"Find &Next"_s, {Qt::Key_F3, Qt::CTRL | Qt::Key_G}},
        {Command::FindPrevious,
         u"Find &Previous"_s,
         {Qt::SHIFT | Qt::Key_F3, ctrlShift | Qt::Key_G}},
        {Command::FindSelection, u"Find &Selection"_s, {Qt::CTRL | Qt::Key_F3}},
        {Command::CheckSpelling, u"Check Spelling While &Typing"_s, {Qt::SHIFT | Qt::Key_F7}},
        {Command::NextMisspelling, u"&Next Misspelled Word"_s, {Qt::Key_F7}},
        {Command::LearnWord, u"&Learn Word"_s, {}},
        {Command::IgnoreWord, u"&Ignore Word"_s, {}},
        {Command::Bold, u"&Bold"_s, {QKeySequence::Bold}},
        {Command::Italic, u"&Italic"_s, {QKeySequence::Italic}},
        {Command::Underline, u"&Underline"_s, {QKeySequence::Underline}},
        {Command::Strikethrough, u"Stri&kethrough"_s, {ctrlShift | Qt::Key_X}},
        {Command::Superscript, u"Su&perscript"_s, {ctrlAlt | Qt::Key_Plus}},
        {Command::Subscript, u"Su&bscript"_s, {ctrlAlt | Qt::Key_Minus}},
        {Command::Bigger, u"Bi&gger"_s, {Qt::CTRL | Qt::Key_BracketRight}},
        {Command::Smaller, u"&Smaller"_s, {Qt::CTRL | Qt::Key_BracketLeft}},
        {Command::TextColour, u"Text &Colour…"_s, {}},
        {Command::HighlightColour, u"&Highlight…"_s, {}},
        {Command::LastTextColour, u"Appl&y Text Colour"_s, {}},
        {Command::LastHighlight, u"Apply H&ighlight"_s, {ctrlAlt | Qt::Key_H}},
        {Command::ClearFormatting, u"Clea&r Formatting"_s, {Qt::CTRL | Qt::Key_M}},
        {Command::AlignLeft, u"Align &Left"_s, {ctrlShift | Qt::Key_L}},
        {Command::AlignCentre, u"Align C&entre"_s, {ctrlShift | Qt::Key_E}},
        {Command::AlignRight, u"Align &Right"_s, {ctrlShift | Qt::Key_R}},
        {Command::Justify, u"&Justify"_s, {ctrlShift | Qt::Key_J}},
        {Command::SingleSpacing, u"&Single Spacing"_s, {Qt::CTRL | Qt::Key_1}},
        {Command::WiderSpacing, u"&1½ Spacing"_s, {Qt::CTRL | Qt::Key_5}},
        {Command::DoubleSpacing, u"&Double Spacing"_s, {Qt::CTRL | Qt::Key_2}},
        {Command::Paragraph, u"&Paragraph…"_s, {}},
        {Command::IncreaseIndent, u"I&ncrease Indent"_s, {Qt::ALT | Qt::SHIFT | Qt::Key_Right}},
        {Command::DecreaseIndent, u"&Decrease Indent"_s, {Qt::ALT | Qt::SHIFT | Qt::Key_Left}},
        {Command::BulletedList, u"&Bulleted List"_s, {ctrlShift | Qt::Key_8}},
        {Command::NumberedList, u"&Numbered List"_s, {ctrlShift | Qt::Key_7}},
        {Command::Checklist, u"&Checklist"_s, {ctrlShift | Qt::Key_9}},
        {Command::ToggleCheck, u"&Mark as Done"_s, {ctrlShift | Qt::Key_Return}},
        {Command::BodyText, u"&Body"_s, {ctrlAlt | Qt::Key_0}},
        {Command::Heading1, u"Heading &1"_s, {ctrlAlt | Qt::Key_1}},
        {Command::Heading2, u"Heading &2"_s, {ctrlAlt | Qt::Key_2}},
        {Command::Heading3, u"Heading &3"_s, {ctrlAlt | Qt::Key_3}},
        {Command::Heading4, u"Heading &4"_s, {ctrlAlt | Qt::Key_4}},
        {Command::Heading5, u"Heading &5"_s, {ctrlAlt | Qt::Key_5}},
        {Command::Heading6, u"Heading &6"_s, {ctrlAlt | Qt::Key_6}},
        {Command::InsertPicture, u"&Picture…"_s, {}},
        {Command::InsertFile, u"&File…"_s, {}},
        {Command::InsertLink, u"&Link…"_s, {Qt::CTRL | Qt::Key_K}},
        {Command::RemoveLink, u"&Remove Link"_s, {}},
        {Command::OpenLink, u"&Open Link…"_s, {ctrlShift | Qt::Key_K}},
        {Command::InsertHorizontalRule, u"&Horizontal Rule"_s, {}},
        {Command::InsertPageBreak, u"Page &Break"_s, {Qt::CTRL | Qt::Key_Return}},
        {Command::PictureSize, u"Picture &Size…"_s, {}},
        {Command::OpenAttachment, u"Op&en Attachment…"_s, {}},
        {Command::SaveAttachmentAs, u"Save &Attachment As…"_s, {}},
        {Command::InsertTable, u"&Insert Table…"_s, {}},
        {Command::InsertRowAbove, u"Insert Row &Above"_s, {}},
        {Command::InsertRowBelow, u"Insert Row &Below"_s, {}},
        {Command::InsertColumnLeft, u"Insert Column &Left"_s, {}},
        {Command::InsertColumnRight, u"Insert Column &Right"_s, {}},
        {Command::DeleteRows, u"&Delete Rows"_s, {}},
        {Command::DeleteColumns, u"Delete &Columns"_s, {}},
        {Command::DeleteTable, u"Delete &Table"_s, {}},
        {Command::MergeCells, u"&Merge Cells"_s, {}},
        {Command::SplitCell, u"&Split Cell"_s, {}},
        {Command::TableProperties, u"Table &Properties…"_s, {}},
        {Command::GoToRuler, u"Go to Ru&ler"_s, {Qt::SHIFT | Qt::Key_F6}},
        {Command::ShowRuler, u"&Ruler"_s, {Qt::CTRL | Qt::Key_R}},
        {Command::ShowStatusBar, u"&Status Bar"_s, {}},
        {Command::ZoomIn, u"Zoom &In"_s, {Qt::CTRL | Qt::Key_Plus, Qt::CTRL | Qt::Key_Equal}},
        {Command::ZoomOut, u"Zoom &Out"_s, {Qt::CTRL | Qt::Key_Minus}},
        {Command::ActualSize, u"&Actual Size"_s, {Qt::CTRL | Qt::Key_0}},
        {Command::GoToToolbar, u"&Go to Toolbar"_s, {Qt::Key_F6}},
    };
}

/// Of each of these, a paragraph has one at most.
const QList<QList<TextCommand>> &choices()
{
    using Command = TextCommand;
    static const QList<QList<TextCommand>> all = {
        {Command::AlignLeft, Command::AlignCentre, Command::AlignRight, Command::Justify},
        {Command::SingleSpacing, Command::WiderSpacing, Command::DoubleSpacing},
        {Command::BulletedList, Command::NumberedList, Command::Checklist},
        {Command::BodyText, Command::Heading1, Command::Heading2, Command::Heading3,
         Command::Heading4, Command::Heading5, Command::Heading6},
    };
    return all;
}

} // namespace

TextCommands::TextCommands(QObject *parent)
    : QObject(parent)
{
    const QList<Row> all = rows();
    for (const Row &row : all) {
        auto *action = new QAction(row.title, this);
        action->setShortcuts(row.shortcuts);
        action->setEnabled(false);
        m_keys += QSet(row.shortcuts.begin(), row.shortcuts.end());
        m_commands[row.command].action = action;
    }
    for (const QList<TextCommand> &choice : choices()) {
        auto *group = new QActionGroup(this);
        group->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
        for (const TextCommand command : choice) {
            group->addAction(m_commands[command].action);
        }
    }
}

QAction &TextCommands::action(TextCommand command) const
{
    return *m_commands.at(command).action;
}

void TextCommands::setGate(std::function<bool()> mayRun)
{
    m_mayRun = std::move(mayRun);
    validateLater();
}

void TextCommands::define(TextCommand command, std::function<void()> run, State state)
{
    Command &defined = m_commands.at(command);
    defined.state = std::move(state);
    connect(defined.action, &QAction::triggered, this, [this, &defined, run = std::move(run)] {
        if (mayRun() && defined.state().enabled) { // an item looks as it did when it was last asked
            run();
        }
        validateLater();
    });
    validateLater();
}

void TextCommands::define(TextMenu menu, std::function<void(QMenu &)> fill)
{
    m_menus[menu] = std::move(fill);
}

void TextCommands::attach(TextMenu menu, QMenu &shown)
{
    const auto fill = [this, menu, &shown] {
        const auto filling = m_menus.find(menu);
        shown.clear();
        if (filling != m_menus.end() && mayRun()) {
            filling->second(shown);
        }
        if (shown.isEmpty()) {
            shown.addAction(u"None"_s)->setEnabled(false);
        }
    };
    shown.addAction(u"None"_s)->setEnabled(false); // an empty menu would never open
    connect(&shown, &QMenu::aboutToShow, this, fill);
}

void TextCommands::takeKeysFrom(QWidget &text)
{
    text.installEventFilter(this);
}

// Whoever accepts this event gets the key, and the shortcut does not.
bool TextCommands::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ShortcutOverride) {
        return QObject::eventFilter(watched, event);
    }
    const QKeySequence pressed(static_cast<QKeyEvent *>(event)->keyCombination());
    const bool isOurs = m_keys.contains(pressed);
    if (isOurs) {
        validate();
        event->ignore();
    }
    return isOurs;
}

void TextCommands::validate()
{
    const bool may = mayRun();
    for (const auto &[command, defined] : m_commands) {
        const MenuItemState state = may && defined.state ? defined.state() : MenuItemState();
        defined.action->setEnabled(state.enabled);
        if (state.title) {
            defined.action->setText(*state.title);
        }
        if (may && defined.state) { // else the check mark is of no interest and may stay
            defined.action->setCheckable(state.on.has_value());
            defined.action->setChecked(state.on.value_or(false));
        }
    }
}

void TextCommands::validateLater()
{
    if (std::exchange(m_validates, true)) {
        return;
    }
    const auto now = [this] {
        m_validates = false;
        validate();
    };
    QMetaObject::invokeMethod(this, now, Qt::QueuedConnection);
}

} // namespace quorvane
