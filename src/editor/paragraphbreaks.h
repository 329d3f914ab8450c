#pragma once

#include <QObject>

class QKeyEvent;
class QPainter;
class QRect;
class QTextBlock;

namespace quorvane {

class TextCommands;
class TextEditor;

/// Where paragraphs and pages end, and how that is shown: the Return key, page breaks, horizontal
/// rules. Shows what leads to tab stops too.
class ParagraphBreaks final : public QObject
{
public:
    ParagraphBreaks(TextEditor &editor, TextCommands &commands);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void insertPageBreak();
    void insertRule();
    bool pressReturn();
    bool pressBackspace();
    void paint(QPainter &painter) const;
    void drawRule(QPainter &painter, const QTextBlock &block) const;
    void paintLeaders(QPainter &painter, const QTextBlock &first, const QRect &exposed) const;

    TextEditor &m_editor;
};

} // namespace quorvane
