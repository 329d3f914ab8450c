#include "editor/texteditor.h"

#include "editor/attachmentobject.h"
#include "editor/copiedtext.h"
#include "editor/heightestimate.h"
#include "editor/insertion.h"
#include "editor/pastedtext.h"

#include <QAbstractTextDocumentLayout>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QPointer>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextDocumentFragment>
#include <QUrl>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int settlingMilliseconds = 80; // longer than a step of an animated resize
// The tallest document that is shown at all: the layout's numbers end at 2^25.
constexpr double tallestPaginated = 30'000'000;
constexpr double margin = 14;
constexpr int manyCharacters = 2000;
constexpr auto utf8Format = "text/plain;charset=utf-8"_L1; // some programs offer no other
// A text lower than this cannot become too tall by wrapping in any window.
constexpr double heightSafeAtAnyWidth = tallestDocument / 200;

QFont fontOf(const NSFont &font)
{
    QFont result(font.family);
    result.setPointSizeF(font.pointSize);
    return result;
}

/// Names of files are no text, though they are offered as one.
bool hasPlainText(const QMimeData &source)
{
    const QList<QUrl> urls = source.urls();
    if (std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); })) {
        return false;
    }
    return source.hasFormat(u"text/plain"_s) || source.hasFormat(utf8Format)
        || (source.hasText() && !source.hasUrls());
}

QString plainTextOf(const QMimeData &source)
{
    const bool isUtf8Alone = source.hasFormat(utf8Format) && !source.hasFormat(u"text/plain"_s);
    return isUtf8Alone ? QString::fromUtf8(source.data(utf8Format)) : source.text();
}

bool insertsText(const QString &text)
{
    return !text.isEmpty() && (text.at(0).isPrint() || text.at(0) == u'\r' || text.at(0) == u'\t');
}

} // namespace

TextEditor::TextEditor(QWidget *parent)
    : QTextEdit(parent)
{
    setAccessibleName(u"Document text"_s);
    setAcceptRichText(true);
    setTabChangesFocus(false);
    setFrameShape(QFrame::NoFrame);
    m_settling.setSingleShot(true);
    m_settling.setInterval(settlingMilliseconds);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        if (const auto place = std::exchange(m_unsettled, std::nullopt)) {
            restoreScroll(*place);
        }
    });
    static_cast<void>(showDocument(std::make_unique<QTextDocument>()));
}

TextEditor::~TextEditor()
{
    detach();
    setDocument(nullptr);
}

TextEditor::ShowResult TextEditor::showDocument(std::unique_ptr<QTextDocument> document)
{
    HeightEstimate estimate(referenceWidth, viewport());
    if (m_typingFont) { // also for text without a font of its own: it has none in a file either
        document->setDefaultFont(fontOf(*m_typingFont));
    }
    document->setDocumentMargin(margin);
    const double height = estimate.of(*document);
    if (height > tallestPaginated) {
        return ShowResult::TooTall;
    }
    document->setUndoRedoEnabled(false); // drops what filling has recorded
    document->setUndoRedoEnabled(true);
    document->setModified(false);
    detach();
    const auto former = std::exchange(m_content, std::move(document));
    m_bound = {referenceWidth, height};
    m_narrow = m_bound;
    m_paginated = height > tallestDocument;
    m_place = {};
    m_unsettled.reset();
    if (!isContentHidden()) {
        attach(m_content.get());
        setTypingFont(m_typingFont);
    }
    connect(m_content.get(), &QTextDocument::contentsChange, this, &TextEditor::followHeight);
    emit contentReplaced();
    return ShowResult::Shown;
}

bool TextEditor::showInPlace(std::unique_ptr<QTextDocument> document)
{
    const Place kept = isContentHidden() ? m_place : place();
    const bool wasModified = m_content->isModified();
    if (showDocument(std::move(document)) == ShowResult::TooTall) {
        refuse();
        return false;
    }
    m_content->setModified(wasModified);
    if (isContentHidden()) {
        m_place = kept;
    } else {
        restore(kept);
    }
    return true;
}

// Documents stay ours: the editor would delete a child of its own when it is given another one, and
// a document that is no child of an editor would read files to find its images.
void TextEditor::attach(QTextDocument *document)
{
    const bool pins = document == m_content.get() && (m_paginated || !fitsAt(viewport()->width()));
    if (pins) {
        pinWrap();
    }
    document->setParent(this);
    AttachmentObject::registerFor(*document);
    setDocument(document);
    if (pins && m_paginated) {
        paginate();
    } else if (!pins && lineWrapMode() != WidgetWidth) {
        setLineWrapMode(WidgetWidth); // not before: it lays out what is shown, without pages
    }
    m_layoutGuard.watch(document);
}

void TextEditor::detach()
{
    m_layoutGuard.watch(nullptr);
    if (document()->parent() == this) {
        document()->setParent(nullptr);
    }
}

void TextEditor::setContentHidden(bool hidden)
{
    if (hidden == isContentHidden()) {
        return;
    }
    if (hidden) {
        CopiedText::clearClipboards(this);
        m_place = place();
        m_settling.stop();
        detach();
        m_standIn = std::make_unique<QTextDocument>();
        attach(m_standIn.get());
        return;
    }
    detach();
    const auto standIn = std::move(m_standIn);
    attach(m_content.get());
    restore(m_place);
    setTypingFont(m_typingFont);
}

void TextEditor::setTypingFont(const std::optional<NSFont> &font)
{
    m_typingFont = font;
    if (!font || !m_content->isEmpty()) {
        return;
    }
    m_content->setDefaultFont(fontOf(*font));
    if (!isContentHidden()) {
        QTextCharFormat format;
        format.setFontFamilies({font->family});
        format.setFontPointSize(font->pointSize);
        mergeCurrentCharFormat(format);
    }
}

// --- Height ---------------------------------------------------------------------------------

double TextEditor::heightAt(double width) const
{
    return HeightEstimate(width, viewport()).of(*m_content);
}

bool TextEditor::hasRoomFor(double height)
{
    return isAtMost(tallestPaginated - height);
}

bool TextEditor::isAtMost(double height)
{
    if (m_bound.height > height) {
        m_bound.height = heightAt(referenceWidth); // the bound only ever grows with the edits
    }
    return m_bound.height <= height;
}

bool TextEditor::applyCharFormat(const QTextCharFormat &format)
{
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        mergeCurrentCharFormat(format);
        return true;
    }
    HeightEstimate estimate(referenceWidth, viewport());
    estimate.restyle(cursor.selectionStart(), cursor.selectionEnd(), format);
    if (estimate.of(*m_content) > tallestPaginated) {
        refuse();
        return false;
    }
    mergeCurrentCharFormat(format);
    return true;
}

bool TextEditor::insertDocument(const QTextDocument &inserted)
{
    if (!hasRoomFor(HeightEstimate(referenceWidth, viewport()).of(inserted))) {
        refuse();
        return false;
    }
    QTextCursor cursor = textCursor();
    cursor.beginEditBlock();
    cursor.removeSelectedText();
    if (cursor.block().length() == 1) { // nothing of its own that the paragraph's look belongs to
        QTextBlockFormat look = inserted.begin().blockFormat();
        look.setObjectIndex(-1); // its list is one of the other document
        cursor.mergeBlockFormat(look);
    }
    cursor.insertFragment(QTextDocumentFragment(&inserted));
    cursor.endEditBlock();
    ensureCursorVisible();
    return true;
}

bool TextEditor::insertText(const QString &text)
{
    QTextDocument probe;
    probe.setUndoRedoEnabled(false);
    probe.setDefaultFont(m_content->defaultFont());
    QTextCursor(&probe).insertText(text, currentCharFormat());
    if (!hasRoomFor(HeightEstimate(referenceWidth, viewport()).of(probe))) {
        refuse();
        return false;
    }
    QTextCursor cursor = textCursor();
    insertCharacters(cursor, text);
    ensureCursorVisible();
    return true;
}

void TextEditor::refuse()
{
    emit tooTall();
}

// Comes before the layout learns of the edit, so that even here nothing has been lost yet.
void TextEditor::followHeight(int position, int removed, int added)
{
    for (Bound *bound : {&m_bound, &m_narrow}) {
        bound->height += HeightEstimate(bound->width, viewport())
                             .ofBlocks(*m_content, position, position + added);
        const double limit = m_paginated ? tallestPaginated : tallestDocument;
        if (bound->height > limit) {
            bound->height = heightAt(bound->width);
        }
    }
    if (m_bound.height > tallestPaginated) {
        suspendLayout();
    } else if (m_bound.height > tallestDocument && !m_paginated) {
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
    } else if (m_narrow.height > tallestDocument && !isContentHidden()) {
        fitWrap();
    } else if (lineWrapMode() != WidgetWidth && removed > 0 && !isContentHidden()) {
        // Lines may wrap with the window again, once the edit is over.
        QMetaObject::invokeMethod(this, &TextEditor::fitWrap, Qt::QueuedConnection);
    }
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
    if (m_bound.height < heightSafeAtAnyWidth) {
        return true;
    }
    if (width >= m_narrow.width && m_narrow.height <= tallestDocument) {
        return true;
    }
    // Half as narrow at first, so that not each step of a resize has to ask.
    for (const double candidate : {width / 2, width}) {
        const double height = heightAt(candidate);
        if (height <= tallestDocument) {
            m_narrow = {candidate, height};
            return true;
        }
    }
    m_narrow = m_bound;
    return width >= m_bound.width && m_bound.height <= tallestDocument;
}

void TextEditor::fitWrap()
{
    if (isContentHidden()) {
        return;
    }
    if (m_paginated && isAtMost(tallestDocument)) {
        m_paginated = false;
    }
    const bool fits = !m_paginated && fitsAt(viewport()->width());
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
    setLineWrapColumnOrWidth(referenceWidth);
    setLineWrapMode(FixedPixelWidth);
}

// With pages the layout has an end to reach at any height. They are taller than a screen by far:
// all one sees of them is a gap between two lines.
void TextEditor::paginate()
{
    const QSizeF page(referenceWidth, pageHeight);
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

// --- Place ----------------------------------------------------------------------------------

TextEditor::Place TextEditor::place() const
{
    const QTextCursor cursor = textCursor();
    return {cursor.anchor(), cursor.position(), cursorForPosition(QPoint(0, 0)).position(),
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

// --- Input ----------------------------------------------------------------------------------

void TextEditor::keyPressEvent(QKeyEvent *event)
{
    m_unsettled.reset();
    if (!isReadOnly() && insertsText(event->text()) && !hasRoomFor(2 * cursorRect().height())) {
        refuse();
        return;
    }
    QTextEdit::keyPressEvent(event);
}

void TextEditor::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) { // the toolkit would insert it, as the caret can be moved
        event->ignore();
        return;
    }
    if (insertsText(event->commitString()) && !hasRoomFor(2 * cursorRect().height())) {
        refuse();
        return;
    }
    QTextEdit::inputMethodEvent(event);
}

void TextEditor::mousePressEvent(QMouseEvent *event)
{
    m_unsettled.reset();
    QTextEdit::mousePressEvent(event);
}

// A read-only editor would zoom, which changes the fonts of the document itself.
void TextEditor::wheelEvent(QWheelEvent *event)
{
    m_unsettled.reset();
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        event->ignore();
        return;
    }
    QTextEdit::wheelEvent(event);
}

// A change of the program's font would become the document's.
void TextEditor::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange || event->type() == QEvent::ApplicationFontChange) {
        QAbstractScrollArea::changeEvent(event);
        return;
    }
    QTextEdit::changeEvent(event);
}

// Another program deletes what it has moved here, even if it was refused: it may only copy.
void TextEditor::dropEvent(QDropEvent *event)
{
    if (event->source() != viewport() && event->source() != this) {
        event->setDropAction(Qt::CopyAction);
    }
    QTextEdit::dropEvent(event);
}

QMimeData *TextEditor::createMimeDataFromSelection() const
{
    std::unique_ptr<QMimeData> common(QTextEdit::createMimeDataFromSelection());
    return new CopiedText(std::move(common), textCursor(), this);
}

bool TextEditor::canInsertFromMimeData(const QMimeData *source) const
{
    return source
        && (source->hasFormat(rtfdFormat) || offersRtf(*source) || source->hasHtml()
            || hasPlainText(*source));
}

void TextEditor::insertFromMimeData(const QMimeData *source)
{
    if (!source || isReadOnly()) {
        return;
    }
    if (const std::unique_ptr<QTextDocument> pasted = documentOf(*source)) {
        insertDocument(*pasted);
    } else if (hasPlainText(*source)) {
        insertText(plainTextOf(*source));
    }
}

/// What is offered with a look, in the form that says most; null where there is none.
std::unique_ptr<QTextDocument> TextEditor::documentOf(const QMimeData &source)
{
    if (source.hasFormat(rtfdFormat)) {
        return pastedBody(source.data(rtfdFormat), *m_content);
    }
    if (const QByteArray rtf = rtfOf(source); !rtf.isEmpty()) {
        return pastedBody(rtf, *m_content);
    }
    return source.hasHtml() ? pastedHtml(source.html(), m_content->defaultFont()) : nullptr;
}

QVariant TextEditor::loadResource(int type, const QUrl &name)
{
    if (type == QTextDocument::ImageResource) {
        const QImage image = imageOf(name);
        document()->addResource(type, name, image);
        return image;
    }
    return u" "_s; // an empty answer would make the document look for a file
}

} // namespace quorvane
