#include "editor/visiblemarks.h"

#include "editor/texteditor.h"

#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace quorvane {

namespace {
constexpr int pauseMilliseconds = 300; // of somebody who types
constexpr int charactersAround = 300; // what is in view, as its lines begin and end outside
} // namespace

VisibleMarks::VisibleMarks(TextEditor &editor)
    : m_editor(editor)
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &VisibleMarks::collect);
    connect(&editor, &QTextEdit::textChanged, this, &VisibleMarks::refreshAfterTyping);
    connect(&editor, &TextEditor::contentReplaced, this, &VisibleMarks::refresh);
    connect(&editor, &TextEditor::contentHiddenChanged, this, &VisibleMarks::refresh);
    connect(&editor, &TextEditor::zoomChanged, this, &VisibleMarks::refresh);
    connect(editor.verticalScrollBar(), &QScrollBar::valueChanged, this, &VisibleMarks::refresh);
    connect(editor.verticalScrollBar(), &QScrollBar::rangeChanged, this,
            &VisibleMarks::refreshAfterTyping);
}

void VisibleMarks::setSource(Layer layer, Source source)
{
    m_sources[layer] = std::move(source);
    refresh();
}

TextSpan VisibleMarks::inView() const
{
    const TextSpan view = m_editor.spanIn(m_editor.viewport()->rect());
    const int from = std::max(0, view.from - charactersAround);
    const int to =
        std::min(m_editor.document()->characterCount() - 1, view.end() + charactersAround);
    return {from, to - from};
}

void VisibleMarks::refresh()
{
    m_timer.start(0);
}

void VisibleMarks::refreshAfterTyping()
{
    m_timer.start(pauseMilliseconds);
}

void VisibleMarks::collect()
{
    Marks marks;
    if (!m_editor.isContentHidden()) {
        const TextSpan view = m_editor.spanIn(m_editor.viewport()->rect());
        const QTextBlock first = m_editor.document()->findBlock(view.from);
        const QTextBlock last = m_editor.document()->findBlock(view.end());
        for (const auto &[layer, source] : m_sources) {
            source(first, last, marks);
        }
    }
    if (!marks.isEmpty() || !m_editor.extraSelections().isEmpty()) {
        m_editor.setExtraSelections(marks);
    }
}

} // namespace quorvane
