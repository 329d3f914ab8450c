#pragma once

#include <QString>

#include <optional>

namespace quorvane {

class NSDocumentController;

/// The command of a script that opens a document and hands it a password. The password waits in the
/// document; nothing is decrypted by it.
class MyScriptDecryptDoc final
{
public:
    MyScriptDecryptDoc(QString directParameter, std::optional<QString> password);

    void performDefaultImplementation(NSDocumentController &documents) const;

private:
    QString m_directParameter; // the path
    std::optional<QString> m_password;
};

} // namespace quorvane
