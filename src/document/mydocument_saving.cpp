#include "document/documentfile.h"
#include "document/mydocument.h"
#include "platform/nskeyedarchiver.h"

namespace quorvane {

using namespace Qt::StringLiterals;

bool MyDocument::hasEngineForPassword() const
{
    return m_myCommonCrypto && m_myCommonCrypto->password() == plainPassword();
}

void MyDocument::setUpEngine()
{
    m_myCommonCrypto = std::make_unique<QVCommonCrypto>(plainPassword());
    takeSaltAndIV();
    renewPasswordCheck();
}

// A changed password takes effect here, at the next encryption, with nothing else to signal it.
void MyDocument::setUpEngineIfPasswordChanged()
{
    if (!hasEngineForPassword()) {
        setUpEngine();
    }
}

void MyDocument::takeSaltAndIV()
{
    m_mySalt = m_myCommonCrypto->salt();
    m_myIV = m_myCommonCrypto->IV();
}

void MyDocument::renewPasswordCheck()
{
    const QByteArray check = QVCommonCrypto::generateRandom256AsciiString().toUtf8();
    m_mySha1_RcData = QVCommonCrypto::dataSHA1(check);
    m_myRCDataEncrypted = m_myCommonCrypto->encrypt(check).data;
}

void MyDocument::encryptData()
{
    setUpEngineIfPasswordChanged();
    m_myTextViewDataEncrypted = m_myCommonCrypto->encrypt(myTextViewData()).data;
    const NSObject date = m_myCrDate ? NSObject(*m_myCrDate) : NSObject();
    m_myCrDateEncrypted =
        m_myCommonCrypto->encrypt(NSKeyedArchiver::archivedDataWithRootObject(date)).data;
    m_myCrMACEncrypted = m_myCommonCrypto->encrypt(m_myCrMAC).data;
    m_releaseToDecryptDoc = currentFormatVersion;
}

std::optional<QByteArray> MyDocument::dataOfType()
{
    setUpEngineIfPasswordChanged();
    if (!isEncrypted()) {
        m_myCommonCrypto->recalcIV_Salt_AESKey();
        encryptData();
        takeSaltAndIV();
        renewPasswordCheck();
    }
    // A failed encryption leaves its field absent: such a file could never be opened again.
    if (!m_myTextViewDataEncrypted || !m_myCrDateEncrypted || !m_myCrMACEncrypted || !m_mySalt
        || !m_myIV || !m_myRCDataEncrypted || !m_mySha1_RcData) {
        return std::nullopt;
    }
    DocumentFile file;
    file.publicTextData = m_myPublicTextData;
    file.isEditable = m_myIsEditable;
    file.textData = m_myTextViewDataEncrypted;
    file.crDate = m_myCrDateEncrypted;
    file.crMAC = m_myCrMACEncrypted;
    file.salt = m_mySalt;
    file.iv = m_myIV;
    file.rc = m_myRCDataEncrypted;
    file.sha1Rc = m_mySha1_RcData;
    if (!isEncrypted()) {
        file.windowRec = myWindow ? myWindow->frame() : NSRect();
        file.makeToolbarVisibleAtDecrypt = modernToolbar && modernToolbar->isVisible();
    } else {
        // The window is shrunk now: the file takes the frame from before the shrinking.
        if (m_useMyWinRect) {
            file.windowRec = m_myWinRectToUse;
        }
        file.makeToolbarVisibleAtDecrypt = m_makeToolbarVisibleAtDecrypt;
    }
    return file.toData();
}

std::optional<QString> MyDocument::reasonNotToWrite() const
{
    if (m_isSealed) {
        // Its password is not known: what stands in the check record would no longer fit the body.
        return u"The document has not been unlocked since it was opened."_s;
    }
    if (plainPassword().isEmpty()) {
        return u"The document has no password yet, and a document is only ever stored encrypted."_s;
    }
    return std::nullopt;
}

} // namespace quorvane
