#include "document/documentfile.h"
#include "document/mydocument.h"
#include "product/qvappsupportutility.h"

namespace quorvane {

bool MyDocument::readFromData(const QByteArray &data)
{
    m_requiresMandatoryPassword = false;
    m_hasToldWhyNotRead = false;
    const std::optional<DocumentFile> file = DocumentFile::fromData(data);
    if (!file) {
        return false;
    }
    m_makeToolbarVisibleAtDecrypt = true;
    const FormatFamily family = familyOf(file->appversion);
    if (family == FormatFamily::Newer) {
        m_hasToldWhyNotRead = true;
        QVAppSupportUtility::sayFilecreatedWithANewerVersion(m_surroundings.alerts,
                                                             m_surroundings.workspace);
        return false;
    }
    m_releaseToDecryptDoc = static_cast<qint64>(file->appversion);
    m_isSealed = true;
    setIsEncrypted(true);
    if (family != FormatFamily::Unlisted) {
        setMyIsEditable(file->isEditable);
    }
    setMyPublicTextData(file->publicTextData);
    m_myTextViewDataEncrypted = file->textData;
    if (file->windowRec) {
        m_useMyWinRect = true;
        m_myWinRectToUse = *file->windowRec;
    }
    if (family == FormatFamily::FirstAes || family == FormatFamily::CurrentAes) {
        m_myCrDateEncrypted = file->crDate;
        m_myCrMACEncrypted = file->crMAC;
        m_mySalt = file->salt;
        m_myIV = file->iv;
        m_myRCDataEncrypted = file->rc;
        m_mySha1_RcData = file->sha1Rc;
    }
    if (family == FormatFamily::CurrentAes) {
        m_makeToolbarVisibleAtDecrypt = file->makeToolbarVisibleAtDecrypt.value_or(false);
    } else {
        updateChangeCount(NSDocumentChangeType::Done);
    }
    return true;
}

} // namespace quorvane
