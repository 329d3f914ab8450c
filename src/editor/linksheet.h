#pragma once

#include "editor/formsheet.h"

#include <optional>

class QLineEdit;

namespace quorvane {

/// Asks for the address of a link, and for its text.
class LinkSheet final : public FormSheet
{
    Q_OBJECT

public:
    /// \a text is absent where what is linked cannot be written in one line.
    LinkSheet(const std::optional<QString> &text, const QString &address, bool isNew,
              QWidget *host);

    std::optional<QString> text() const;
    QString address() const; ///< Complete.

private:
    QLineEdit *m_text = nullptr; // absent as the text is
    QLineEdit *m_address = nullptr;
};

} // namespace quorvane
