#pragma once

#include "editor/visiblemarks.h"

#include <QColor>
#include <QObject>

namespace quorvane {

class TextEditor;

/// How easily \a ink is read on \a paper, from 1 to 21 (WCAG 2.1, contrast ratio).
double contrastOf(const QColor &ink, const QColor &paper);

/// The colour of that hue nearest to \a ink that is read on \a paper.
QColor readableInk(const QColor &ink, const QColor &paper);

/// What the text of a block stands on, where its characters say nothing.
QColor paperOf(const QTextBlock &block, const QColor &page);

/// In a dark window, shows text whose colours were chosen for white paper in colours that can be
/// read. The document's own stay as they are.
class AdaptiveColours final : public QObject
{
public:
    AdaptiveColours(TextEditor &editor, VisibleMarks &marks);

    void setEnabled(bool enabled);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void markBlock(const QTextBlock &block, VisibleMarks::Marks &marks) const;

    TextEditor &m_editor;
    VisibleMarks &m_marks;
    bool m_enabled = false;
};

} // namespace quorvane
