#include "editor/editorview.h"

#include "editor/plaintext.h"
#include "editor/texteditor.h"
#include "richtext/body.h"

#include <QTextDocument>
#include <QTextOption>

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
    readBody(body.value_or(QByteArray()), *document, switches.reading);
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

qsizetype EditorView::length() const
{
    return m_editor.content()->characterCount() - 1;
}

bool EditorView::setAttributes(const std::optional<NSFont> &font)
{
    QTextCharFormat format;
    if (font) {
        format.setFontFamilies({font->family});
        format.setFontPointSize(font->pointSize);
    }
    if (!m_editor.showInPlace(plainCopy(*m_editor.content(), format))) {
        return false;
    }
    m_revision = -1; // no bytes stand for this text yet
    m_holdsSurplus = false;
    return true;
}

NSParagraphStyle EditorView::defaultParagraphStyle() const
{
    return {m_editor.content()->defaultTextOption().tabStopDistance()};
}

void EditorView::setDefaultParagraphStyle(const NSParagraphStyle &style)
{
    if (style == defaultParagraphStyle()) {
        return; // setting it lays the whole text out
    }
    QTextOption option = m_editor.content()->defaultTextOption();
    option.setTabStopDistance(style.defaultTabInterval);
    m_editor.content()->setDefaultTextOption(option);
}

void EditorView::setTypingAttributes(const std::optional<NSFont> &font)
{
    if (m_editor.content()->isEmpty() && !m_editor.isContentHidden()) {
        m_editor.setCurrentCharFormat(QTextCharFormat());
    }
    m_editor.setTypingFont(font);
}

void EditorView::setRulerVisible(bool visible)
{
    if (switches.ruler) {
        switches.ruler(visible);
    }
}

void EditorView::setContinuousSpellCheckingEnabled(bool enabled)
{
    if (switches.spelling) {
        switches.spelling(enabled);
    }
}

void EditorView::setUsesAdaptiveColorMappingForDarkAppearance(bool adapts)
{
    if (switches.adaptiveColours) {
        switches.adaptiveColours(adapts);
    }
}

} // namespace quorvane
