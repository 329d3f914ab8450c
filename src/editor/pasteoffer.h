#pragma once

#include <QObject>

#include <optional>

class QTextEdit;

namespace quorvane {

/// Whether the clipboard holds what a text can take. Cheap to ask: another program is asked once
/// for each thing that it puts there.
class PasteOffer final : public QObject
{
public:
    PasteOffer();

    bool isFor(const QTextEdit &text);

private:
    std::optional<bool> m_known; // of a text that can be written to
};

} // namespace quorvane
