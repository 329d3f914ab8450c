#pragma once

#include "document/qvcryptodoc.h"

#include <QObject>

#include <functional>
#include <vector>

class QAction;
class QMenu;
class QMenuBar;

namespace quorvane {

class DocumentWindow;
class MyDocument;
class NSDocumentController;

/// The menu bar of a document's window. Its items are validated whenever a menu opens and whenever
/// the document changes between locked and unlocked, so that no shortcut of a stale item fires.
class MainMenu final : public QObject
{
    Q_OBJECT

public:
    MainMenu(DocumentWindow &window, MyDocument &document, NSDocumentController &documents);

private:
    void buildApplicationMenu();
    void buildFileMenu();
    void buildEditMenu();
    void buildFormatMenu();
    QMenu *addMenu(const QString &title);
    QAction *addDocumentItem(QMenu &menu, const QString &title, DocumentAction action,
                             std::function<void(MyDocument &)> operation);
    void addEditorItem(QMenu &menu, QAction *action, const std::function<bool()> &isEnabled);
    void validate();

    struct Item
    {
        QAction *action;
        std::function<bool()> isEnabled;
    };

    QMenuBar &m_bar;
    DocumentWindow &m_window;
    MyDocument &m_document;
    NSDocumentController &m_documents;
    std::vector<Item> m_items;
};

} // namespace quorvane
