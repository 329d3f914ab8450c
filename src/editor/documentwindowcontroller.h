#pragma once

#include "document/documentaction.h"
#include "document/publicnotedelegate.h"
#include "editor/editorsurroundings.h"
#include "editor/texttools.h"
#include "platform/nsuserdefaults.h"
#include "platform/nswindow.h"
#include "platform/nswindowcontroller.h"

#include <QObject>

#include <functional>
#include <memory>

class QWidget;

namespace quorvane {

class DocumentWindow;
class EditorView;
class MyDocument;
class PasswordSheet;
class PublicNoteSheet;

/// Builds a document's window and joins its widgets to the document: outlets, actions, and each
/// property with the field that shows it, in both directions.
class DocumentWindowController final : public QObject, public NSWindowController
{
    Q_OBJECT

public:
    using WindowAdapter =
        std::function<std::unique_ptr<NSWindow>(QWidget &window, const WindowEvents &events)>;

    DocumentWindowController(MyDocument &document, NSUserDefaults &defaults,
                             const WindowAdapter &adapt, const EditorSurroundings &surroundings);
    ~DocumentWindowController() override;

    DocumentWindow &window() const { return *m_window; }

    /// The commands of this document, for its menus. They outlive neither document nor window.
    DocumentCommands commands();

    void setShouldCascadeWindows(bool cascades) override;

private:
    WindowEvents windowEvents();
    void connectOutlets();
    void bindAppearance();
    void bindEditor();
    void bindPublicNote();
    void bindSheets();
    void bindFields(PasswordSheet &sheet);
    void tellBodyIsTooTall();
    void tellSurplusOnce();
    void applyEditable();
    void showNote();
    void applyNoteFont();

    MyDocument &m_document;
    NSUserDefaults &m_defaults;
    std::unique_ptr<DocumentWindow> m_window;
    std::unique_ptr<NSWindow> m_adapter;
    std::unique_ptr<EditorView> m_view;
    std::unique_ptr<PasswordSheet> m_mandatorySheet;
    std::unique_ptr<PasswordSheet> m_changeSheet;
    std::unique_ptr<PasswordSheet> m_insertSheet;
    std::unique_ptr<PublicNoteSheet> m_noteSheet;
    PublicNoteDelegate m_noteDelegate;
    std::unique_ptr<TextTransfer> m_transfer;
    std::unique_ptr<DocumentPrinter> m_printer;
    EditorSurroundings m_surroundings;
    TextTools m_tools;
    bool m_hasToldSurplus = false;
};

} // namespace quorvane
