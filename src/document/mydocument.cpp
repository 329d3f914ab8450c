#include "document/mydocument.h"

#include "crypto/qvmacaddress.h"
#include "product/release.h"
#include "product/settings.h"

#include <cmath>
#include <limits>

namespace quorvane {

using namespace Qt::StringLiterals;

MyDocument::MyDocument(const MyDocumentSurroundings &surroundings)
    : QVCryptoDoc(surroundings.machinery, documentExtension)
    , m_surroundings(surroundings)
    , m_myPublicTextData(u""_s)
    , m_myIsEditable(true)
    , m_myCrDate(NSDate::date())
    , m_myCrMAC(QVMACAddress::MACAddressData())
{ }

MyDocument::~MyDocument()
{
    m_windowController.reset();
}

void MyDocument::disconnectOutlets()
{
    myWindow = nullptr;
    mandatoryPasswordSheet = nullptr;
    insertPasswordSheet = nullptr;
    changePasswordSheet = nullptr;
    decryptProgressIndicator = nullptr;
    myTextView = nullptr;
    myScrollView = nullptr;
    modernToolbar = nullptr;
    passwordToDecryptField = nullptr;
    myPublicTextSheet = nullptr;
    myPublicNoteView = nullptr;
}

std::optional<QByteArray> MyDocument::myTextViewData() const
{
    return myTextView ? myTextView->body() : m_myTextViewData;
}

void MyDocument::setMyTextViewData(const std::optional<QByteArray> &body)
{
    if (!myTextView) {
        m_myTextViewData = body;
        return;
    }
    if (!myTextView->setBody(body)) {
        Q_EMIT bodyIsTooTall();
    }
}

void MyDocument::setMyPublicTextData(const std::optional<QString> &note)
{
    m_myPublicTextData = note;
    Q_EMIT myPublicTextDataChanged();
}

void MyDocument::setMyIsEditable(std::optional<bool> editable)
{
    m_myIsEditable = editable;
    Q_EMIT myIsEditableChanged(myIsEditable());
}

bool MyDocument::isTextEdited() const
{
    return myTextView && myTextView->isEdited();
}

void MyDocument::markTextUnedited()
{
    if (myTextView) {
        myTextView->markUnedited();
    }
}

void MyDocument::textDidChange()
{
    noteChange();
}

void MyDocument::saveDocument()
{
    if (myWindow && myScrollView) {
        myWindow->makeFirstResponder(*myScrollView);
    }
    QVCryptoDoc::saveDocument();
}

void MyDocument::makeWindowControllers()
{
    if (!m_surroundings.loadNib) {
        return;
    }
    m_windowController = m_surroundings.loadNib(*this);
    windowControllerDidLoadNib();
}

void MyDocument::windowControllerDidLoadNib()
{
    // The ciphertext tells a document that came from a file, not isEncrypted.
    if (m_myTextViewDataEncrypted) {
        prepareLockedWindow();
    } else {
        prepareUnlockedWindow();
    }
    applyDefaults();
    if (myPublicNoteView) {
        myPublicNoteView->setUsesFontPanel(false);
        myPublicNoteView->setUsesRuler(false);
    }
    updateChangeCount(NSDocumentChangeType::Cleared);
}

void MyDocument::prepareLockedWindow()
{
    modernToolbar->setAutosavesConfiguration(false);
    modernToolbar->setVisible(false);
    m_windowController->setShouldCascadeWindows(false);
    m_surroundings.fontManager.setEnabled(false);
    const NSRect frame = lockedFrame();
    myWindow->setMaxSize(myWindow->minSize());
    myWindow->setShowsResizeIndicator(false);
    later([this, frame] {
        myWindow->setFrame(frame, false);
        myWindow->center();
    });
}

void MyDocument::prepareUnlockedWindow()
{
    modernToolbar->setVisible(true);
}

void MyDocument::applyDefaults()
{
    const NSUserDefaults &defaults = m_surroundings.defaults;
    myTextView->setTypingAttributes(startupFont());
    myTextView->setRulerVisible(defaults.value(settings::startWithRuler));
    myTextView->setContinuousSpellCheckingEnabled(defaults.value(settings::startWithSpelling));
    myTextView->setUsesAdaptiveColorMappingForDarkAppearance(true);
}

std::optional<NSFont> MyDocument::startupFont() const
{
    const NSUserDefaults &defaults = m_surroundings.defaults;
    return m_surroundings.fontManager.fontWithName(defaults.value(settings::startupFontFamily),
                                                   defaults.value(settings::startupFontSize));
}

// The top edge keeps its place, up to the fraction that the cut drops.
NSRect MyDocument::lockedFrame() const
{
    const NSRect frame = myWindow->frame();
    const NSSize least = myWindow->minSize();
    return {frame.x, frame.y + std::trunc(frame.height - least.height), least.width, least.height};
}

void MyDocument::windowDidBecomeKey(const NSWindow &window)
{
    if (&window != myWindow) {
        return;
    }
    if (m_requiresMandatoryPassword && plainPassword().isEmpty()) {
        later([this] { askMandatoryPasswordToProtectDocument(); });
    }
    m_requiresMandatoryPassword = false;
    later([this] { checkFileOnDisk(); });
}

qint32 MyDocument::decryptDone()
{
    if (passwordToDecryptField) {
        passwordToDecryptField->setStringValue(u""_s);
    }
    setIsEncrypted(false);
    if (!myWindow) {
        return 1;
    }
    constexpr double noLimit = std::numeric_limits<float>::max();
    myWindow->makeFirstResponder(*myTextView);
    myWindow->setMaxSize({noLimit, noLimit});
    myWindow->setShowsResizeIndicator(true);
    m_surroundings.fontManager.setEnabled(true);
    modernToolbar->setVisible(m_makeToolbarVisibleAtDecrypt);
    modernToolbar->setAutosavesConfiguration(true);
    if (m_useMyWinRect) {
        myWindow->setFrame(m_myWinRectToUse, true);
    }
    myTextView->setUsesAdaptiveColorMappingForDarkAppearance(true);
    return 1;
}

} // namespace quorvane
