#include "editor/pasteoffer.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTextEdit>

namespace quorvane {

PasteOffer::PasteOffer()
{
    connect(QGuiApplication::clipboard(), &QClipboard::dataChanged, this,
            [this] { m_known.reset(); });
}

bool PasteOffer::isFor(const QTextEdit &text)
{
    if (text.isReadOnly()) {
        return false;
    }
    if (!m_known) {
        m_known = text.canPaste();
    }
    return *m_known;
}

} // namespace quorvane
