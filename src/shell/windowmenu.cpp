#include "shell/windowmenu.h"

#include "platform/nsdocumentcontroller.h"
#include "shell/menuitems.h"
#include "shell/shownpath.h"

#include <QMainWindow>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

WindowMenu::WindowMenu(QMenu &menu, QMainWindow &window, MenuItems &items,
                       NSDocumentController &documents, const NSDocument *document)
    : QObject(&menu)
    , m_menu(menu)
    , m_window(window)
    , m_documents(documents)
    , m_document(document)
{
    addWindowItems(items);
    m_menu.addSeparator();
    connect(&m_menu, &QMenu::aboutToShow, this, &WindowMenu::list);
}

void WindowMenu::addWindowItems(MenuItems &items)
{
    items.add(m_menu, u"Mi&nimize"_s, {}, [this] { m_window.showMinimized(); });
    items.add(
        m_menu, u"Ma&ximize"_s, {},
        [this] { m_window.setWindowState(m_window.windowState() ^ Qt::WindowMaximized); },
        [this] {
            const bool hasFixedSize = m_window.minimumSize() == m_window.maximumSize();
            return MenuItemState {!hasFixedSize && !m_window.isFullScreen(),
                                  m_window.isMaximized() ? u"&Restore Size"_s : u"Ma&ximize"_s,
                                  {}};
        });
    items.add(
        m_menu, u"Bring &All to Front"_s, {}, [this] { bringAllToFront(); },
        [this] {
            return MenuItemState {!m_documents.documents().empty(), {}, {}};
        });
}

// This one comes last, so that it keeps the keyboard.
void WindowMenu::bringAllToFront()
{
    NSDocument *own = nullptr;
    for (NSDocument *document : m_documents.documents()) {
        if (document == m_document) {
            own = document;
        } else {
            document->showWindows();
        }
    }
    if (own) {
        own->showWindows();
    }
}

void WindowMenu::list()
{
    qDeleteAll(m_listed);
    m_listed.clear();
    for (NSDocument *document : m_documents.documents()) {
        QAction *item = m_menu.addAction(titleOf(*document));
        item->setCheckable(true);
        item->setChecked(document == m_document);
        connect(item, &QAction::triggered, document, &NSDocument::showWindows);
        m_listed.append(item);
    }
}

// Documents of one name are told apart by their folders.
QString WindowMenu::titleOf(const NSDocument &document) const
{
    const std::vector<NSDocument *> all = m_documents.documents();
    const auto namesakes = std::count_if(all.begin(), all.end(), [&](const NSDocument *other) {
        return other->displayName() == document.displayName();
    });
    QString title = document.displayName();
    if (document.isDocumentEdited()) {
        title += u'*';
    }
    if (namesakes > 1 && document.fileURL()) {
        title += u" — "_s + shownFolder(*document.fileURL());
    }
    return withoutMnemonic(title);
}

} // namespace quorvane
