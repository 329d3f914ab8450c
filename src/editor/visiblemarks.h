#pragma once

#include "editor/textspan.h"

#include <QObject>
#include <QTextBlock>
#include <QTextEdit>
#include <QTimer>

#include <functional>
#include <map>

namespace quorvane {

class TextEditor;

/// What is marked in the text that is in view, and nowhere else: marks of a whole text would cost
/// more than the text. They are no part of the document.
class VisibleMarks final : public QObject
{
public:
    /// From the lowest to the topmost.
    enum class Layer { Colours, Spelling, Matches };

    using Marks = QList<QTextEdit::ExtraSelection>;
    /// Adds the marks of the blocks from \a first to \a last, both included, or draws some itself.
    using Source =
        std::function<void(const QTextBlock &first, const QTextBlock &last, Marks &marks)>;

    explicit VisibleMarks(TextEditor &editor);

    void setSource(Layer layer, Source source);

    /// What of the text is in view, and a little more. A paragraph may be longer by far.
    TextSpan inView() const;

    /// Asks the sources again, once this turn of the event loop is over.
    void refresh();
    /// Asks them when nothing was typed for a moment: marks move with the text meanwhile.
    void refreshAfterTyping();

private:
    void collect();

    TextEditor &m_editor;
    std::map<Layer, Source> m_sources;
    QTimer m_timer;
};

} // namespace quorvane
