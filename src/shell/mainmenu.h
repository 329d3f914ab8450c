#pragma once

#include "document/documentaction.h"
#include "editor/textcommands.h"

#include <QObject>

#include <functional>
#include <initializer_list>
#include <optional>

class QAction;
class QMainWindow;
class QMenu;

namespace quorvane {

class DocumentWindow;
class MenuItems;
class ModalAlerts;
class MyDocument;
class NSDocumentController;
class QVAppDelegateBase;
class RecentDocuments;

/// What every menu bar of the program stands on.
struct MenuSurroundings
{
    NSDocumentController &documents;
    RecentDocuments &recents;
    ModalAlerts &alerts;
    QVAppDelegateBase &delegate;
    std::function<void()> quit; ///< Ends the program, after the review of its documents.
};

/// The document that a menu bar's window shows.
struct MenuDocument
{
    DocumentWindow &window;
    MyDocument &document;
    DocumentCommands commands;
};

/// The menu bar of a window, which owns it. Items of a document that the window does not have are
/// there and disabled. The items are validated whenever a menu opens, before a key is taken for a
/// shortcut, whenever the document changes its state, and when they are chosen.
class MainMenu final : public QObject
{
    Q_OBJECT

public:
    MainMenu(QMainWindow &window, const MenuSurroundings &surroundings,
             const std::optional<MenuDocument> &document = {});

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QMenu *addMenu(const QString &title);
    void addCommand(QMenu &menu, DocumentAction action);
    void addCommands(QMenu &menu, std::initializer_list<DocumentAction> actions);
    void addTextCommands(QMenu &menu, std::initializer_list<TextCommand> commands);
    QMenu *addTextMenu(QMenu &menu, const QString &title,
                       std::initializer_list<TextCommand> commands);
    void addTextMenu(QMenu &menu, const QString &title, TextMenu filled);
    void buildApplicationMenu();
    void buildFileMenu();
    void buildEditMenu();
    void buildInsertMenu();
    void buildFormatMenu();
    void buildTableMenu();
    void buildViewMenu();
    void buildHelpMenu();
    void showLockInToolbar(QAction &lock);
    void followDocument();

    QMainWindow &m_window;
    MenuSurroundings m_surroundings;
    std::optional<MenuDocument> m_document;
    MenuItems *m_items;
    TextCommands *m_textCommands; // of the window, or of nothing
};

} // namespace quorvane
