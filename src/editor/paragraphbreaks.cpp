#include "editor/paragraphbreaks.h"

#include "editor/paragraphformats.h"
#include "editor/tablegeometry.h"
#include "editor/tabstops.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"

#include <QAbstractTextDocumentLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextTable>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr QChar pageBreak(u'\f');
constexpr int breakGap = 6;

QTextLength wholeWidth()
{
    return QTextLength(QTextLength::PercentageLength, 100);
}

QColor faint(const QPalette &palette)
{
    QColor colour = palette.color(QPalette::Text);
    colour.setAlphaF(0.45F);
    return colour;
}

void drawBreak(QPainter &painter, int left, int right, int y, const QPalette &palette)
{
    painter.setPen(QPen(faint(palette), 1, Qt::DashLine));
    painter.drawLine(left, y, right, y);
}

} // namespace

ParagraphBreaks::ParagraphBreaks(TextEditor &editor, TextCommands &commands)
    : m_editor(editor)
{
    const auto state = [this] {
        return MenuItemState {
            !m_editor.isReadOnly() && !m_editor.textCursor().currentTable(), {}, {}};
    };
    commands.define(
        TextCommand::InsertPageBreak, [this] { insertPageBreak(); }, state);
    commands.define(
        TextCommand::InsertHorizontalRule, [this] { insertRule(); },
        [this] {
            return MenuItemState {!m_editor.isReadOnly(), {}, {}};
        });
    editor.installEventFilter(this);
    editor.addOverlay([this](QPainter &painter) { paint(painter); });
}

bool ParagraphBreaks::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || m_editor.isReadOnly() || m_editor.isContentHidden()) {
        return QObject::eventFilter(watched, event);
    }
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool isPlain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isReturn = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (isPlain && isReturn) {
        return pressReturn();
    }
    return isPlain && key->key() == Qt::Key_Backspace && pressBackspace();
}

void ParagraphBreaks::insertPageBreak()
{
    m_editor.edit(u"Insert Page Break"_s, [](QTextCursor &cursor) {
        if (cursor.hasSelection() || !cursor.atBlockStart()
            || hasPageBreakBefore(cursor.blockFormat())) {
            splitParagraph(cursor);
        }
        changeBlock(cursor.block(),
                    [](QTextBlockFormat &format) { setPageBreakBefore(format, true); });
    });
    m_editor.ensureCursorVisible();
    m_editor.setFocus();
}

// The rule is an empty paragraph; one to go on in follows.
void ParagraphBreaks::insertRule()
{
    m_editor.edit(u"Insert Horizontal Rule"_s, [](QTextCursor &cursor) {
        cursor.removeSelectedText();
        if (cursor.block().length() > 1) {
            if (!cursor.atBlockStart()) {
                splitParagraph(cursor);
            }
            if (cursor.block().length() > 1) {
                splitParagraph(cursor);
                cursor.movePosition(QTextCursor::PreviousBlock);
            }
        }
        QTextBlockFormat rule;
        setPageBreakBefore(rule, hasPageBreakBefore(cursor.blockFormat()));
        rule.setProperty(QTextFormat::BlockTrailingHorizontalRulerWidth, wholeWidth());
        const QTextBlock next = cursor.block().next();
        const QTextBlockFormat former = cursor.blockFormat();
        cursor.setBlockFormat(rule);
        if (next.isValid() && areInOnePlace(cursor.block(), next) && !hasRule(next.blockFormat())) {
            cursor.setPosition(next.position());
            return;
        }
        splitParagraph(cursor);
        QTextBlockFormat plain = former;
        setPageBreakBefore(plain, false);
        plain.clearProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
        cursor.setBlockFormat(plain);
    });
    m_editor.ensureCursorVisible();
    m_editor.setFocus();
}

bool ParagraphBreaks::pressReturn()
{
    const QTextBlockFormat format = m_editor.textCursor().blockFormat();
    const bool isOurs = format.headingLevel() > 0 || hasPageBreakBefore(format) || hasRule(format);
    if (!isOurs || !m_editor.hasRoomFor(2 * m_editor.cursorRect().height())) {
        return false;
    }
    m_editor.edit(u"Typing"_s, splitParagraph);
    m_editor.ensureCursorVisible();
    return true;
}

// What stands before the text of a paragraph goes first: the page break, then an indent.
bool ParagraphBreaks::pressBackspace()
{
    const QTextCursor caret = m_editor.textCursor();
    const QTextBlockFormat format = caret.blockFormat();
    if (caret.hasSelection() || !caret.atBlockStart() || caret.currentList()) {
        return false;
    }
    if (hasRule(format) && caret.block().length() == 1) {
        return m_editor.edit(u"Typing"_s, [](QTextCursor &cursor) {
            changeBlock(cursor.block(), [](QTextBlockFormat &changed) {
                changed.clearProperty(QTextFormat::BlockTrailingHorizontalRulerWidth);
            });
        });
    }
    if (hasPageBreakBefore(format)) {
        return m_editor.edit(u"Typing"_s, [](QTextCursor &cursor) {
            changeBlock(cursor.block(),
                        [](QTextBlockFormat &changed) { setPageBreakBefore(changed, false); });
        });
    }
    if (format.leftMargin() <= 0) {
        return false;
    }
    return m_editor.edit(u"Decrease Indent"_s, [](QTextCursor &cursor) {
        changeBlock(cursor.block(), [](QTextBlockFormat &changed) {
            setIndents(changed, std::max(0.0, changed.leftMargin() - indentStep),
                       changed.textIndent());
        });
    });
}

void ParagraphBreaks::paint(QPainter &painter) const
{
    const QRect exposed = painter.clipBoundingRect().toAlignedRect();
    QTextBlock block = m_editor.document()->findBlock(m_editor.spanIn(exposed).from);
    paintLeaders(painter, block, exposed);
    const int margin = int(m_editor.document()->documentMargin());
    const int left = margin + m_editor.origin().x();
    const int right = m_editor.viewport()->width() - margin;
    QTextBlock next;
    for (; block.isValid(); block = next) {
        QTextCursor cursor(block);
        const QRect rect = m_editor.cursorRect(cursor);
        const int above = int(block.blockFormat().topMargin() / 2);
        if (rect.top() - above > exposed.bottom()) {
            next = blockBeside(block);
            continue;
        }
        next = block.next();
        if (hasPageBreakBefore(block.blockFormat())) {
            drawBreak(painter, left, right, rect.top() - above, m_editor.palette());
        }
        if (hasRule(block.blockFormat())) {
            drawRule(painter, block);
        }
        const QString text = block.text();
        for (qsizetype at = text.indexOf(pageBreak); at >= 0;
             at = text.indexOf(pageBreak, at + 1)) {
            cursor.setPosition(block.position() + int(at));
            const QRect place = m_editor.cursorRect(cursor);
            drawBreak(painter, place.left() + breakGap, right, place.center().y(),
                      m_editor.palette());
        }
    }
}

// The toolkit's own is not seen on dark paper.
void ParagraphBreaks::drawRule(QPainter &painter, const QTextBlock &block) const
{
    const QRectF rect = m_editor.document()->documentLayout()->blockBoundingRect(block).translated(
        m_editor.origin());
    const double width = block.blockFormat()
                             .lengthProperty(QTextFormat::BlockTrailingHorizontalRulerWidth)
                             .value(rect.width());
    const double y = block.length() == 1 ? rect.center().y() : rect.bottom();
    painter.setPen(QPen(faint(m_editor.palette()), 1));
    painter.drawLine(QPointF(rect.center().x() - width / 2, y),
                     QPointF(rect.center().x() + width / 2, y));
}

void ParagraphBreaks::paintLeaders(QPainter &painter, const QTextBlock &first,
                                   const QRect &exposed) const
{
    const QPoint origin = m_editor.origin();
    painter.save();
    painter.translate(origin);
    drawTabLeaders(painter, first, exposed.translated(-origin), m_editor.palette());
    painter.restore();
}

} // namespace quorvane
