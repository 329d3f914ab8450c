#pragma once

#include "editor/placedattachment.h"
#include "editor/texttools.h"
#include "platform/runtimefolder.h"

#include <QObject>
#include <QPoint>

#include <optional>

class QMenu;
class QMouseEvent;
class QTimer;

namespace quorvane {

class TextContextMenu;

/// What one does with the attachments of a text: select them with a click, open them in another
/// program, save them outside, drag them elsewhere.
///
/// Other programs can read nothing but files. Their copies are the user's alone, lie in memory, and
/// are gone with the lock or the close of the document; one is told before.
class AttachmentEditing final : public QObject
{
public:
    AttachmentEditing(const TextToolSurroundings &surroundings, TextContextMenu &menu);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addSection(QMenu &menu);
    bool press(const QMouseEvent &event);
    bool move(const QMouseEvent &event);
    void drag(const PlacedAttachment &attachment);
    std::optional<QString> draggedFile(const PlacedAttachment &attachment);
    void forgetDragged();
    bool showToolTip(const QPoint &place, const QPoint &screenPlace);

    void askToOpen();
    void open(const PlacedAttachment &attachment);
    std::optional<QString> refusalToOpen(const PlacedAttachment &attachment) const;
    void askToSave();
    void askWhere(const PlacedAttachment &attachment);
    void save(const PlacedAttachment &attachment, const QString &path);
    void tell(const QString &heading, const QString &words);
    /// The attachment that it was, while it is still there and may be seen.
    std::optional<PlacedAttachment> stillThere(const PlacedAttachment &attachment) const;

    TextToolSurroundings m_with;
    TextEditor &m_editor;
    RuntimeFolder m_opened; // copies in other programs' hands until the lock
    RuntimeFolder m_dragged; // the copy that a drop has asked for
    std::optional<QString> m_draggedFile; // in it
    QTimer *m_dropTimer = nullptr;
    std::optional<QPoint> m_pressed; // on an attachment
    bool m_isDragging = false;
};

} // namespace quorvane
