#include "crypto/blowfish.h"
#include "crypto/qvmacaddress.h"
#include "document/documentfile.h"
#include "document/mydocument.h"
#include "platform/nskeyedarchiver.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qint32 passwordCheckDiffers = 1;
constexpr qint32 damagedCreationDate = 3;

const NSAlert cipherIsMissing {
    u"The cipher of this document is missing on this computer"_s,
    u"The document was written by one of the oldest releases of this application, encrypted with "
    u"Blowfish. That cipher is a part of OpenSSL's \"legacy\" provider, which cannot be loaded "
    u"here. "
    u"No password opens the document until the provider is installed."_s,
    {u"OK"_s},
};

} // namespace

qint32 MyDocument::Decript()
{
    if (cipherOf(m_releaseToDecryptDoc) == CipherFamily::Blowfish) {
        return decryptBlowfish();
    }
    m_myCommonCrypto = std::make_unique<QVCommonCrypto>(plainPassword());
    m_myCommonCrypto->setPasswordToDecrypt(plainPassword(), m_myIV, m_mySalt);
    const qint32 result = decryptAes();
    if (result == 0) {
        m_isSealed = false;
    }
    return result;
}

// These documents store neither date nor address of their creation: they count as made now and
// here, also where the password is wrong. The padding is all that proves it.
qint32 MyDocument::decryptBlowfish()
{
    m_myCrypto.setPassword(plainPassword());
    const Outcome body = m_myCrypto.decryptToData(m_myTextViewDataEncrypted);
    m_myCrDate = NSDate::date();
    m_myCrMAC = QVMACAddress::MACAddressData();
    if (body.error != 0) {
        if (!isBlowfishAvailable()) {
            m_surroundings.alerts.runModal(cipherIsMissing, {});
        }
        return body.error;
    }
    setMyTextViewData(body.data);
    setPlainPasswordInserted(u""_s);
    m_isSealed = false;
    return 0;
}

// The order is fixed: check record, machine address, creation date, body. What was set before a
// failure stays set.
qint32 MyDocument::decryptAes()
{
    const auto stopWith = [this](qint32 error) {
        if (decryptProgressIndicator) {
            decryptProgressIndicator->stopAnimation();
        }
        return error;
    };
    const Outcome check = m_myCommonCrypto->decrypt(m_myRCDataEncrypted);
    if (check.error != 0) {
        return stopWith(check.error);
    }
    if (!m_mySha1_RcData
        || QVCommonCrypto::dataSHA1(check.data.value_or(QByteArray())) != m_mySha1_RcData) {
        return passwordCheckDiffers;
    }
    const Outcome address = m_myCommonCrypto->decrypt(m_myCrMACEncrypted);
    if (address.error != 0) {
        return stopWith(address.error);
    }
    m_myCrMAC = address.data;
    const Outcome dateArchive = m_myCommonCrypto->decrypt(m_myCrDateEncrypted);
    if (dateArchive.error != 0) {
        return stopWith(dateArchive.error);
    }
    const std::optional<NSObject> date =
        NSKeyedUnarchiver::unarchiveObjectWithData(dateArchive.data.value_or(QByteArray()));
    if (!date) {
        return stopWith(damagedCreationDate);
    }
    m_myCrDate = date->date();
    const Outcome body = m_myCommonCrypto->decrypt(m_myTextViewDataEncrypted);
    if (body.error != 0) {
        return stopWith(body.error);
    }
    setMyTextViewData(body.data);
    setPlainPasswordInserted(u""_s);
    return 0;
}

} // namespace quorvane
