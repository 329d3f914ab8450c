#include "editor/editorview.h"

#include "editor/texteditor.h"
#include "richtext/body.h"

#include <QTextDocument>

#include <tuple>

namespace quorvane {

EditorView::EditorView(TextEditor &editor)
    : m_editor(editor)
    , m_revision(editor.content()->revision())
{ }

void EditorView::becomeFirstResponder()
{
    m_editor.setFocus();
}

bool EditorView::setBody(const std::optional<QByteArray> &body)
{
    if (body && m_body == body && m_revision == m_editor.content()->revision()) {
        return !m_isTooTall;
    }
    m_holdsSurplus = body && bodyHoldsSurplus(*body);
    auto document = std::make_unique<QTextDocument>();
    readBody(body.value_or(QByteArray()), *document);
    m_isTooTall = m_editor.showDocument(std::move(document)) == TextEditor::ShowResult::TooTall;
    if (m_isTooTall) {
        std::ignore = m_editor.showDocument(std::make_unique<QTextDocument>());
    }
    m_body = body;
    m_revision = m_editor.content()->revision();
    return !m_isTooTall;
}

std::optional<QByteArray> EditorView::body() const
{
    const int revision = m_editor.content()->revision();
    if (revision != m_revision && !m_isTooTall) {
        m_body = bodyFromDocument(*m_editor.content());
        m_revision = revision;
    }
    return m_body;
}

bool EditorView::isEdited() const
{
    return !m_isTooTall && m_editor.content()->isModified();
}

void EditorView::markUnedited()
{
    m_editor.content()->setModified(false);
}

void EditorView::setTypingAttributes(const std::optional<NSFont> &font)
{
    m_editor.setTypingFont(font);
}

// The ruler, spelling and the mapping of colours are the editor's to come; the switches are taken.
void EditorView::setRulerVisible(bool)
{ }

void EditorView::setContinuousSpellCheckingEnabled(bool)
{ }

void EditorView::setUsesAdaptiveColorMappingForDarkAppearance(bool)
{ }

} // namespace quorvane
