#include "shell/myscriptdecryptdoc.h"

#include "document/mydocument.h"
#include "platform/nsdocumentcontroller.h"

#include <utility>

namespace quorvane {

MyScriptDecryptDoc::MyScriptDecryptDoc(QString directParameter, std::optional<QString> password)
    : m_directParameter(std::move(directParameter))
    , m_password(std::move(password))
{ }

void MyScriptDecryptDoc::performDefaultImplementation(NSDocumentController &documents) const
{
    documents.openDocumentWithContentsOfURL(
        m_directParameter, [password = m_password](NSDocument *opened, bool) {
            if (auto *document = qobject_cast<MyDocument *>(opened)) {
                document->setPlainPasswordInserted(password);
                // The sender is the command, which has no text: the document stays locked.
                document->submitPasswordToDecrypt(std::nullopt);
            }
        });
}

} // namespace quorvane
