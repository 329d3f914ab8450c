#include "editor/publicnoteview.h"

#include <QMimeData>
#include <QTextBlock>
#include <QTextCursor>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

// A text document knows one end of line. Which one it was stands on the format of the line, so that
// undo brings it back and a line that is divided hands it on.
constexpr int lineEndProperty = QTextFormat::UserProperty + 1;

qsizetype lineEndAt(const QString &text, qsizetype at)
{
    switch (text.at(at).unicode()) {
    case u'\r':
        return at + 1 < text.size() && text.at(at + 1) == u'\n' ? 2 : 1;
    case u'\n':
    case QChar::ParagraphSeparator:
    case 0xfdd0: // a text document takes these two for the bounds of a frame
    case 0xfdd1:
        return 1;
    default:
        return 0;
    }
}

QTextBlockFormat formatOfLine(const QString &end)
{
    QTextBlockFormat format;
    if (end != u"\n"_s) {
        format.setProperty(lineEndProperty, end);
    }
    return format;
}

QString lineEndOf(const QTextBlock &block)
{
    const QTextBlockFormat format = block.blockFormat();
    return format.hasProperty(lineEndProperty) ? format.stringProperty(lineEndProperty) : u"\n"_s;
}

void insertLines(QTextCursor &cursor, const QString &text)
{
    qsizetype start = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const qsizetype length = lineEndAt(text, at);
        if (length == 0) {
            continue;
        }
        cursor.insertText(text.sliced(start, at - start));
        cursor.setBlockFormat(formatOfLine(text.sliced(at, length)));
        cursor.insertBlock();
        at += length - 1;
        start = at + 1;
    }
    cursor.insertText(text.sliced(start));
}

} // namespace

PublicNoteView::PublicNoteView(QWidget *parent)
    : QPlainTextEdit(parent)
{
    setAccessibleName(u"Public Note"_s);
    setTabChangesFocus(true);
    connect(this, &QPlainTextEdit::textChanged, this, &PublicNoteView::noteChange);
}

void PublicNoteView::setText(const QString &text)
{
    if (text == this->text()) {
        return;
    }
    const QSignalBlocker quiet(this);
    document()->setUndoRedoEnabled(false);
    document()->clear();
    QTextCursor cursor(document());
    cursor.beginEditBlock();
    insertLines(cursor, text);
    cursor.endEditBlock();
    document()->setUndoRedoEnabled(true);
    moveCursor(QTextCursor::Start);
    m_revision = document()->revision();
}

QString PublicNoteView::text() const
{
    QString text;
    for (QTextBlock block = document()->begin(); block.isValid(); block = block.next()) {
        text += block.text();
        if (block.next().isValid()) {
            text += lineEndOf(block);
        }
    }
    return text;
}

void PublicNoteView::setForReading()
{
    setReadOnly(true);
    setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void PublicNoteView::setNoteFont(const QFont &font)
{
    m_noteFont = font;
    if (isVisible()) {
        setFont(font);
    }
}

void PublicNoteView::showEvent(QShowEvent *event)
{
    setFont(m_noteFont);
    QPlainTextEdit::showEvent(event);
}

void PublicNoteView::noteChange()
{
    if (document()->revision() == m_revision) {
        return; // something of its looks
    }
    m_revision = document()->revision();
    m_isEdited = true;
    emit edited();
}

void PublicNoteView::inputMethodEvent(QInputMethodEvent *event)
{
    if (isReadOnly()) { // the toolkit would insert it, as the caret can be moved
        event->ignore();
        return;
    }
    QPlainTextEdit::inputMethodEvent(event);
}

void PublicNoteView::focusOutEvent(QFocusEvent *event)
{
    QPlainTextEdit::focusOutEvent(event);
    const Qt::FocusReason reason = event->reason();
    const bool comesBack = reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason;
    if (m_isEdited && !comesBack) {
        m_isEdited = false;
        emit editingEnded();
    }
}

// The toolkit's own copy makes common blanks of those that do not break.
QMimeData *PublicNoteView::createMimeDataFromSelection() const
{
    auto *copied = new QMimeData;
    copied->setText(textCursor().selectedText().replace(QChar::ParagraphSeparator, u'\n'));
    return copied;
}

// What is read-only would zoom, away from the font that was chosen for notes.
void PublicNoteView::wheelEvent(QWheelEvent *event)
{
    if (event->modifiers().testFlag(Qt::ControlModifier)) {
        event->ignore();
        return;
    }
    QPlainTextEdit::wheelEvent(event);
}

} // namespace quorvane
