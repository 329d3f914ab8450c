#pragma once

#include "platform/nswindow.h"

#include <QMainWindow>

#include <memory>

class QStackedWidget;
class QVBoxLayout;

namespace quorvane {

class FormatToolbar;
class LockedPage;
class TextCommands;
class TextEditor;

/// The window of one document: a page for the locked state and one for the text. It holds no rule;
/// its owner decides what it shows and when it closes.
class DocumentWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit DocumentWindow(QWidget *parent = nullptr);
    ~DocumentWindow() override;

    LockedPage &lockedPage() const { return *m_lockedPage; }

    TextEditor &editor() const { return *m_editor; }

    /// The commands on the text, for menus and whoever defines them.
    TextCommands &commands() const { return *m_commands; }

    FormatToolbar &formatToolbar() const { return *m_toolbar; }

    /// Puts a bar next to the text, which the window owns from now on: between the text and the
    /// bars that are there already. It is on the editor's
    /// page: nobody sees it while the document is locked.
    void addAboveText(QWidget *bar);
    void addBelowText(QWidget *bar);

    /// The toolbar as it is meant to be: visible also means before the window is shown.
    NSToolbar &modernToolbar();

    /// Shows the password page. Nothing of the text can be read through the window any more.
    void showLockedAppearance();
    void showEditorAppearance();
    bool showsLockedAppearance() const;

    void setReadOnly(bool readOnly);

protected:
    bool event(QEvent *event) override;

private:
    class Toolbar;

    void followEditor();

    QStackedWidget *m_pages = nullptr;
    LockedPage *m_lockedPage = nullptr;
    QWidget *m_editorPage = nullptr;
    QVBoxLayout *m_editorColumn = nullptr;
    TextEditor *m_editor = nullptr;
    TextCommands *m_commands = nullptr;
    FormatToolbar *m_toolbar = nullptr;
    std::unique_ptr<Toolbar> m_modernToolbar;
};

} // namespace quorvane
