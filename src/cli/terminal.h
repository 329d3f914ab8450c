#pragma once

#include <QByteArray>

#include <optional>

namespace quorvane {

/// The terminal at which the user sits, whatever standard input and output are.
class Terminal final
{
public:
    Terminal();
    ~Terminal();
    Q_DISABLE_COPY_MOVE(Terminal)

    bool isThere() const { return m_descriptor >= 0; }

    /// Asks for a line without showing what is typed. A signal that ends the program meanwhile
    /// finds the terminal as it was. \return nothing where the input ended.
    std::optional<QByteArray> readHidden(const QByteArray &prompt);

private:
    int m_descriptor;
};

} // namespace quorvane
