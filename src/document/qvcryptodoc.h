#pragma once

#include "document/documentaction.h"
#include "platform/nsdocument.h"

namespace quorvane {

/// The protection of a document that is neither cipher nor file: whether it may be read now, the
/// passwords in memory, the sheets that ask for them, and how it closes while it is unreadable.
class QVCryptoDoc : public NSDocument
{
    Q_OBJECT

public:
    static constexpr qsizetype leastPasswordLength = 6; ///< UTF-16 units.

    QVCryptoDoc(const DocumentSurroundings &surroundings, QString extension);

    bool isEncrypted() const { return m_isEncrypted; } ///< The content may not be shown.

    bool isDecrypted() const { return !m_isEncrypted; }

    void setIsEncrypted(bool encrypted);

    /// The password that the next encryption uses; empty until one was given.
    const QString &plainPassword() const { return m_plainPassword; }

    void setPlainPassword(const QString &password);

    // What stands in the fields of the password form and sheets; absent for an absent field.
    const std::optional<QString> &plainPasswordInserted() const { return m_plainPasswordInserted; }

    const std::optional<QString> &plainPasswordInsertedRetype() const
    {
        return m_plainPasswordInsertedRetype;
    }

    const std::optional<QString> &plainPasswordPrevious() const { return m_plainPasswordPrevious; }

    void setPlainPasswordInserted(const std::optional<QString> &text);
    void setPlainPasswordInsertedRetype(const std::optional<QString> &text);
    void setPlainPasswordPrevious(const std::optional<QString> &text);

    /// A display flag of the password sheets; absent until a sheet has ended.
    std::optional<bool> showClearPasswordInInsertPasswordSheet() const
    {
        return m_showClearPassword;
    }

    /// Tries the sender's text as the password; absent is a sender that has no text.
    void submitPasswordToDecrypt(const std::optional<QString> &stringValue);
    /// Asks for another password, or for the first one where there is none yet.
    void documentPassword();
    void showChangePasswordSheet(NSWindow &window);
    void confirmChangePasswordSheet();
    void cancelChangePasswordSheet();
    void showInsertPasswordSheet(NSWindow &window);
    void confirmInsertPasswordSheet();
    void cancelInsertPasswordSheet();
    void askMandatoryPasswordToProtectDocument();
    /// \a tag is the button's: 1000 accepts, any other declines.
    void confirmMandatoryPasswordSheet(int tag);

    /// Whether a command may be given now. What would show the content waits for the password.
    bool validateUserInterfaceItem(DocumentAction action) const;
    void canCloseDocument(std::function<void(bool should)> shouldClose) override;

    /// Decrypts with plainPassword: 0 on success. The bare document refuses every password.
    [[nodiscard]] virtual qint32 Decript() { return 1; }

    virtual qint32 decryptDone() { return 1; }

    qint32 decryptFailed() const { return 1; }

    NSWindow *windowForSheet() const override { return myWindow; }

    // Outlets, connected when the window is built; null without one. The window owns them.
    NSWindow *myWindow = nullptr;
    NSSheet *mandatoryPasswordSheet = nullptr;
    NSSheet *insertPasswordSheet = nullptr;
    NSSheet *changePasswordSheet = nullptr;
    NSProgressIndicator *decryptProgressIndicator = nullptr;

Q_SIGNALS:
    void isEncryptedChanged(bool encrypted);
    void plainPasswordInsertedChanged();
    void plainPasswordInsertedRetypeChanged();
    void plainPasswordPreviousChanged();
    void plainPasswordChanged();

protected:
    bool mayRevert() const override { return !m_isEncrypted; }

private:
    void passwordNotEqualSheet(NSWindow *window);
    void passwordMustBe6CharLong(NSWindow *window);
    void passwordMustMatch(NSWindow *window);
    /// Takes what stands in the two fields as the password, or tells why not.
    bool takeInsertedPassword(NSWindow *window);
    void retryWithChangeSheet(NSWindow *window, AlertAnswer answer);
    void endInsertPasswordSheet();
    void mandatoryPasswordNonEqual();
    void mandatoryPasswordMustBe6CharLong();
    void endMandatoryPasswordSheet(int returnCode);
    void showAlert(NSWindow *window, const NSAlert &alert, AlertCompletion completion = {});

    bool m_isEncrypted = false;
    bool m_sheetWasConfirmed = false;
    std::optional<bool> m_showClearPassword;
    QString m_plainPassword;
    std::optional<QString> m_plainPasswordInserted;
    std::optional<QString> m_plainPasswordInsertedRetype;
    std::optional<QString> m_plainPasswordPrevious;
};

} // namespace quorvane
