#pragma once

#include <QObject>
#include <QPointer>
#include <QTextTable>

#include <optional>
#include <vector>

class QMouseEvent;
class QPainter;
class QPoint;

namespace quorvane {

class TextEditor;

/// Drags the borders of columns.
class ColumnResizing final : public QObject
{
public:
    explicit ColumnResizing(TextEditor &editor);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// A border that can be dragged.
    struct Edge
    {
        QPointer<QTextTable> table;
        int column = 0; ///< The one in front of it.
        std::vector<double> edges; ///< Of all columns.
    };

    static bool isAsItWas(const Edge &edge);
    bool mouseEvent(const QMouseEvent &event);
    bool press(const QMouseEvent &event);
    void drag(const QPoint &place);
    void release();
    void stop();
    void showCursor(bool isOverEdge);
    std::optional<Edge> edgeAt(const QPoint &place) const;
    void draw(QPainter &painter) const;

    TextEditor &m_editor;
    std::optional<Edge> m_dragged;
    double m_grip = 0; // where in the border it was taken
    double m_edge = 0; // where the border is now
    bool m_isOverEdge = false;
};

} // namespace quorvane
