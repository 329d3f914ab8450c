#pragma once

#include "editor/textcommands.h"

#include <QToolBar>

#include <optional>

class QToolButton;

namespace quorvane {

class FontFields;
class TextEditor;
class ToolStrip;
enum class Glyph;

/// The bar that shows and sets the style of the text at the caret. Its tools are the commands on
/// the text; what has no room stands in a panel at its end.
class FormatToolbar final : public QToolBar
{
    Q_OBJECT

public:
    /// \a editor and \a commands outlive the bar.
    FormatToolbar(TextEditor &editor, TextCommands &commands, QWidget *parent = nullptr);

    /// Puts the action at the far end of the bar.
    void addLockAction(QAction *action);

    /// What the bar shows for a command: its button, or the one that leads to it. Null where the
    /// bar is not seen.
    QWidget *shownWidget(TextCommand command) const;

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void giveIcons();
    void addGroups();
    QToolButton *button(TextCommand command);
    QToolButton *chooser(TextCommand command);
    QToolButton *menuButton(const QString &name, std::optional<Glyph> glyph,
                            std::initializer_list<TextCommand> commands);
    void followMenu(QToolButton &button, bool showsCurrent);
    void addTool(QWidget *tool);
    void defineKey();
    void orderTabs();
    void moveFocus(const QObject *from, int step);
    void leave();

    TextEditor &m_editor;
    TextCommands &m_commands;
    FontFields *m_fonts;
    ToolStrip *m_strip;
    QList<QWidget *> m_tools; // in the order of the arrow keys
};

} // namespace quorvane
