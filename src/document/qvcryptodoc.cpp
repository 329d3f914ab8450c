#include "document/qvcryptodoc.h"

#include <QPointer>

#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

QVCryptoDoc::QVCryptoDoc(const DocumentSurroundings &surroundings, QString extension)
    : NSDocument(surroundings, std::move(extension))
    , m_plainPassword(u""_s)
    , m_plainPasswordInserted(u""_s)
    , m_plainPasswordInsertedRetype(u""_s)
    , m_plainPasswordPrevious(u""_s)
{ }

void QVCryptoDoc::setIsEncrypted(bool encrypted)
{
    m_isEncrypted = encrypted;
    Q_EMIT isEncryptedChanged(encrypted);
}

void QVCryptoDoc::setPlainPassword(const QString &password)
{
    m_plainPassword = password;
    Q_EMIT plainPasswordChanged();
}

void QVCryptoDoc::setPlainPasswordInserted(const std::optional<QString> &text)
{
    m_plainPasswordInserted = text;
    Q_EMIT plainPasswordInsertedChanged();
}

void QVCryptoDoc::setPlainPasswordInsertedRetype(const std::optional<QString> &text)
{
    m_plainPasswordInsertedRetype = text;
    Q_EMIT plainPasswordInsertedRetypeChanged();
}

void QVCryptoDoc::setPlainPasswordPrevious(const std::optional<QString> &text)
{
    m_plainPasswordPrevious = text;
    Q_EMIT plainPasswordPreviousChanged();
}

void QVCryptoDoc::showAlert(NSWindow *window, const NSAlert &alert, AlertCompletion completion)
{
    if (!window) {
        return;
    }
    window->beginAlert(
        alert, [self = QPointer(this), completion = std::move(completion)](AlertAnswer answer) {
            if (self && !self->isClosed() && completion) {
                completion(answer);
            }
        });
}

bool QVCryptoDoc::validateUserInterfaceItem(DocumentAction action) const
{
    switch (action) {
    case DocumentAction::SaveDocument:
    case DocumentAction::SaveDocumentAs:
    case DocumentAction::DocumentPassword:
    case DocumentAction::RevertDocumentToSaved:
    case DocumentAction::RunPageLayout:
    case DocumentAction::PrintPreview:
    case DocumentAction::PrintDocument:
        return !m_isEncrypted;
    default:
        return true;
    }
}

void QVCryptoDoc::canCloseDocument(std::function<void(bool should)> shouldClose)
{
    if (m_isEncrypted) {
        // The caller is deliberately not answered, and nobody is asked: but for a text that is
        // neither in the file nor kept for recovery, which would be gone.
        closeUnlessUnsaved(std::move(shouldClose));
        return;
    }
    NSDocument::canCloseDocument(std::move(shouldClose));
}

} // namespace quorvane
