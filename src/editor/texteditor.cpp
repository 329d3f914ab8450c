#include "editor/texteditor.h"

#include "editor/attachmentobject.h"
#include "editor/copiedtext.h"
#include "editor/heightestimate.h"
#include "editor/insertion.h"
#include "editor/pastedtext.h"
#include "editor/texttransfer.h"
#include "richtext/body.h"

#include <QAbstractTextDocumentLayout>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
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
constexpr double margin = 14;
constexpr auto utf8Format = "text/plain;charset=utf-8"_L1; // some programs offer no other

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

/// HTML that is there for the sake of an image that is offered beside it.
bool holdsNothing(const QString &html)
{
    QTextDocument read;
    readBody(bodyOfHtml(html, QFont()), read);
    return read.toPlainText().trimmed().isEmpty();
}

} // namespace

TextEditor::TextEditor(QWidget *parent)
    : QTextEdit(parent)
{
    setAccessibleName(u"Document text"_s);
    setAcceptRichText(true);
    setTabChangesFocus(false);
    setFrameShape(QFrame::NoFrame);
    connect(this, &QTextEdit::cursorPositionChanged, this, &TextEditor::showMarginWithFirstLine);
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
    const double besideBar = viewWidth() - verticalScrollBar()->sizeHint().width() / zoom();
    const double narrow = std::min<double>(referenceWidth, besideBar);
    HeightEstimate estimate(referenceWidth, narrow, viewport());
    if (m_typingFont) { // also for text without a font of its own: it has none in a file either
        document->setDefaultFont(fontOf(*m_typingFont));
    }
    document->setDocumentMargin(margin);
    const auto [height, narrowHeight] = estimate.of(*document);
    if (height > tallestPaginated) {
        return ShowResult::TooTall;
    }
    const bool isUnzoomed = height * zoom() > tallestPaginated;
    if (isUnzoomed) {
        m_device.setZoom(1);
    }
    document->setUndoRedoEnabled(false); // drops what filling has recorded
    document->setUndoRedoEnabled(true);
    document->setModified(false);
    detach();
    const auto former = std::exchange(m_content, std::move(document));
    m_bound = {referenceWidth, height};
    m_paginated = height > tallestInOnePiece();
    m_narrow = narrowHeight > tallestInOnePiece() ? m_bound : Bound {narrow, narrowHeight};
    m_place = {};
    m_unsettled.reset();
    if (!isContentHidden()) {
        attach(m_content.get());
        setTypingFont(m_typingFont);
    }
    connect(m_content.get(), &QTextDocument::contentsChange, this, &TextEditor::followHeight);
    m_undoNames.watch(m_content.get());
    m_firstLook.watch(m_content.get());
    emit contentReplaced();
    if (isUnzoomed) {
        emit zoomChanged();
    }
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
    const bool pins = document == m_content.get() && (m_paginated || !fitsAt(viewWidth()));
    if (pins) {
        pinWrap();
    }
    document->setParent(this);
    AttachmentObject::registerFor(*document);
    const bool isZoomed = zoom() != 1 && document == m_content.get();
    document->documentLayout()->setPaintDevice(isZoomed ? &m_device : nullptr);
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
    setExtraSelections({}); // their cursors are the document's
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
        m_looks.clear(); // the address of a link is one of them
        m_looksKey = {};
        detach();
        m_standIn = std::make_unique<QTextDocument>();
        attach(m_standIn.get());
        emit contentHiddenChanged();
        return;
    }
    detach();
    const auto standIn = std::move(m_standIn);
    attach(m_content.get());
    restore(m_place);
    setTypingFont(m_typingFont);
    emit contentHiddenChanged();
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

bool TextEditor::edit(const QString &name, const std::function<void(QTextCursor &)> &change)
{
    if (isReadOnly() || isContentHidden()) {
        return false;
    }
    const UndoNames::Scope scope(m_undoNames, name);
    m_firstLook.follow([&] {
        QTextCursor cursor = textCursor();
        cursor.beginEditBlock();
        change(cursor);
        cursor.endEditBlock();
        const QTextCursor caret = textCursor();
        const bool isMoved =
            cursor.position() != caret.position() || cursor.anchor() != caret.anchor();
        const int top = verticalScrollBar()->value();
        setTextCursor(cursor); // which knows the look of what is typed next, and scrolls to it
        if (!isMoved) {
            verticalScrollBar()->setValue(top);
        }
    });
    return true;
}

bool TextEditor::applyCharFormat(const QTextCharFormat &format, const QString &name)
{
    if (isReadOnly() || isContentHidden()) {
        return false;
    }
    const UndoNames::Scope scope(m_undoNames, name);
    const QTextCursor cursor = textCursor();
    if (!cursor.hasSelection()) {
        mergeCurrentCharFormat(format);
        return true;
    }
    HeightEstimate estimate(referenceWidth, viewport());
    estimate.restyle(cursor.selectionStart(), cursor.selectionEnd(), format);
    if (estimate.of(*m_content).wide > tallestPaginated) {
        refuse();
        return false;
    }
    mergeCurrentCharFormat(format);
    return true;
}

bool TextEditor::insertDocument(const QTextDocument &inserted, const QString &name)
{
    const UndoNames::Scope scope(m_undoNames, name);
    if (!hasRoomFor(HeightEstimate(referenceWidth, viewport()).of(inserted).wide)) {
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

bool TextEditor::insertText(const QString &text, const QString &name)
{
    const UndoNames::Scope scope(m_undoNames, name);
    QTextDocument probe;
    probe.setUndoRedoEnabled(false);
    probe.setDefaultFont(m_content->defaultFont());
    QTextCursor(&probe).insertText(text, currentCharFormat());
    if (!hasRoomFor(HeightEstimate(referenceWidth, viewport()).of(probe).wide)) {
        refuse();
        return false;
    }
    handleTyped([this, &text] {
        QTextCursor cursor = textCursor();
        insertCharacters(cursor, text);
    });
    ensureCursorVisible();
    return true;
}

// --- Input ----------------------------------------------------------------------------------

bool TextEditor::viewportEvent(QEvent *event)
{
    const bool isMouse = event->type() == QEvent::MouseButtonPress
        || event->type() == QEvent::MouseButtonDblClick || event->type() == QEvent::MouseMove
        || event->type() == QEvent::MouseButtonRelease;
    const auto *mouse = isMouse ? static_cast<QMouseEvent *>(event) : nullptr;
    const QPointF place = mouse ? onLine(mouse->position()) : QPointF();
    if (!mouse || place == mouse->position()) {
        return QTextEdit::viewportEvent(event);
    }
    QMouseEvent moved(mouse->type(), place, mouse->globalPosition(), mouse->button(),
                      mouse->buttons(), mouse->modifiers(), mouse->pointingDevice());
    const bool isTaken = QTextEdit::viewportEvent(&moved);
    event->setAccepted(moved.isAccepted());
    return isTaken;
}

void TextEditor::mousePressEvent(QMouseEvent *event)
{
    m_unsettled.reset();
    QTextEdit::mousePressEvent(event);
}

// The toolkit's zoom changes the fonts of the document itself.
void TextEditor::wheelEvent(QWheelEvent *event)
{
    m_unsettled.reset();
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        if (!m_scrolling.take(*event)) {
            QTextEdit::wheelEvent(event);
        }
        return;
    }
    m_wheelTurn += event->angleDelta().y();
    const int steps = m_wheelTurn / QWheelEvent::DefaultDeltasPerStep;
    m_wheelTurn %= QWheelEvent::DefaultDeltasPerStep;
    if (steps != 0) {
        emit zoomAsked(steps);
    }
    event->accept();
}

void TextEditor::contextMenuEvent(QContextMenuEvent *event)
{
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QPoint place = byKey ? cursorRect().bottomLeft() : event->pos();
    emit contextMenuAsked(place, viewport()->mapToGlobal(place));
}

void TextEditor::addOverlay(std::function<void(QPainter &painter)> draw)
{
    m_overlays.push_back(std::move(draw));
}

void TextEditor::paintEvent(QPaintEvent *event)
{
    QTextEdit::paintEvent(event);
    if (m_overlays.empty() || isContentHidden()) {
        return;
    }
    QPainter painter(viewport());
    painter.setClipRegion(event->region());
    for (const auto &draw : m_overlays) {
        draw(painter);
    }
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
    const bool isForeign = event->source() != viewport() && event->source() != this;
    const UndoNames::Scope scope(m_undoNames, u"Drag and Drop"_s);
    QDropEvent placed(onLine(event->position()), event->possibleActions(), event->mimeData(),
                      event->buttons(), event->modifiers());
    placed.setDropAction(isForeign ? Qt::CopyAction : event->dropAction());
    QTextEdit::dropEvent(&placed); // which proposes its own again
    event->setDropAction(isForeign ? Qt::CopyAction : placed.dropAction());
    event->setAccepted(placed.isAccepted());
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
            || hasPlainText(*source)
            || (m_foreignObjects.offers && m_foreignObjects.offers(*source)));
}

void TextEditor::pasteAndMatchStyle()
{
    const QMimeData *source = QGuiApplication::clipboard()->mimeData();
    if (!source || isReadOnly()) {
        return;
    }
    QString text;
    if (hasPlainText(*source)) {
        text = plainTextOf(*source);
    } else if (const std::unique_ptr<QTextDocument> styled = documentOf(*source)) {
        text = stringOf(*styled);
    }
    text.remove(QChar::ObjectReplacementCharacter); // stands for an attachment, and is none
    if (!text.isEmpty()) {
        insertText(text);
    }
}

void TextEditor::insertFromMimeData(const QMimeData *source)
{
    if (!source || isReadOnly()) {
        return;
    }
    if (takesObjects(*source)) {
        m_foreignObjects.take(*source);
        return;
    }
    const QString step = m_undoNames.current().isEmpty() ? u"Paste"_s : m_undoNames.current();
    if (const std::unique_ptr<QTextDocument> pasted = documentOf(*source)) {
        insertDocument(*pasted, step);
    } else if (hasPlainText(*source)) {
        insertText(plainTextOf(*source), step);
    }
}

/// Files come before their names; an image comes after words, of which it may be but a rendering.
bool TextEditor::takesObjects(const QMimeData &source) const
{
    const bool isText = source.hasFormat(rtfdFormat) || offersRtf(source);
    if (isText || !m_foreignObjects.offers || !m_foreignObjects.offers(source)) {
        return false;
    }
    const QList<QUrl> urls = source.urls();
    const bool areFiles =
        std::any_of(urls.begin(), urls.end(), [](const QUrl &url) { return url.isLocalFile(); });
    return areFiles || (source.hasHtml() ? holdsNothing(source.html()) : !hasPlainText(source));
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
    return source.hasHtml()
        ? pastedBody(bodyOfHtml(source.html(), m_content->defaultFont()), *m_content)
        : nullptr;
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
