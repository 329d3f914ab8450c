#include "shell/mainmenu.h"

#include "document/mydocument.h"
#include "editor/documentwindow.h"
#include "editor/formattoolbar.h"
#include "editor/glyphicon.h"
#include "platform/nsdocumentcontroller.h"
#include "product/release.h"
#include "shell/editmenu.h"
#include "shell/menuitems.h"
#include "shell/qvappdelegatebase.h"
#include "shell/recentmenu.h"
#include "shell/windowmenu.h"

#include <QAction>
#include <QActionGroup>
#include <QEvent>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

struct CommandRow
{
    DocumentAction action;
    QString title;
    QKeySequence shortcut;
};

const CommandRow &rowOf(DocumentAction action)
{
    using Action = DocumentAction;
    static const CommandRow rows[] = {
        {Action::SaveDocument, u"&Save"_s, QKeySequence::Save},
        {Action::SaveDocumentAs, u"Save &As…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_S},
        {Action::RevertDocumentToSaved, u"Re&vert to Saved…"_s, {}},
        {Action::ImportFromTEXT, u"From &Plain Text…"_s, {}},
        {Action::ImportFromRTF, u"From &RTF…"_s, {}},
        {Action::ImportFromRTFD, u"From RTF&D…"_s, {}},
        {Action::ExportToTEXT, u"To &Plain Text…"_s, {}},
        {Action::ExportToRTF, u"To &RTF…"_s, {}},
        {Action::ExportToRTFD, u"To RTF&D…"_s, {}},
        {Action::DocumentPassword, u"&Document Password…"_s, {}},
        {Action::EditPublicNote, u"Public No&te…"_s, {}},
        {Action::LockDocument, u"&Lock Document…"_s, Qt::CTRL | Qt::Key_L},
        {Action::RunPageLayout, u"Page Set&up…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_P},
        {Action::PrintPreview, u"Print Previe&w…"_s, Qt::CTRL | Qt::SHIFT | Qt::Key_O},
        {Action::PrintDocument, u"&Print…"_s, QKeySequence::Print},
        {Action::MakePlainText, u"Make Plain &Text…"_s, {}},
        {Action::SwitchReadAndWrite, u"Prevent Editing"_s, {}},
        {Action::SetReadOnly, u"Read &Only"_s, {}},
        {Action::SetReadAndWrite, u"Read and &Write"_s, {}},
    };
    return *std::find_if(std::begin(rows), std::end(rows),
                         [action](const CommandRow &row) { return row.action == action; });
}

MenuItemState disabled()
{
    return {};
}

} // namespace

MainMenu::MainMenu(QMainWindow &window, const MenuSurroundings &surroundings,
                   const std::optional<MenuDocument> &document)
    : QObject(&window)
    , m_window(window)
    , m_surroundings(surroundings)
    , m_document(document)
    , m_items(new MenuItems(this))
    , m_textCommands(document ? &document->window.commands() : new TextCommands(this))
{
    buildApplicationMenu();
    buildFileMenu();
    buildEditMenu();
    buildInsertMenu();
    buildFormatMenu();
    buildTableMenu();
    buildViewMenu();
    new WindowMenu(*addMenu(u"&Window"_s), m_window, *m_items, m_surroundings.documents,
                   m_document ? &m_document->document : nullptr);
    buildHelpMenu();
    followDocument();
    m_window.installEventFilter(this);
    m_items->validate();
}

bool MainMenu::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        // A key that nobody in the window wants for himself goes to the shortcuts next.
        m_items->validate();
        m_textCommands->validate();
    } else if (event->type() == QEvent::WindowBlocked || event->type() == QEvent::WindowUnblocked) {
        // The sheet is not yet known to be up, or gone.
        QMetaObject::invokeMethod(m_items, &MenuItems::validate, Qt::QueuedConnection);
    }
    return QObject::eventFilter(watched, event);
}

QMenu *MainMenu::addMenu(const QString &title)
{
    QMenu *menu = m_window.menuBar()->addMenu(title);
    connect(menu, &QMenu::aboutToShow, m_items, &MenuItems::validate);
    connect(menu, &QMenu::aboutToShow, m_textCommands, &TextCommands::validate);
    return menu;
}

void MainMenu::addTextCommands(QMenu &menu, std::initializer_list<TextCommand> commands)
{
    for (const TextCommand command : commands) {
        menu.addAction(&m_textCommands->action(command));
    }
}

QMenu *MainMenu::addTextMenu(QMenu &menu, const QString &title,
                             std::initializer_list<TextCommand> commands)
{
    QMenu *submenu = menu.addMenu(title);
    addTextCommands(*submenu, commands);
    return submenu;
}

void MainMenu::addTextMenu(QMenu &menu, const QString &title, TextMenu filled)
{
    m_textCommands->attach(filled, *menu.addMenu(title));
}

void MainMenu::addCommands(QMenu &menu, std::initializer_list<DocumentAction> actions)
{
    for (const DocumentAction action : actions) {
        addCommand(menu, action);
    }
    menu.menuAction()->setVisible(!menu.isEmpty());
}

void MainMenu::addCommand(QMenu &menu, DocumentAction action)
{
    const CommandRow &row = rowOf(action);
    if (!m_document) {
        m_items->add(
            menu, row.title, row.shortcut, [] {}, disabled);
        return;
    }
    const auto command = m_document->commands.find(action);
    if (command == m_document->commands.end()) {
        return;
    }
    MyDocument *document = &m_document->document;
    const auto hasSheet = [document] {
        const NSWindow *window = document->windowForSheet();
        return window && window->attachedSheet();
    };
    QAction *item = m_items->add(
        menu, row.title, row.shortcut,
        [hasSheet, run = command->second] {
            // A sheet keeps people from the menus, but not assistive programs.
            if (!hasSheet()) {
                run();
            }
        },
        [document, action, hasSheet] {
            MenuItemState state = document->validateMenuItem(action);
            // This one is seen in the toolbar, too.
            const bool isHeld = action == DocumentAction::LockDocument && hasSheet();
            state.enabled = state.enabled && !isHeld;
            return state;
        });
    if (action == DocumentAction::LockDocument) {
        showLockInToolbar(*item);
    }
}

void MainMenu::showLockInToolbar(QAction &lock)
{
    lock.setIconText(u"Lock"_s);
    lock.setIcon(glyphIcon(Glyph::Padlock));
    lock.setIconVisibleInMenu(false);
    m_document->window.formatToolbar().addLockAction(&lock);
}

void MainMenu::buildApplicationMenu()
{
    QMenu *menu = addMenu(u"&%1"_s.arg(productName));
    QVAppDelegateBase *delegate = &m_surroundings.delegate;
    m_items->add(*menu, u"&About %1"_s.arg(productName), {}, [delegate] { delegate->openAbout(); })
        ->setMenuRole(QAction::AboutRole);
    delegate->adjustBeforeFinishingLaunching(*menu);
    menu->addSeparator();
    m_items
        ->add(*menu, u"&Preferences…"_s, Qt::CTRL | Qt::Key_Comma,
              [delegate] { delegate->openPreferences(); })
        ->setMenuRole(QAction::PreferencesRole);
    menu->addSeparator();
    m_items->add(*menu, u"&Quit %1"_s.arg(productName), Qt::CTRL | Qt::Key_Q, m_surroundings.quit)
        ->setMenuRole(QAction::QuitRole);
}

void MainMenu::buildFileMenu()
{
    using Action = DocumentAction;
    QMenu *menu = addMenu(u"&File"_s);
    NSDocumentController *documents = &m_surroundings.documents;
    m_items->add(*menu, u"&New"_s, QKeySequence::New, [documents] { documents->newDocument(); });
    m_items->add(*menu, u"&Open…"_s, QKeySequence::Open,
                 [documents] { documents->openDocument(); });
    menu->addMenu(new RecentMenu(*menu, m_surroundings));
    menu->addSeparator();
    m_items->add(*menu, u"&Close"_s, Qt::CTRL | Qt::Key_W, [this] { m_window.close(); });
    addCommands(*menu,
                {Action::SaveDocument, Action::SaveDocumentAs, Action::RevertDocumentToSaved});
    menu->addSeparator();
    addCommands(*m_items->addSubmenu(*menu, u"&Import"_s),
                {Action::ImportFromTEXT, Action::ImportFromRTF, Action::ImportFromRTFD});
    addCommands(*m_items->addSubmenu(*menu, u"&Export"_s),
                {Action::ExportToTEXT, Action::ExportToRTF, Action::ExportToRTFD});
    menu->addSeparator();
    addCommands(*menu, {Action::DocumentPassword, Action::EditPublicNote, Action::LockDocument});
    menu->addSeparator();
    addCommands(*menu, {Action::RunPageLayout, Action::PrintPreview, Action::PrintDocument});
}

void MainMenu::buildEditMenu()
{
    using Command = TextCommand;
    QMenu *menu = addMenu(u"&Edit"_s);
    new EditMenu(*menu, m_window, *m_items); // owned by the menu
    menu->addSeparator();
    addTextCommands(*menu, {Command::PasteAndMatchStyle, Command::CopyStyle, Command::PasteStyle});
    menu->addSeparator();
    addTextMenu(*menu, u"&Find"_s,
                {Command::Find, Command::FindAndReplace, Command::FindNext, Command::FindPrevious,
                 Command::FindSelection});
    QMenu *spelling = addTextMenu(*menu, u"&Spelling"_s,
                                  {Command::CheckSpelling, Command::NextMisspelling,
                                   Command::LearnWord, Command::IgnoreWord});
    addTextMenu(*spelling, u"Lan&guage"_s, TextMenu::SpellingLanguage);
}

void MainMenu::buildInsertMenu()
{
    using Command = TextCommand;
    QMenu *menu = addMenu(u"&Insert"_s);
    addTextCommands(*menu, {Command::InsertPicture, Command::InsertFile});
    menu->addSeparator();
    addTextCommands(*menu,
                    {Command::PictureSize, Command::OpenAttachment, Command::SaveAttachmentAs});
    menu->addSeparator();
    addTextCommands(*menu, {Command::InsertLink, Command::OpenLink, Command::RemoveLink});
    menu->addSeparator();
    addTextMenu(*menu, u"&Date and Time"_s, TextMenu::DateAndTime);
    addTextCommands(*menu, {Command::InsertHorizontalRule, Command::InsertPageBreak});
}

void MainMenu::buildFormatMenu()
{
    using Action = DocumentAction;
    using Command = TextCommand;
    QMenu *menu = addMenu(u"F&ormat"_s);
    addTextCommands(*menu, {Command::Bold, Command::Italic, Command::Underline});
    addTextMenu(*menu, u"&Character"_s,
                {Command::Strikethrough, Command::Superscript, Command::Subscript, Command::Bigger,
                 Command::Smaller, Command::TextColour, Command::LastTextColour,
                 Command::HighlightColour, Command::LastHighlight});
    addTextCommands(*menu, {Command::ClearFormatting});
    menu->addSeparator();
    addTextMenu(*menu, u"&Heading"_s,
                {Command::BodyText, Command::Heading1, Command::Heading2, Command::Heading3,
                 Command::Heading4, Command::Heading5, Command::Heading6});
    addTextMenu(*menu, u"&Alignment"_s,
                {Command::AlignLeft, Command::AlignCentre, Command::AlignRight, Command::Justify});
    addTextMenu(*menu, u"&Spacing"_s,
                {Command::SingleSpacing, Command::WiderSpacing, Command::DoubleSpacing});
    QMenu *lists = addTextMenu(
        *menu, u"&List"_s,
        {Command::BulletedList, Command::NumberedList, Command::Checklist, Command::ToggleCheck});
    addTextMenu(*lists, u"&Style"_s, TextMenu::ListStyle);
    addTextCommands(*menu, {Command::IncreaseIndent, Command::DecreaseIndent, Command::Paragraph});
    menu->addSeparator();
    addCommands(*menu, {Action::MakePlainText});
    menu->addSeparator();
    addCommands(*menu, {Action::SwitchReadAndWrite});
    auto *access = new QActionGroup(menu);
    for (const Action action : {Action::SetReadOnly, Action::SetReadAndWrite}) {
        addCommand(*menu, action);
        access->addAction(menu->actions().last());
    }
}

void MainMenu::buildTableMenu()
{
    using Command = TextCommand;
    QMenu *menu = addMenu(u"&Table"_s);
    addTextCommands(*menu, {Command::InsertTable});
    menu->addSeparator();
    addTextCommands(*menu,
                    {Command::InsertRowAbove, Command::InsertRowBelow, Command::InsertColumnLeft,
                     Command::InsertColumnRight});
    menu->addSeparator();
    addTextCommands(*menu, {Command::DeleteRows, Command::DeleteColumns, Command::DeleteTable});
    menu->addSeparator();
    addTextCommands(*menu, {Command::MergeCells, Command::SplitCell, Command::TableProperties});
}

void MainMenu::buildViewMenu()
{
    QMenu *menu = addMenu(u"&View"_s);
    const auto isUnlocked = [this] {
        return m_document && !m_document->document.isEncrypted();
    };
    m_items->add(
        *menu, u"Hide &Toolbar"_s, {},
        [this] {
            NSToolbar &toolbar = m_document->window.modernToolbar();
            toolbar.setVisible(!toolbar.isVisible());
        },
        [this, isUnlocked] {
            const bool shows = m_document && m_document->window.modernToolbar().isVisible();
            return MenuItemState {
                isUnlocked(), shows || !isUnlocked() ? u"Hide &Toolbar"_s : u"Show &Toolbar"_s, {}};
        });
    addTextCommands(*menu,
                    {TextCommand::GoToToolbar, TextCommand::GoToRuler, TextCommand::ShowRuler,
                     TextCommand::ShowStatusBar});
    menu->addSeparator();
    addTextCommands(*menu, {TextCommand::ZoomIn, TextCommand::ZoomOut, TextCommand::ActualSize});
    menu->addSeparator();
    m_items->add(
        *menu, u"&Full Screen"_s, Qt::Key_F11,
        [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowFullScreen); },
        [this, isUnlocked] {
            return MenuItemState {isUnlocked(), {}, m_window.isFullScreen()};
        });
}

void MainMenu::buildHelpMenu()
{
    QMenu *menu = addMenu(u"&Help"_s);
    QVAppDelegateBase *delegate = &m_surroundings.delegate;
    m_items->add(
        *menu, u"%1 User &Guide"_s.arg(productName), QKeySequence::HelpContents,
        [delegate] { delegate->openUserGuide(); },
        [delegate] {
            return MenuItemState {delegate->isUserGuideInstalled(), {}, {}};
        });
    menu->addSeparator();
    m_items->add(*menu, u"%1 &Home Page"_s.arg(productName), {},
                 [delegate] { delegate->visitAppUrl(); });
    m_items->add(*menu, u"%1 &Web Site"_s.arg(delegate->vendorName()), {},
                 [delegate] { delegate->webSite(); });
    m_items->add(*menu, u"Follow Us on &Twitter"_s, {}, [delegate] { delegate->visitTwitter(); });
    menu->addSeparator();
    m_items->add(*menu, u"&Mail to Support…"_s, {}, [delegate] { delegate->emailSupport(); });
}

void MainMenu::followDocument()
{
    if (!m_document) {
        return;
    }
    const MyDocument *document = &m_document->document;
    connect(document, &QVCryptoDoc::isEncryptedChanged, m_items, &MenuItems::validate);
    connect(document, &QVCryptoDoc::plainPasswordChanged, m_items, &MenuItems::validate);
    connect(document, &MyDocument::fileURLChanged, m_items, &MenuItems::validate);
    connect(document, &MyDocument::myIsEditableChanged, m_items, &MenuItems::validate);
}

} // namespace quorvane
