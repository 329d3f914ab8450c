#include "editor/linkediting.h"

#include "editor/insertion.h"
#include "editor/linksheet.h"
#include "editor/textcommands.h"
#include "editor/texteditor.h"
#include "editor/textlinks.h"

#include <QKeyEvent>
#include <QTextBlock>
#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int shortestAddress = 5;
constexpr int longestAddress = 500; // that is looked for in a text
constexpr int longestText = 1000; // that is shown in a field

/// Whether the character at the position is one of a link, without a look at its paragraph.
QString addressAt(const QTextDocument &document, int position)
{
    if (document.characterAt(position) == QChar::ParagraphSeparator) {
        return {};
    }
    QTextCursor cursor(document.findBlock(position));
    cursor.setPosition(std::min(position + 1, document.characterCount() - 1));
    return cursor.charFormat().anchorHref();
}

bool hasLinkAt(const QTextDocument &document, int position)
{
    return !addressAt(document, position).isEmpty()
        || (position > document.findBlock(position).position()
            && !addressAt(document, position - 1).isEmpty());
}

/// From the last blank on.
QTextCursor wordBefore(const QTextCursor &caret)
{
    QTextCursor word(caret);
    const int start = std::max(caret.block().position(), caret.position() - longestAddress);
    int from = caret.position();
    while (from > start && !caret.document()->characterAt(from - 1).isSpace()) {
        --from;
    }
    word.setPosition(from);
    word.setPosition(caret.position(), QTextCursor::KeepAnchor);
    return word;
}

/// One line that can be read and laid out in a field.
bool fitsField(const QString &text)
{
    return text.size() <= longestText && !text.contains(QChar::ParagraphSeparator)
        && !text.contains(QChar::LineSeparator)
        && !text.contains(QChar::ObjectReplacementCharacter);
}

} // namespace

LinkEditing::LinkEditing(TextEditor &editor, TextCommands &commands, NSWindow &sheets)
    : m_editor(editor)
    , m_sheets(sheets)
{
    const auto isOnLink = [this] {
        return hasLinkAt(*m_editor.document(), m_editor.textCursor().position());
    };
    commands.define(
        TextCommand::InsertLink, [this] { ask(); },
        [this, isOnLink] {
            const bool isText = !m_editor.textCursor().hasComplexSelection();
            return MenuItemState {
                !m_editor.isReadOnly() && isText, isOnLink() ? u"Edit &Link…"_s : u"&Link…"_s, {}};
        });
    commands.define(
        TextCommand::RemoveLink, [this] { remove(); },
        [this, isOnLink] {
            const bool mayHave = isOnLink() || m_editor.textCursor().hasSelection();
            return MenuItemState {!m_editor.isReadOnly() && mayHave, {}, {}};
        });
    connect(&editor, &TextEditor::contentReplaced, this, &LinkEditing::watchContent);
    watchContent();
    editor.installEventFilter(this);
}

void LinkEditing::ask()
{
    QTextCursor cursor = m_editor.textCursor();
    const auto link = linkAround(*m_editor.document(), cursor.selectionStart());
    const bool isEdited = link && cursor.selectionEnd() <= link->to;
    if (isEdited) { // all of it is about to change: show it
        cursor.setPosition(link->from);
        cursor.setPosition(link->to, QTextCursor::KeepAnchor);
        m_editor.setTextCursor(cursor);
    }
    const QString selected = cursor.selectedText();
    const auto found = addressIn(selected.trimmed());
    const QString address = isEdited ? link->address : found ? found->address : QString();
    const bool isSimple = fitsField(selected) && !cursor.hasComplexSelection();
    auto *sheet = new LinkSheet(isSimple ? std::optional(selected) : std::nullopt, address,
                                !isEdited, m_editor.window());
    sheet->begin(m_sheets, this, [this, sheet] { apply(sheet->text(), sheet->address()); });
}

void LinkEditing::apply(const std::optional<QString> &text, const QString &address)
{
    const QTextCursor selected = m_editor.textCursor();
    const bool isEdited = selected.hasSelection() && selected.charFormat().isAnchor();
    m_editor.edit(isEdited ? u"Edit Link"_s : u"Insert Link"_s, [&](QTextCursor &cursor) {
        const int from = cursor.selectionStart();
        const bool isNew = text && (*text != cursor.selectedText() || !cursor.hasSelection());
        if (isNew) {
            insertCharacters(cursor, text->isEmpty() ? address : *text);
            const int to = cursor.position();
            cursor.setPosition(from);
            cursor.setPosition(to, QTextCursor::KeepAnchor);
        }
        makeLink(cursor, address);
        cursor.setPosition(cursor.selectionEnd());
    });
    m_editor.setFocus();
}

void LinkEditing::remove()
{
    m_editor.edit(u"Remove Link"_s, [](QTextCursor &cursor) {
        QTextCursor selection(cursor);
        if (const auto link = linkAround(*cursor.document(), cursor.position());
            link && !cursor.hasSelection()) {
            selection.setPosition(link->from);
            selection.setPosition(link->to, QTextCursor::KeepAnchor);
        }
        removeLinks(selection);
    });
    m_editor.setFocus();
}

// --- Addresses as they are written ----------------------------------------------------------

void LinkEditing::watchContent()
{
    connect(m_editor.content(), &QTextDocument::contentsChange, this,
            [this](int position, int, int added) { noteInsertion(position, added); });
}

bool LinkEditing::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == &m_editor && event->type() == QEvent::KeyPress) {
        noteKey(*static_cast<QKeyEvent *>(event));
    }
    return QObject::eventFilter(watched, event);
}

// The blank is to stand before the link is made, so that undo takes back the link alone.
void LinkEditing::noteKey(const QKeyEvent &key)
{
    const bool isBlank =
        key.text() == u" "_s || key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    if (!isBlank || m_editor.isReadOnly() || m_editor.isContentHidden()
        || m_editor.textCursor().hasSelection()) {
        return;
    }
    QTextCursor word = wordBefore(m_editor.textCursor());
    word.setKeepPositionOnInsert(true); // of the blank
    if (word.selectedText().size() < shortestAddress || !addressIn(word.selectedText())) {
        return;
    }
    QMetaObject::invokeMethod(
        this, [this, word] { linkAddress(word); }, Qt::QueuedConnection);
}

void LinkEditing::noteInsertion(int position, int added)
{
    if (added < shortestAddress || added > longestAddress || m_editor.isContentHidden()) {
        return;
    }
    const auto look = [this, position, added] {
        QTextCursor pasted(m_editor.content());
        const int end = std::min(position + added, m_editor.content()->characterCount() - 1);
        pasted.setPosition(std::min(position, end));
        pasted.setPosition(end, QTextCursor::KeepAnchor);
        const QString text = pasted.selectedText();
        const auto found = addressIn(text);
        const bool isPasted = m_editor.undoNames().undoName() == "Paste"_L1
            && !m_editor.content()->isRedoAvailable(); // else it was redone
        if (isPasted && found && found->length == text.size()) {
            linkAddress(pasted);
        }
    };
    QMetaObject::invokeMethod(this, look, Qt::QueuedConnection);
}

void LinkEditing::linkAddress(QTextCursor text)
{
    const auto found = addressIn(text.selectedText());
    const bool isOurs = text.document() == m_editor.content() && !m_editor.isContentHidden();
    if (!found || !isOurs) {
        return;
    }
    const int from = text.selectionStart() + int(found->from);
    text.setPosition(from);
    text.setPosition(from + int(found->length), QTextCursor::KeepAnchor);
    if (!linkAround(*text.document(), from + 1)) {
        m_editor.edit(u"Insert Link"_s, [&](QTextCursor &) { makeLink(text, found->address); });
    }
}

} // namespace quorvane
