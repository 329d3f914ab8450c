#pragma once

#include "editor/placedattachment.h"
#include "editor/texttools.h"

#include <QObject>
#include <QPointF>
#include <QSizeF>

#include <array>
#include <optional>

class QKeyEvent;
class QMouseEvent;

namespace quorvane {

class TextContextMenu;

/// Selects pictures and makes them larger and smaller: by handles at their edges, which keep the
/// ratio but for as long as Shift is held, and in a sheet that the keyboard reaches.
class PictureEditing final : public QObject
{
public:
    PictureEditing(const TextToolSurroundings &surroundings, TextContextMenu &menu);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    /// A handle, by the edges that it moves: -1 left or top, 1 right or bottom, 0 neither.
    struct Handle
    {
        int x;
        int y;
    };

    struct Drag
    {
        PlacedAttachment picture;
        Handle handle;
        QRectF from;
        QRectF to;
    };

    std::optional<PlacedAttachment> selectedPicture() const;
    std::optional<PlacedAttachment> chosenPicture() const;
    std::optional<Handle> handleAt(const QPointF &point) const;
    static std::array<Handle, 8> handles();
    bool mayResize() const;

    bool press(const QMouseEvent &event);
    bool move(const QMouseEvent &event);
    bool release(const QMouseEvent &event);
    void showCursor(const QPointF &point);
    void cancel();
    void draw(QPainter &painter) const;

    void askSize();
    void resize(const PlacedAttachment &picture, const QSizeF &size);
    void tellName();

    TextToolSurroundings m_with;
    TextEditor &m_editor;
    std::optional<Drag> m_drag;
    bool m_hasCursor = false; // the shape of a handle
};

} // namespace quorvane
