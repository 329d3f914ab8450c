#include "editor/documentwindowcontroller.h"

#include "document/mydocument.h"
#include "editor/documentwindow.h"
#include "editor/editorview.h"
#include "editor/formattoolbar.h"
#include "editor/lockedpage.h"
#include "editor/passwordsheet.h"
#include "editor/publicnotesheet.h"
#include "editor/publicnoteview.h"
#include "editor/texteditor.h"
#include "product/settings.h"

namespace quorvane {

using namespace Qt::StringLiterals;

DocumentWindowController::DocumentWindowController(MyDocument &document, NSUserDefaults &defaults,
                                                   const WindowAdapter &adapt,
                                                   const EditorSurroundings &surroundings)
    : m_document(document)
    , m_defaults(defaults)
    , m_window(std::make_unique<DocumentWindow>())
    , m_adapter(adapt(*m_window, windowEvents()))
    , m_view(std::make_unique<EditorView>(m_window->editor()))
    , m_mandatorySheet(
          std::make_unique<PasswordSheet>(PasswordSheet::Kind::Mandatory, m_window.get()))
    , m_changeSheet(std::make_unique<PasswordSheet>(PasswordSheet::Kind::Change, m_window.get()))
    , m_insertSheet(std::make_unique<PasswordSheet>(PasswordSheet::Kind::Insert, m_window.get()))
    , m_noteSheet(std::make_unique<PublicNoteSheet>(m_window.get()))
    , m_noteDelegate(document)
    , m_transfer(std::make_unique<TextTransfer>(document, m_window->editor(), *m_view,
                                                surroundings.transfer))
    , m_printer(std::make_unique<DocumentPrinter>(document, m_window->editor(), *m_view, *m_window,
                                                  surroundings.printing))
    , m_surroundings(surroundings)
    , m_tools({*m_window, *m_adapter, *m_view, defaults, m_surroundings})
{
    m_window->commands().setGate(
        [this] { return !m_document.isEncrypted() && !m_adapter->attachedSheet(); });
    connectOutlets();
    bindAppearance();
    bindEditor();
    bindPublicNote();
    bindSheets();
}

DocumentWindowController::~DocumentWindowController()
{
    // The widgets still tell of changes while they go, and the outlets go before them.
    m_window->editor().disconnect(&m_document);
    m_noteSheet->view().disconnect(this);
    m_document.disconnectOutlets();
}

WindowEvents DocumentWindowController::windowEvents()
{
    return {[this] { m_document.windowDidBecomeKey(*m_adapter); },
            [this] {
                m_document.performClose();
            }};
}

// Where a new window stands is the window manager's to say.
void DocumentWindowController::setShouldCascadeWindows(bool)
{ }

DocumentCommands DocumentWindowController::commands()
{
    MyDocument *document = &m_document;
    return {
        {DocumentAction::SaveDocument,
         [document] {
             document->saveDocument();
         }},
        {DocumentAction::SaveDocumentAs,
         [document] {
             document->saveDocumentAs();
         }},
        {DocumentAction::DocumentPassword,
         [document] {
             document->documentPassword();
         }},
        {DocumentAction::RevertDocumentToSaved,
         [document] {
             document->revertDocumentToSaved();
         }},
        {DocumentAction::LockDocument,
         [document] {
             document->lockDocument();
         }},
        {DocumentAction::EditPublicNote,
         [document] {
             document->editPublicNote();
         }},
        {DocumentAction::SwitchReadAndWrite,
         [document] {
             document->switchReadAndWrite();
         }},
        {DocumentAction::SetReadOnly,
         [document] {
             document->setReadOnly();
         }},
        {DocumentAction::SetReadAndWrite,
         [document] {
             document->setReadAndWrite();
         }},
        {DocumentAction::MakePlainText,
         [document] {
             document->makePlainText();
         }},
        {DocumentAction::ImportFromTEXT,
         [this] {
             m_transfer->importFromTEXT();
         }},
        {DocumentAction::ImportFromRTF,
         [this] {
             m_transfer->importFromRTF();
         }},
        {DocumentAction::ImportFromRTFD,
         [this] {
             m_transfer->importFromRTFD();
         }},
        {DocumentAction::ExportToTEXT,
         [this] {
             m_transfer->exportToTEXT();
         }},
        {DocumentAction::ExportToRTF,
         [this] {
             m_transfer->exportToRTF();
         }},
        {DocumentAction::ExportToRTFD,
         [this] {
             m_transfer->exportToRTFD();
         }},
        {DocumentAction::RunPageLayout,
         [this] {
             m_printer->runPageLayout();
         }},
        {DocumentAction::PrintPreview,
         [this] {
             m_printer->showPreview();
         }},
        {DocumentAction::PrintDocument,
         [this] {
             m_printer->printDocument();
         }},
    };
}

void DocumentWindowController::connectOutlets()
{
    m_document.myWindow = m_adapter.get();
    m_document.myTextView = m_view.get();
    m_document.myScrollView = m_view.get(); // the editor is its own scroll view
    m_document.modernToolbar = &m_window->modernToolbar();
    m_document.passwordToDecryptField = &m_window->lockedPage().passwordField();
    m_document.decryptProgressIndicator = &m_window->lockedPage().progressIndicator();
    m_document.mandatoryPasswordSheet = m_mandatorySheet.get();
    m_document.changePasswordSheet = m_changeSheet.get();
    m_document.insertPasswordSheet = m_insertSheet.get();
    m_document.myPublicTextSheet = m_noteSheet.get();
    m_document.myPublicNoteView = &m_noteSheet->view();
}

void DocumentWindowController::bindAppearance()
{
    const auto follow = [this] {
        if (m_document.isEncrypted()) {
            showNote();
            m_window->showLockedAppearance();
        } else {
            m_window->showEditorAppearance();
        }
    };
    connect(&m_document, &QVCryptoDoc::isEncryptedChanged, this, follow);
    follow();
    const auto showName = [this] {
        m_window->lockedPage().setDocumentName(m_document.displayName());
    };
    connect(&m_document, &NSDocument::displayNameChanged, this, showName);
    showName();
    connect(&m_window->lockedPage(), &LockedPage::passwordSubmitted, &m_document,
            [this](const QString &password) { m_document.submitPasswordToDecrypt(password); });
}

void DocumentWindowController::bindEditor()
{
    connect(&m_window->editor(), &QTextEdit::textChanged, &m_document, &MyDocument::textDidChange);
    connect(&m_document, &MyDocument::myIsEditableChanged, this,
            &DocumentWindowController::applyEditable);
    connect(&m_document, &QVCryptoDoc::isEncryptedChanged, this,
            &DocumentWindowController::applyEditable);
    connect(&m_document, &QVCryptoDoc::isEncryptedChanged, this,
            &DocumentWindowController::tellSurplusOnce);
    connect(&m_document, &MyDocument::bodyIsTooTall, this,
            &DocumentWindowController::tellBodyIsTooTall);
    connect(&m_window->editor(), &TextEditor::tooTall, this, [this] {
        const NSAlert alert {
            u"That would make the document longer than it can be shown."_s,
            u"Nothing was changed. Divide the text among several documents."_s,
            {u"OK"_s},
        };
        m_adapter->beginAlert(alert, [](AlertAnswer) {});
    });
    applyEditable();
}

void DocumentWindowController::applyEditable()
{
    m_window->setReadOnly(!m_document.myIsEditable() || m_view->isTooTall());
}

void DocumentWindowController::tellBodyIsTooTall()
{
    applyEditable();
    const NSAlert alert {
        u"This document is too long to be shown."_s,
        u"Its text is kept as it is, and the window stays empty and read-only. The program "
        u"quorvane-decrypt.py, "
        "which comes with the source, writes the text to a file."_s,
        {u"OK"_s},
    };
    m_adapter->beginAlert(alert, [](AlertAnswer) {});
}

void DocumentWindowController::tellSurplusOnce()
{
    if (m_document.isEncrypted() || m_hasToldSurplus || !m_view->holdsSurplus()) {
        return;
    }
    m_hasToldSurplus = true;
    const NSAlert alert {
        u"This document holds more than can be shown here."_s,
        u"Footnotes, headers, text boxes, fields or embedded objects of its text are shown as "
        u"plain "
        "text. They stay in the file as long as nobody edits the text.\n\nAn edited text is saved "
        "with all its words, but without these."_s,
        {u"OK"_s},
    };
    m_adapter->beginAlert(alert, [](AlertAnswer) {});
}

void DocumentWindowController::bindPublicNote()
{
    connect(&m_document, &MyDocument::myPublicTextDataChanged, this,
            &DocumentWindowController::showNote);
    showNote();
    PublicNoteView &view = m_noteSheet->view();
    connect(&view, &PublicNoteView::edited, this, [this, &view] {
        m_document.setMyPublicTextData(view.text());
        m_noteDelegate.textDidChange();
    });
    connect(&view, &PublicNoteView::editingEnded, this,
            [this] { m_noteDelegate.textDidEndEditing(); });
    connect(m_noteSheet.get(), &PublicNoteSheet::closeAsked, &m_document,
            &MyDocument::closePublicNoteSheet);
    connect(&m_defaults, &NSUserDefaults::changed, this, &DocumentWindowController::applyNoteFont);
    applyNoteFont();
}

void DocumentWindowController::showNote()
{
    const QString note = m_document.myPublicTextData().value_or(QString());
    m_noteSheet->view().setText(note);
    if (m_document.isEncrypted()) { // else nobody sees it, and each key would lay it out
        m_window->lockedPage().setPublicNote(note);
    }
}

void DocumentWindowController::applyNoteFont()
{
    QFont font(m_defaults.value(settings::publicNoteFontFamily));
    if (const double size = m_defaults.value(settings::publicNoteFontSize); size > 0) {
        font.setPointSizeF(size);
    }
    font.setBold(m_defaults.value(settings::publicNoteFontBold));
    font.setItalic(m_defaults.value(settings::publicNoteFontItalic));
    m_window->lockedPage().setNoteFont(font);
    m_noteSheet->view().setNoteFont(font);
}

void DocumentWindowController::bindSheets()
{
    bindFields(*m_mandatorySheet);
    connect(m_mandatorySheet.get(), &PasswordSheet::confirmed, &m_document,
            [this] { m_document.confirmMandatoryPasswordSheet(PasswordSheet::acceptTag); });
    connect(m_mandatorySheet.get(), &PasswordSheet::declined, &m_document,
            [this] { m_document.confirmMandatoryPasswordSheet(PasswordSheet::declineTag); });
    bindFields(*m_changeSheet);
    connect(m_changeSheet.get(), &PasswordSheet::confirmed, &m_document,
            &QVCryptoDoc::confirmChangePasswordSheet);
    connect(m_changeSheet.get(), &PasswordSheet::declined, &m_document,
            &QVCryptoDoc::cancelChangePasswordSheet);
    bindFields(*m_insertSheet);
    connect(m_insertSheet.get(), &PasswordSheet::confirmed, &m_document,
            &QVCryptoDoc::confirmInsertPasswordSheet);
    connect(m_insertSheet.get(), &PasswordSheet::declined, &m_document,
            &QVCryptoDoc::cancelInsertPasswordSheet);
}

void DocumentWindowController::bindFields(PasswordSheet &sheet)
{
    connect(&sheet, &PasswordSheet::previousEdited, &m_document,
            [this](const QString &text) { m_document.setPlainPasswordPrevious(text); });
    connect(&sheet, &PasswordSheet::insertedEdited, &m_document,
            [this](const QString &text) { m_document.setPlainPasswordInserted(text); });
    connect(&sheet, &PasswordSheet::retypeEdited, &m_document,
            [this](const QString &text) { m_document.setPlainPasswordInsertedRetype(text); });
    const auto show = [this, &sheet] {
        sheet.setPrevious(m_document.plainPasswordPrevious().value_or(QString()));
        sheet.setInserted(m_document.plainPasswordInserted().value_or(QString()));
        sheet.setRetype(m_document.plainPasswordInsertedRetype().value_or(QString()));
    };
    connect(&m_document, &QVCryptoDoc::plainPasswordPreviousChanged, &sheet, show);
    connect(&m_document, &QVCryptoDoc::plainPasswordInsertedChanged, &sheet, show);
    connect(&m_document, &QVCryptoDoc::plainPasswordInsertedRetypeChanged, &sheet, show);
}

} // namespace quorvane
