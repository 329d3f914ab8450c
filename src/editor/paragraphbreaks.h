#pragma once

#include <QObject>

class QKeyEvent;
class QPainter;
class QTextBlock;

namespace quorvane {

class TextCommands;
class TextEditor;

/// Where paragraphs and pages end: the Return key, page breaks, horizontal rules.
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

    TextEditor &m_editor;
};

} // namespace quorvane
