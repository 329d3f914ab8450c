#include "editor/firstlook.h"

#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <optional>
#include <utility>

namespace quorvane {

void FirstLook::watch(QTextDocument *document)
{
    if (m_document) {
        m_document->disconnect(this);
    }
    m_document = document;
    m_changes.clear();
    m_end = document->availableUndoSteps();
    connect(document, &QTextDocument::undoCommandAdded, this, &FirstLook::forgetUndone);
    connect(document, &QTextDocument::contentsChanged, this, &FirstLook::settle);
}

void FirstLook::follow(const std::function<void()> &change)
{
    const int start = m_document->availableUndoSteps();
    const QTextCharFormat before = look();
    const bool isOuter = !std::exchange(m_follows, true);
    change();
    if (!isOuter) {
        return;
    }
    m_follows = false;
    const int end = m_document->availableUndoSteps();
    if (const QTextCharFormat after = look(); after != before && end > start) {
        m_changes.push_back({start, end, before, after});
    }
}

QTextCharFormat FirstLook::look() const
{
    return m_document->firstBlock().charFormat();
}

// Comes before contentsChanged: m_end still says where the stack was.
void FirstLook::forgetUndone()
{
    const auto isGone = [this](const Change &change) {
        return change.end > m_end;
    };
    m_changes.erase(std::find_if(m_changes.begin(), m_changes.end(), isGone), m_changes.end());
    m_end = m_document->availableUndoSteps();
}

void FirstLook::settle()
{
    const int former = std::exchange(m_end, m_document->availableUndoSteps());
    if (m_follows || former == m_end) {
        return;
    }
    std::optional<QTextCharFormat> settled;
    for (const Change &change : m_changes) {
        if (change.end <= m_end) {
            settled = change.after;
        } else if (change.start >= m_end) {
            settled = settled ? settled : change.before;
            break;
        }
    }
    if (settled && *settled != look()) {
        QTextCursor(m_document->firstBlock()).setBlockCharFormat(*settled);
    }
}

} // namespace quorvane
