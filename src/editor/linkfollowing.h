#pragma once

#include <QObject>
#include <QString>

class QHelpEvent;
class QKeyEvent;
class QMenu;
class QMouseEvent;
class QTextCursor;

namespace quorvane {

class NSWindow;
class NSWorkspace;
class TextCommands;
class TextContextMenu;
class TextEditor;

/// Opens the links of a text, also of one that may not be changed: by a command, by the context
/// menu, and by a click with Ctrl.
class LinkFollowing final : public QObject
{
public:
    /// \a window is the document's, for what is to be asked and told.
    LinkFollowing(TextEditor &editor, TextCommands &commands, TextContextMenu &menu,
                  NSWindow &window, NSWorkspace &workspace);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QString addressAtCaret() const;
    void addToMenu(QMenu &menu, const QTextCursor &at);
    bool mouseEvent(const QMouseEvent &event);
    bool showTip(const QHelpEvent &event);
    void followKey(const QKeyEvent &event, bool isPressed);
    void showHand(bool shows);
    void open(const QString &address);
    void askToOpenFile(const QString &path);
    void tell(const QString &what, const QString &why);

    TextEditor &m_editor;
    TextCommands &m_commands;
    NSWindow &m_window;
    NSWorkspace &m_workspace;
    QString m_pressed; // the address that the mouse went down on
    bool m_showsHand = false;
};

} // namespace quorvane
