#pragma once

#include <QObject>

class QPainter;
class QTextBlock;
class QTextTable;

namespace quorvane {

class TextEditor;

/// Draws over tables what is seen on the screen alone: a faint grid where there are no borders, and
/// which cells are selected, empty ones too.
class TableMarks final : public QObject
{
public:
    explicit TableMarks(TextEditor &editor);

private:
    void followSelection();
    void draw(QPainter &painter) const;
    void drawGrid(QPainter &painter, const QTextBlock &first, const QTextBlock &last) const;
    void drawRow(QPainter &painter, const QTextTable &table, int row, bool isFirst) const;
    void drawSelection(QPainter &painter, const QTextBlock &first, const QTextBlock &last) const;

    TextEditor &m_editor;
    bool m_hasCells = false; // selected
};

} // namespace quorvane
