#pragma once

#include "document/documentaction.h"

#include <QKeySequence>
#include <QObject>
#include <QSet>

#include <functional>
#include <map>

class QAction;
class QMenu;
class QWidget;

namespace quorvane {

/// The commands that act on the text of a document's window.
enum class TextCommand {
    PasteAndMatchStyle,
    CopyStyle,
    PasteStyle,
    Find,
    FindAndReplace,
    FindNext,
    FindPrevious,
    FindSelection,
    CheckSpelling, // while typing
    NextMisspelling,
    LearnWord,
    IgnoreWord,
    Bold,
    Italic,
    Underline,
    Strikethrough,
    Superscript,
    Subscript,
    Bigger,
    Smaller,
    TextColour,
    HighlightColour,
    LastTextColour, // the one that was used last
    LastHighlight,
    ClearFormatting,
    AlignLeft,
    AlignCentre,
    AlignRight,
    Justify,
    SingleSpacing,
    WiderSpacing, // one and a half
    DoubleSpacing,
    Paragraph, // everything of it, in a sheet
    IncreaseIndent,
    DecreaseIndent,
    BulletedList,
    NumberedList,
    Checklist,
    ToggleCheck,
    BodyText,
    Heading1,
    Heading2,
    Heading3,
    Heading4,
    Heading5,
    Heading6,
    InsertPicture,
    InsertFile,
    InsertLink, // or edit the one at the caret
    RemoveLink,
    OpenLink,
    InsertHorizontalRule,
    InsertPageBreak,
    PictureSize,
    OpenAttachment,
    SaveAttachmentAs,
    InsertTable,
    InsertRowAbove,
    InsertRowBelow,
    InsertColumnLeft,
    InsertColumnRight,
    DeleteRows,
    DeleteColumns,
    DeleteTable,
    MergeCells,
    SplitCell,
    TableProperties,
    ShowRuler,
    GoToRuler, // with the keyboard
    ShowStatusBar,
    ZoomIn,
    ZoomOut,
    ActualSize,
    GoToToolbar,
};

/// The menus of text commands whose items are not known before they open.
enum class TextMenu {
    SpellingLanguage,
    ListStyle,
    DateAndTime,
};

/// One action for each text command of a window, for its menus, its toolbar and their shortcuts.
/// How each stands is asked anew whenever it counts. A command that nothing has defined is there
/// and disabled, as in a window without a text.
class TextCommands final : public QObject
{
    Q_OBJECT

public:
    using State = std::function<MenuItemState()>;

    explicit TextCommands(QObject *parent = nullptr);

    QAction &action(TextCommand command) const;

    /// Nothing runs, and everything is disabled, where \a mayRun says no.
    void setGate(std::function<bool()> mayRun);
    void define(TextCommand command, std::function<void()> run, State state);
    /// \a fill puts the items into the menu, each time it opens.
    void define(TextMenu menu, std::function<void(QMenu &)> fill);

    /// Fills \a menu whenever it opens.
    void attach(TextMenu menu, QMenu &shown);

    /// Commands come before what \a text would do with their keys by itself.
    void takeKeysFrom(QWidget &text);

    bool eventFilter(QObject *watched, QEvent *event) override;

    void validate();
    /// Validates once this turn of the event loop is over, however often it is asked.
    void validateLater();

private:
    struct Command
    {
        QAction *action = nullptr;
        State state;
    };

    bool mayRun() const { return !m_mayRun || m_mayRun(); }

    std::map<TextCommand, Command> m_commands;
    QSet<QKeySequence> m_keys; // of them all
    std::map<TextMenu, std::function<void(QMenu &)>> m_menus;
    std::function<bool()> m_mayRun;
    bool m_validates = false; // in this turn
};

} // namespace quorvane
