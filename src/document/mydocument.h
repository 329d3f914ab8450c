#pragma once

#include "crypto/qvcommoncrypto.h"
#include "crypto/qvcrypto.h"
#include "document/qvcryptodoc.h"
#include "platform/nstextview.h"
#include "platform/nsuserdefaults.h"
#include "platform/nsvalues.h"
#include "platform/nswindowcontroller.h"
#include "platform/nsworkspace.h"

#include <memory>

namespace quorvane {

class MyDocument;

/// What a document of the program asks of the world around it.
struct MyDocumentSurroundings
{
    DocumentSurroundings machinery;
    NSUserDefaults &defaults;
    NSFontManager &fontManager;
    ModalAlerts &alerts;
    NSWorkspace &workspace;
    /// Builds the document's window and connects the outlets; empty for a document without one.
    std::function<std::unique_ptr<NSWindowController>(MyDocument &)> loadNib;
};

/// The one class of documents: a styled text, a public note and the ciphertext of both sides.
class MyDocument final : public QVCryptoDoc
{
    Q_OBJECT

public:
    explicit MyDocument(const MyDocumentSurroundings &surroundings);
    ~MyDocument() override;

    /// The body in the clear: what the editor holds at this moment, or what was set where there is
    /// no editor. Absent in a document that never had a body.
    std::optional<QByteArray> myTextViewData() const;
    void setMyTextViewData(const std::optional<QByteArray> &body);

    const std::optional<QString> &myPublicTextData() const { return m_myPublicTextData; }

    void setMyPublicTextData(const std::optional<QString> &note);

    bool myIsEditable() const { return m_myIsEditable.value_or(false); }

    void setMyIsEditable(std::optional<bool> editable);

    const std::optional<NSDate> &myCrDate() const { return m_myCrDate; }

    const std::optional<QByteArray> &myCrMAC() const { return m_myCrMAC; }

    qint64 releaseToDecryptDoc() const { return m_releaseToDecryptDoc; }

    bool requiresMandatoryPassword() const { return m_requiresMandatoryPassword; }

    bool useMyWinRect() const { return m_useMyWinRect; }

    const NSRect &myWinRectToUse() const { return m_myWinRectToUse; }

    bool makeToolbarVisibleAtDecrypt() const { return m_makeToolbarVisibleAtDecrypt; }

    /// Brings the encrypted fields up to date with the content, under the engine's salt and IV.
    void encryptData();
    /// The file's bytes. Unlocked, everything is encrypted anew under new salt, IV and check
    /// record; locked, the encrypted fields go out as they stand. Nothing where one is missing.
    std::optional<QByteArray> dataOfType() override;
    bool readFromData(const QByteArray &data) override;

    bool hasToldWhyNotRead() const override { return m_hasToldWhyNotRead; }

    qint32 Decript() override;
    qint32 decryptDone() override;

    void saveDocument() override;
    void makeWindowControllers() override;
    void windowDidBecomeKey(const NSWindow &window);
    /// The editor reports each change here; the edited mark follows what the editor says of itself.
    void textDidChange();

    /// How the menu item of a command stands: enabled or not, its title, its check mark.
    MenuItemState validateMenuItem(DocumentAction action) const;

    /// Opens the sheet in which the note is edited. Editing takes effect as it goes.
    void editPublicNote();
    void closePublicNoteSheet();

    // None of these marks the document as edited.
    void switchReadAndWrite();
    void setReadOnly();
    void setReadAndWrite();
    /// Asks, then takes all styles from the text.
    void makePlainText();
    void doMakePlainText();
    /// Gives the text, and what is typed next, the look of a new document, and counts as a change.
    /// The argument is not read: a document made for another program begins empty.
    void setContentAsText(const QString &text);

    void lockDocument();
    /// Locks without a question: an open document with a password and a file, a sheet on it or not.
    void lockAutomatically();
    void doLockDocument();
    /// The second route, which saves first: the answer of a question whether to lock.
    void didDismissLockDocument(int returnCode);

    /// To be called by the window before its widgets go.
    void disconnectOutlets();

    // Outlets, connected when the window is built; null without one. The window owns them.
    NSTextView *myTextView = nullptr;
    NSResponder *myScrollView = nullptr;
    NSToolbar *modernToolbar = nullptr;
    NSSecureTextField *passwordToDecryptField = nullptr;
    NSSheet *myPublicTextSheet = nullptr;
    NSPlainTextView *myPublicNoteView = nullptr;

Q_SIGNALS:
    void myPublicTextDataChanged();
    void myIsEditableChanged(bool editable);
    /// The unlocked text is longer than the editor can show; it is kept as it is.
    void bodyIsTooTall();

protected:
    std::optional<QString> reasonNotToWrite() const override;

    bool isUntouched() const override { return m_isSealed; }

    bool isTextEdited() const override;
    void markTextUnedited() override;

private:
    void windowControllerDidLoadNib();
    void prepareLockedWindow();
    void prepareUnlockedWindow();
    void applyDefaults();
    std::optional<NSFont> startupFont() const;
    NSRect lockedFrame() const;

    bool hasEngineForPassword() const;
    void setUpEngine();
    void takeSaltAndIV();
    void renewPasswordCheck();
    void setUpEngineIfPasswordChanged();
    qint32 decryptAes();
    qint32 decryptBlowfish();

    MyDocumentSurroundings m_surroundings;
    std::unique_ptr<NSWindowController> m_windowController;

    std::optional<QByteArray> m_myTextViewData; // only where there is no editor
    std::optional<QString> m_myPublicTextData;
    std::optional<bool> m_myIsEditable;
    std::optional<NSDate> m_myCrDate;
    std::optional<QByteArray> m_myCrMAC;

    std::optional<QByteArray> m_myTextViewDataEncrypted;
    std::optional<QByteArray> m_myCrDateEncrypted;
    std::optional<QByteArray> m_myCrMACEncrypted;
    std::optional<QByteArray> m_mySalt;
    std::optional<QByteArray> m_myIV;
    std::optional<QByteArray> m_myRCDataEncrypted;
    std::optional<QByteArray> m_mySha1_RcData;

    std::unique_ptr<QVCommonCrypto> m_myCommonCrypto;
    QVCrypto m_myCrypto {QVCrypto::documentVector};
    qint64 m_releaseToDecryptDoc = 0;
    NSRect m_myWinRectToUse;
    bool m_useMyWinRect = false;
    bool m_makeToolbarVisibleAtDecrypt = false;
    bool m_requiresMandatoryPassword = true;
    bool m_isSealed = false; // read from a file and not unlocked since
    bool m_hasToldWhyNotRead = false;
};

} // namespace quorvane
