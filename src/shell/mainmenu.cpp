#include "shell/mainmenu.h"

#include "document/mydocument.h"
#include "editor/documentwindow.h"
#include "editor/formattoolbar.h"
#include "editor/glyphicon.h"
#include "editor/texteditor.h"
#include "platform/nsdocumentcontroller.h"
#include "product/release.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QMenuBar>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

MainMenu::MainMenu(DocumentWindow &window, MyDocument &document, NSDocumentController &documents)
    : QObject(&window)
    , m_bar(*window.menuBar())
    , m_window(window)
    , m_document(document)
    , m_documents(documents)
{
    buildApplicationMenu();
    buildFileMenu();
    buildEditMenu();
    buildFormatMenu();
    connect(&document, &QVCryptoDoc::isEncryptedChanged, this, &MainMenu::validate);
    connect(&document, &QVCryptoDoc::plainPasswordChanged, this, &MainMenu::validate);
    connect(&document, &MyDocument::fileURLChanged, this, &MainMenu::validate);
    connect(&document, &MyDocument::myIsEditableChanged, this, &MainMenu::validate);
    validate();
}

QMenu *MainMenu::addMenu(const QString &title)
{
    QMenu *menu = m_bar.addMenu(title);
    connect(menu, &QMenu::aboutToShow, this, &MainMenu::validate);
    return menu;
}

QAction *MainMenu::addDocumentItem(QMenu &menu, const QString &title, DocumentAction action,
                                   std::function<void(MyDocument &)> operation)
{
    QAction *item = menu.addAction(title);
    connect(item, &QAction::triggered, &m_document,
            [this, operation = std::move(operation), action] {
                if (m_document.validateMenuItem(action).enabled) {
                    operation(m_document);
                }
            });
    m_items.push_back({item, [this, action] {
                           return m_document.validateMenuItem(action).enabled;
                       }});
    return item;
}

void MainMenu::buildApplicationMenu()
{
    QMenu *menu = addMenu(productName);
    QAction *quit = menu->addAction(u"&Quit %1"_s.arg(productName));
    quit->setShortcut(QKeySequence(u"Ctrl+Q"_s));
    quit->setMenuRole(QAction::QuitRole);
    connect(quit, &QAction::triggered, &m_documents, [documents = &m_documents] {
        documents->closeAllDocuments([](bool closed) {
            if (closed) {
                QCoreApplication::quit();
            }
        });
    });
}

void MainMenu::buildFileMenu()
{
    QMenu *menu = addMenu(u"&File"_s);
    QAction *newItem = menu->addAction(u"&New"_s, &m_documents, &NSDocumentController::newDocument);
    newItem->setShortcut(QKeySequence::New);
    QAction *open = menu->addAction(u"&Open…"_s, &m_documents, &NSDocumentController::openDocument);
    open->setShortcut(QKeySequence::Open);
    menu->addSeparator();
    QAction *close = menu->addAction(u"&Close"_s, &m_document, &NSDocument::performClose);
    close->setShortcut(QKeySequence(u"Ctrl+W"_s));
    addDocumentItem(*menu, u"&Save"_s, DocumentAction::SaveDocument, [](MyDocument &document) {
        document.saveDocument();
    })->setShortcut(QKeySequence::Save);
    addDocumentItem(*menu, u"Save &As…"_s, DocumentAction::SaveDocumentAs,
                    [](MyDocument &document) { document.saveDocumentAs(); })
        ->setShortcut(QKeySequence(u"Ctrl+Shift+S"_s));
    menu->addSeparator();
    addDocumentItem(*menu, u"Document &Password…"_s, DocumentAction::DocumentPassword,
                    [](MyDocument &document) { document.documentPassword(); });
    QAction *lock = addDocumentItem(*menu, u"&Lock Document…"_s, DocumentAction::LockDocument,
                                    [](MyDocument &document) { document.lockDocument(); });
    lock->setShortcut(QKeySequence(u"Ctrl+L"_s));
    lock->setIconText(u"Lock"_s);
    lock->setIcon(glyphIcon(Glyph::Padlock));
    lock->setIconVisibleInMenu(false);
    m_window.formatToolbar().addLockAction(lock);
}

void MainMenu::addEditorItem(QMenu &menu, QAction *action, const std::function<bool()> &isEnabled)
{
    menu.addAction(action);
    m_items.push_back({action, [this, isEnabled] {
                           return !m_document.isEncrypted() && isEnabled();
                       }});
}

void MainMenu::buildEditMenu()
{
    QMenu *menu = addMenu(u"&Edit"_s);
    TextEditor *editor = &m_window.editor();
    const auto add = [this, menu, editor](const QString &title, QKeySequence::StandardKey key,
                                          void (QTextEdit::*operation)(),
                                          const std::function<bool()> &isEnabled) {
        auto *action = new QAction(title, this);
        action->setShortcut(key);
        connect(action, &QAction::triggered, editor, operation);
        addEditorItem(*menu, action, isEnabled);
    };
    const auto canWrite = [editor] {
        return !editor->isReadOnly();
    };
    const auto hasSelection = [editor] {
        return editor->textCursor().hasSelection();
    };
    const auto always = [] {
        return true;
    };
    add(u"&Undo"_s, QKeySequence::Undo, &QTextEdit::undo,
        [editor, canWrite] { return canWrite() && editor->content()->isUndoAvailable(); });
    add(u"&Redo"_s, QKeySequence::Redo, &QTextEdit::redo,
        [editor, canWrite] { return canWrite() && editor->content()->isRedoAvailable(); });
    menu->addSeparator();
    add(u"Cu&t"_s, QKeySequence::Cut, &QTextEdit::cut,
        [hasSelection, canWrite] { return canWrite() && hasSelection(); });
    add(u"&Copy"_s, QKeySequence::Copy, &QTextEdit::copy, hasSelection);
    add(u"&Paste"_s, QKeySequence::Paste, &QTextEdit::paste, canWrite);
    menu->addSeparator();
    add(u"Select &All"_s, QKeySequence::SelectAll, &QTextEdit::selectAll, always);
    connect(editor, &QTextEdit::undoAvailable, this, &MainMenu::validate);
    connect(editor, &QTextEdit::redoAvailable, this, &MainMenu::validate);
    connect(editor, &QTextEdit::copyAvailable, this, &MainMenu::validate);
}

void MainMenu::buildFormatMenu()
{
    QMenu *menu = addMenu(u"F&ormat"_s);
    const FormatToolbar &toolbar = m_window.formatToolbar();
    menu->addActions({toolbar.boldAction(), toolbar.italicAction(), toolbar.underlineAction()});
}

void MainMenu::validate()
{
    for (const Item &item : m_items) {
        item.action->setEnabled(item.isEnabled());
    }
}

} // namespace quorvane
