#include "editor/layoutguard.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextEdit>
#include <QTextLayout>

#include <utility>

namespace quorvane {

namespace {

// Up to here the whole layout takes under half a second: better once than a bit at each key.
constexpr int charactersLaidOutAtOnce = 1'000'000;

bool hasLines(const QTextBlock &block)
{
    return !block.isValid() || block.layout()->lineCount() > 0;
}

} // namespace

LayoutGuard::LayoutGuard(QTextEdit &editor)
    : m_editor(editor)
{ }

void LayoutGuard::watch(QTextDocument *document)
{
    if (m_document) {
        m_document->disconnect(this);
    }
    m_document = document;
    m_wasUnfinished = false;
    if (!document) {
        return;
    }
    connect(document, &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { noteEdit(position, added); });
    connect(document, &QTextDocument::contentsChanged, this, &LayoutGuard::repair);
}

// The document tells of an edit before its layout learns of it: the blocks outside the edit still
// say how far the layout had come, which goes from the top down.
void LayoutGuard::noteEdit(int position, int added)
{
    const QTextBlock lastEdited = m_document->findBlock(position + added);
    const bool endsBefore = lastEdited.isValid() && lastEdited.next().isValid();
    const QTextBlock witness =
        endsBefore ? m_document->lastBlock() : m_document->findBlock(position).previous();
    m_wasUnfinished = m_wasUnfinished || !hasLines(witness);
}

void LayoutGuard::repair()
{
    if (!m_document
        || (!std::exchange(m_wasUnfinished, false) && hasLines(m_document->lastBlock()))) {
        return;
    }
    QScrollBar &bar = *m_editor.verticalScrollBar();
    const int place = bar.value();
    m_document->setPageSize(m_document->pageSize()); // begins the layout anew
    const bool isShort = m_document->characterCount() <= charactersLaidOutAtOnce;
    const bool caretIsFar = m_editor.textCursor().position() > charactersLaidOutAtOnce;
    if (isShort || caretIsFar) {
        m_document->documentLayout()->documentSize();
    } else {
        const double bottom = place + m_editor.viewport()->height();
        m_document->documentLayout()->hitTest(QPointF(0, bottom), Qt::FuzzyHit);
    }
    bar.setValue(place);
}

} // namespace quorvane
