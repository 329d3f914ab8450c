#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>

namespace quorvane {

namespace {
constexpr double halfLine = 8; // pixels
}

// Behind what is laid out a hit test runs to the end of the text, and a cursor there has all of it
// laid out.
int TextEditor::lastIn(const QRect &view) const
{
    const QAbstractTextDocumentLayout &layout = *document()->documentLayout();
    const QPointF origin(horizontalScrollBar()->value(), verticalScrollBar()->value());
    const QPointF bottom = view.bottomRight() + origin;
    QTextBlock last = document()->findBlock(layout.hitTest(view.topLeft() + origin, Qt::FuzzyHit));
    for (QTextBlock block = last.next(); block.isValid() && block.layout()->lineCount() > 0
         && layout.blockBoundingRect(block).top() <= bottom.y();
         block = block.next()) {
        last = block;
    }
    return layout.blockBoundingRect(last).bottom() > bottom.y()
        ? layout.hitTest(bottom, Qt::FuzzyHit)
        : last.position() + last.length() - 1;
}

TextEditor::Place TextEditor::place() const
{
    const QTextCursor cursor = textCursor();
    const QPoint top(0, qRound(halfLine * zoom())); // a line that is mostly out of view is not it
    return {cursor.anchor(), cursor.position(), cursorForPosition(top).position(),
            verticalScrollBar()->value(), viewport()->width()};
}

void TextEditor::restore(const Place &place)
{
    const int last = m_content->characterCount() - 1;
    QTextCursor cursor(m_content.get());
    cursor.setPosition(std::min(place.anchor, last));
    cursor.setPosition(std::min(place.caret, last), QTextCursor::KeepAnchor);
    setTextCursor(cursor);
    restoreScroll(place);
    m_unsettled = place;
}

void TextEditor::restoreScroll(const Place &place)
{
    if (place.width == viewport()->width()) {
        const double bottom = place.scroll + viewport()->height();
        m_content->documentLayout()->hitTest(QPointF(0, bottom),
                                             Qt::FuzzyHit); // lays out up to there
        verticalScrollBar()->setValue(place.scroll);
        return;
    }
    QTextCursor top(m_content.get());
    top.setPosition(std::min(place.top, m_content->characterCount() - 1));
    m_content->documentLayout()->blockBoundingRect(top.block()); // lays out up to there
    verticalScrollBar()->setValue(verticalScrollBar()->value() + cursorRect(top).top());
}

} // namespace quorvane
