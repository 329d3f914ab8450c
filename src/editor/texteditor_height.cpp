#include "editor/heightestimate.h"
#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QPointer>
#include <QResizeEvent>
#include <QScrollBar>
#include <QTextDocument>

#include <algorithm>

namespace quorvane {

namespace {

constexpr int manyCharacters = 2000;
// A text lower than this part of the tallest cannot become too tall by wrapping in any window.
constexpr double partSafeAtAnyWidth = 200;

} // namespace

double TextEditor::tallestInOnePiece() const
{
    return tallestDocument / std::max(zoom(), 1.0); // small fonts have lines that are rounded up
}

bool TextEditor::setZoom(double zoom)
{
    if (zoom == m_device.zoom()) {
        return true;
    }
    if (!isAtMost(tallestPaginated / zoom)) {
        return false;
    }
    const Place kept = isContentHidden() ? m_place : place();
    m_device.setZoom(zoom);
    m_narrow = m_bound;
    m_paginated = !isAtMost(tallestInOnePiece());
    if (!isContentHidden()) {
        detach();
        attach(m_content.get());
        m_content->setPageSize(m_content->pageSize()); // begins the layout anew
        QResizeEvent unchanged(viewport()->size(), viewport()->size());
        QTextEdit::resizeEvent(&unchanged); // or the scroll bars may stay as they were
        restore({kept.anchor, kept.caret, kept.top, 0, 0});
        m_unsettled.reset();
    }
    emit zoomChanged();
    return true;
}

bool TextEditor::hasRoomFor(double height)
{
    return isAtMost(tallestPaginated - height);
}

bool TextEditor::isAtMost(double height)
{
    if (m_bound.height > height) {
        m_bound.height = HeightEstimate(referenceWidth, viewport())
                             .of(*m_content)
                             .wide; // the bound only ever grows with the edits
    }
    return m_bound.height <= height;
}

void TextEditor::refuse()
{
    emit tooTall();
}

// Comes before the layout learns of the edit, so that even here nothing has been lost yet.
void TextEditor::followHeight(int position, int removed, int added)
{
    HeightEstimate estimate(m_bound.width, m_narrow.width, viewport());
    const auto [more, moreNarrow] = estimate.ofBlocks(*m_content, position, position + added);
    m_bound.height += more;
    m_narrow.height += moreNarrow;
    const double limit = m_paginated ? tallestPaginated : tallestInOnePiece();
    if (std::max(m_bound.height, m_narrow.height) > limit) {
        const auto [height, narrowHeight] = estimate.of(*m_content);
        m_bound.height = height;
        m_narrow.height = narrowHeight;
    }
    if (m_bound.height * zoom() > tallestPaginated && m_bound.height <= tallestPaginated) {
        showUnzoomed();
    }
    if (m_bound.height > tallestPaginated) {
        suspendLayout();
    } else if (m_bound.height > tallestInOnePiece() && !m_paginated) {
        m_paginated = true;
        if (!isContentHidden()) {
            pinWrap();
            paginate();
        }
    } else if (m_paginated) {
        // Whether one piece will do again is not asked at each key.
        if (removed > manyCharacters && !isContentHidden()) {
            QMetaObject::invokeMethod(this, &TextEditor::fitWrap, Qt::QueuedConnection);
        }
    } else if (m_narrow.height > tallestInOnePiece() && !isContentHidden()) {
        fitWrap();
    } else if (lineWrapMode() != WidgetWidth && removed > 0 && !isContentHidden()) {
        // Lines may wrap with the window again, once the edit is over.
        QMetaObject::invokeMethod(this, &TextEditor::fitWrap, Qt::QueuedConnection);
    }
}

// The layout has not learned of the edit yet: so large it must never see it.
void TextEditor::showUnzoomed()
{
    m_content->setLayoutEnabled(false);
    const auto layOut = [this, document = QPointer<QTextDocument>(m_content.get())] {
        if (document) {
            document->setLayoutEnabled(true);
            setZoom(1);
        }
    };
    QMetaObject::invokeMethod(this, layOut, Qt::QueuedConnection);
}

// Not even pages help where the layout's numbers end. What led here is taken back before anything
// is laid out.
void TextEditor::suspendLayout()
{
    m_content->setLayoutEnabled(false);
    const auto takeBack = [this, document = QPointer<QTextDocument>(m_content.get())] {
        if (document) {
            document->undo();
            document->setLayoutEnabled(true);
            document->setPageSize(document->pageSize());
            fitWrap();
        }
    };
    QMetaObject::invokeMethod(this, takeBack, Qt::QueuedConnection);
    QMetaObject::invokeMethod(this, &TextEditor::refuse, Qt::QueuedConnection);
}

bool TextEditor::fitsAt(double width)
{
    if (m_bound.height < tallestInOnePiece() / partSafeAtAnyWidth) {
        return true;
    }
    if (width >= m_narrow.width && m_narrow.height <= tallestInOnePiece()) {
        return true;
    }
    // Half as narrow too, so that not each step of a resize has to ask.
    const double half = width / 2;
    const auto [height, halfHeight] = HeightEstimate(width, half, viewport()).of(*m_content);
    if (halfHeight <= tallestInOnePiece()) {
        m_narrow = {half, halfHeight};
    } else if (height <= tallestInOnePiece()) {
        m_narrow = {width, height};
    } else {
        m_narrow = m_bound;
        return width >= m_bound.width && m_bound.height <= tallestInOnePiece();
    }
    return true;
}

void TextEditor::fitWrap()
{
    if (isContentHidden()) {
        return;
    }
    if (m_paginated && isAtMost(tallestInOnePiece())) {
        m_paginated = false;
    }
    const bool fits = !m_paginated && fitsAt(viewWidth());
    if (fits && lineWrapMode() != WidgetWidth) {
        setLineWrapMode(WidgetWidth);
    } else if (!fits && lineWrapMode() == WidgetWidth) {
        pinWrap();
    }
}

// The toolkit drops the pages here and lays out as far as the view reaches: from the top, that is
// not far.
void TextEditor::pinWrap()
{
    if (lineWrapMode() == FixedPixelWidth) {
        return;
    }
    verticalScrollBar()->setValue(0);
    QMetaObject::invokeMethod(this, &QTextEdit::ensureCursorVisible, Qt::QueuedConnection);
    setLineWrapColumnOrWidth(qRound(referenceWidth * zoom()));
    setLineWrapMode(FixedPixelWidth);
}

// With pages the layout has an end to reach at any height. They are taller than a screen by far:
// all one sees of them is a gap between two lines.
void TextEditor::paginate()
{
    const QSizeF page(qRound(referenceWidth * zoom()), pageHeight);
    if (document()->pageSize() != page) { // setting it begins the layout anew
        document()->setPageSize(page);
    }
}

void TextEditor::resizeEvent(QResizeEvent *event)
{
    fitWrap();
    QTextEdit::resizeEvent(event);
    if (m_paginated && !isContentHidden()) { // the resize has dropped the pages
        paginate();
    }
    if (m_unsettled) {
        m_settling.start();
    }
}

} // namespace quorvane
