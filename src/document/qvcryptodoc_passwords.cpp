#include "document/qvcryptodoc.h"

#include <QPointer>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int acceptingTag = 1000;

bool isLongEnough(const std::optional<QString> &password)
{
    return password && password->size() >= QVCryptoDoc::leastPasswordLength;
}

// An absent field is equal to nothing, not even to another absent one.
bool areEqual(const std::optional<QString> &left, const std::optional<QString> &right)
{
    return left && right && *left == *right;
}

const NSAlert wrongPassword {
    u"Wrong Password"_s,
    u"You inserted a wrong password.\nTo access this document you must insert exactly the password "
    u"used to "
    "protect it"_s,
    {u"OK"_s},
};

const NSAlert passwordChanged {
    u"Password changed successfuly"_s,
    u"This new password will be used when saving this document.\nData will be stored on disk "
    u"encrypted using a "
    "secure algorithm.\n\nNext time, to open this document, this new password will be "
    "required.\nStore your new "
    "password in a safe place.\nThere is no way, even for the Orbelt, to open the document and "
    "decrypt the data "
    "without the right password."_s,
    {u"OK"_s},
};

const NSAlert passwordInserted {
    u"Password accepted"_s,
    u"This password will be used when saving this document.\nData will be stored on disk encrypted "
    u"using a secure "
    "algorithm.\n\nNext time, to open this document, this password will be required.\nStore your "
    "password in a "
    "safe place.\nThere is no way, even for Orbelt, to open the document and decrypt the data "
    "without the right "
    "password."_s,
    {u"OK"_s},
};

const NSAlert mandatoryPasswordAccepted {
    u"Password accepted"_s,
    u"This password will be used when saving this document.\nData will be stored on disk encrypted "
    u"using a secure "
    "algorithm.\n\nNext time, to open this document, this password will be required.\nStore your "
    "password in a "
    "safe place.\nThere is no way, even for the developers of this application, to open the "
    "document and decrypt "
    "the data without the right password."_s,
    {u"OK"_s},
};

const NSAlert passwordsNotEqual {
    u"Passwords inserted in the two fields doesn't match"_s,
    u"You must insert exactly the same password in the two 'New Password' fields. No changes were applied"_s,
    {u"Retry"_s, u"Cancel"_s},
};

const NSAlert passwordTooShort {
    u"Password Too Short. You have to use a password which is at least six character long."_s,
    u"No changes were applied"_s,
    {u"Retry"_s, u"Cancel"_s},
};

const NSAlert oldPasswordWrong {
    u"Password inserted in the 'Old Master Password' field must be equal to the password "
    u"previously used to "
    "protect this document."_s,
    u"No changes were applied"_s,
    {u"Retry"_s, u"Cancel"_s},
};

const NSAlert mandatoryPasswordsNotEqual {
    u"Password inserted in the two fields doesn't match"_s,
    u"You must insert exactly the same password in the two fields."_s,
    {u"Retry"_s},
};

const NSAlert mandatoryPasswordTooShort {
    u"Password too short"_s,
    u"You have to use a password which is at least six character long."_s,
    {u"Retry"_s},
};

} // namespace

void QVCryptoDoc::submitPasswordToDecrypt(const std::optional<QString> &stringValue)
{
    if (!stringValue) {
        return;
    }
    setPlainPasswordInserted(stringValue);
    if (stringValue->isEmpty()) {
        return;
    }
    setPlainPassword(*stringValue);
    if (decryptProgressIndicator) {
        decryptProgressIndicator->setHidden(false);
        decryptProgressIndicator->startAnimation();
    }
    const bool isDecrypted = Decript() == 0;
    if (isDecrypted) {
        decryptDone();
    } else {
        decryptFailed();
    }
    if (decryptProgressIndicator) {
        decryptProgressIndicator->stopAnimation();
        decryptProgressIndicator->setHidden(true);
    }
    if (isDecrypted) {
        setPlainPasswordInserted(u""_s);
        setPlainPasswordInsertedRetype(u""_s);
        setPlainPasswordPrevious(u""_s);
    } else {
        showAlert(windowForSheet(), wrongPassword);
    }
    updateChangeCount(NSDocumentChangeType::Cleared);
}

void QVCryptoDoc::documentPassword()
{
    if (m_plainPassword.isEmpty()) {
        askMandatoryPasswordToProtectDocument();
        return;
    }
    m_showClearPassword = false;
    setPlainPasswordPrevious(u""_s);
    setPlainPasswordInserted(u""_s);
    setPlainPasswordInsertedRetype(u""_s);
    if (NSWindow *window = windowForSheet()) {
        showChangePasswordSheet(*window);
    }
}

void QVCryptoDoc::showChangePasswordSheet(NSWindow &window)
{
    window.beginSheet(*changePasswordSheet, [self = QPointer(this)](int) {
        if (self && !self->isClosed()) {
            self->m_showClearPassword = false;
        }
    });
}

void QVCryptoDoc::confirmChangePasswordSheet()
{
    NSWindow *window = windowForSheet();
    window->endSheet(*changePasswordSheet);
    if (m_plainPasswordPrevious != m_plainPassword) {
        passwordMustMatch(window);
        return;
    }
    if (!takeInsertedPassword(window)) {
        return;
    }
    setPlainPasswordPrevious(u""_s);
    updateChangeCount(NSDocumentChangeType::Done);
    showAlert(window, passwordChanged);
    updateChangeCount(NSDocumentChangeType::Done);
}

bool QVCryptoDoc::takeInsertedPassword(NSWindow *window)
{
    if (!areEqual(m_plainPasswordInserted, m_plainPasswordInsertedRetype)) {
        passwordNotEqualSheet(window);
        return false;
    }
    if (!isLongEnough(m_plainPasswordInserted)) {
        passwordMustBe6CharLong(window);
        return false;
    }
    setPlainPassword(*m_plainPasswordInserted);
    setPlainPasswordInserted(u""_s);
    setPlainPasswordInsertedRetype(u""_s);
    return true;
}

void QVCryptoDoc::cancelChangePasswordSheet()
{
    windowForSheet()->endSheet(*changePasswordSheet);
}

void QVCryptoDoc::showInsertPasswordSheet(NSWindow &window)
{
    window.beginSheet(*insertPasswordSheet, [self = QPointer(this)](int) {
        if (self && !self->isClosed()) {
            self->endInsertPasswordSheet();
        }
    });
}

void QVCryptoDoc::confirmInsertPasswordSheet()
{
    m_sheetWasConfirmed = true;
    windowForSheet()->endSheet(*insertPasswordSheet);
}

void QVCryptoDoc::cancelInsertPasswordSheet()
{
    m_sheetWasConfirmed = false;
    windowForSheet()->endSheet(*insertPasswordSheet);
}

void QVCryptoDoc::endInsertPasswordSheet()
{
    m_showClearPassword = true;
    if (!m_sheetWasConfirmed) {
        return;
    }
    NSWindow *window = windowForSheet();
    if (!takeInsertedPassword(window)) {
        return;
    }
    updateChangeCount(NSDocumentChangeType::Done);
    showAlert(window, passwordInserted);
}

// The retry of either sheet leads to the change sheet.
void QVCryptoDoc::retryWithChangeSheet(NSWindow *window, AlertAnswer answer)
{
    if (answer == AlertAnswer::First) {
        later([this, window] { showChangePasswordSheet(*window); });
    }
}

void QVCryptoDoc::passwordNotEqualSheet(NSWindow *window)
{
    showAlert(windowForSheet(), passwordsNotEqual,
              [this, window](AlertAnswer answer) { retryWithChangeSheet(window, answer); });
}

void QVCryptoDoc::passwordMustBe6CharLong(NSWindow *window)
{
    showAlert(window, passwordTooShort,
              [this, window](AlertAnswer answer) { retryWithChangeSheet(window, answer); });
}

void QVCryptoDoc::passwordMustMatch(NSWindow *window)
{
    showAlert(window, oldPasswordWrong,
              [this, window](AlertAnswer answer) { retryWithChangeSheet(window, answer); });
}

void QVCryptoDoc::askMandatoryPasswordToProtectDocument()
{
    if (!myWindow || !mandatoryPasswordSheet) {
        return;
    }
    myWindow->beginSheet(*mandatoryPasswordSheet, [self = QPointer(this)](int returnCode) {
        if (self && !self->isClosed()) {
            self->endMandatoryPasswordSheet(returnCode);
        }
    });
}

void QVCryptoDoc::confirmMandatoryPasswordSheet(int tag)
{
    myWindow->endSheet(*mandatoryPasswordSheet, tag);
}

void QVCryptoDoc::endMandatoryPasswordSheet(int returnCode)
{
    m_showClearPassword = true;
    if (returnCode != acceptingTag) {
        // Who declines loses the document, also when it already held text.
        later([this] { close(); });
        return;
    }
    if (!areEqual(m_plainPasswordInserted, m_plainPasswordInsertedRetype)) {
        mandatoryPasswordNonEqual();
        return;
    }
    if (!isLongEnough(m_plainPasswordInserted)) {
        mandatoryPasswordMustBe6CharLong();
        return;
    }
    setPlainPassword(*m_plainPasswordInserted);
    setPlainPasswordInserted(u""_s);
    setPlainPasswordInsertedRetype(u""_s);
    updateChangeCount(NSDocumentChangeType::Done);
    showAlert(myWindow, mandatoryPasswordAccepted);
    updateChangeCount(NSDocumentChangeType::Done);
}

void QVCryptoDoc::mandatoryPasswordNonEqual()
{
    showAlert(windowForSheet(), mandatoryPasswordsNotEqual, [this](AlertAnswer answer) {
        if (answer == AlertAnswer::First) {
            later([this] { askMandatoryPasswordToProtectDocument(); });
        }
    });
}

void QVCryptoDoc::mandatoryPasswordMustBe6CharLong()
{
    // Unlike its twin it neither looks at the answer nor waits for the queue.
    showAlert(windowForSheet(), mandatoryPasswordTooShort,
              [this](AlertAnswer) { askMandatoryPasswordToProtectDocument(); });
}

} // namespace quorvane
