#pragma once

#include <QMenu>

class QMainWindow;

namespace quorvane {

class MenuItems;
class NSDocument;
class NSDocumentController;

/// The Window menu's part beyond its fixed items: all open documents, that of this window checked.
class WindowMenu final : public QObject
{
    Q_OBJECT

public:
    /// \a document is null in a window that shows none.
    WindowMenu(QMenu &menu, QMainWindow &window, MenuItems &items, NSDocumentController &documents,
               const NSDocument *document);

private:
    void addWindowItems(MenuItems &items);
    void bringAllToFront();
    void list();
    QString titleOf(const NSDocument &document) const;

    QMenu &m_menu;
    QMainWindow &m_window;
    NSDocumentController &m_documents;
    const NSDocument *m_document;
    QList<QAction *> m_listed;
};

} // namespace quorvane
