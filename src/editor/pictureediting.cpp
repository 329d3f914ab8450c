#include "editor/pictureediting.h"

#include "editor/attachmentobject.h"
#include "editor/documentwindow.h"
#include "editor/picturefile.h"
#include "editor/picturesizesheet.h"
#include "editor/textcommands.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "richtext/flatrtfd.h"
#include "richtext/textproperties.h"

#include <QAction>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTextDocument>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr double handleExtent = 8;
constexpr double handleReach = 8; // from its middle, for the mouse
constexpr double smallestExtent = 8;
constexpr double largestExtent = 4000;
constexpr double twipsPerPixel = 15;
constexpr double screenDotsPerInch = 96;

QPointF middleOf(const QRectF &rect, int x, int y)
{
    return {rect.center().x() + x * rect.width() / 2, rect.center().y() + y * rect.height() / 2};
}

/// The size told by the text, in a document's pixels.
QSizeF toldSize(const PlacedAttachment &picture)
{
    return {picture.format.intProperty(AttachmentWidth) / twipsPerPixel,
            picture.format.intProperty(AttachmentHeight) / twipsPerPixel};
}

/// What becomes of the picture when that edge or corner is pulled to the point. The opposite one
/// stays.
QRectF pulled(const QRectF &from, int x, int y, const QPointF &to, bool keepsRatio)
{
    double width = x == 0 ? from.width() : (x > 0 ? to.x() - from.left() : from.right() - to.x());
    double height = y == 0 ? from.height() : (y > 0 ? to.y() - from.top() : from.bottom() - to.y());
    width = std::clamp(width, smallestExtent, largestExtent);
    height = std::clamp(height, smallestExtent, largestExtent);
    if (keepsRatio) {
        const double byWidth = width / from.width();
        const double byHeight = height / from.height();
        const double least = smallestExtent / std::min(from.width(), from.height());
        const double scale =
            std::max(least, x == 0 ? byHeight : (y == 0 ? byWidth : std::max(byWidth, byHeight)));
        width = from.width() * scale;
        height = from.height() * scale;
    }
    QRectF result(from.topLeft(), QSizeF(width, height));
    if (x < 0) {
        result.moveRight(from.right());
    }
    if (y < 0) {
        result.moveBottom(from.bottom());
    }
    return result;
}

} // namespace

PictureEditing::PictureEditing(const TextToolSurroundings &surroundings, TextContextMenu &menu)
    : m_with(surroundings)
    , m_editor(surroundings.window.editor())
{
    TextCommands &commands = surroundings.window.commands();
    commands.define(
        TextCommand::PictureSize, [this] { askSize(); },
        [this] {
            return MenuItemState {mayResize() && chosenPicture().has_value(), {}, {}};
        });
    menu.addSection([this, &commands](QMenu &shown, const QTextCursor &) {
        if (selectedPicture()) {
            shown.addAction(&commands.action(TextCommand::PictureSize));
        }
    });
    m_editor.viewport()->installEventFilter(this);
    m_editor.installEventFilter(this);
    m_editor.viewport()->setMouseTracking(true);
    m_editor.addOverlay([this](QPainter &painter) { draw(painter); });
    connect(&m_editor, &TextEditor::contentHiddenChanged, this, [this] {
        m_drag.reset();
        if (AttachmentObject *drawer = AttachmentObject::of(*m_editor.content())) {
            drawer->forgetPictures();
        }
    });
    const auto changed = [this] {
        tellName();
        m_editor.viewport()->update(); // the handles reach over the selection that is repainted
    };
    connect(&m_editor, &QTextEdit::selectionChanged, this, changed);
    connect(&m_editor, &TextEditor::contentHiddenChanged, this, changed);
    connect(&m_editor, &TextEditor::contentReplaced, this, [this] { m_drag.reset(); });
}

std::optional<PlacedAttachment> PictureEditing::selectedPicture() const
{
    const auto selected = selectedAttachment(m_editor);
    return selected && isPicture(m_editor, *selected) ? selected : std::nullopt;
}

std::optional<PlacedAttachment> PictureEditing::chosenPicture() const
{
    const auto chosen = chosenAttachment(m_editor);
    return chosen && isPicture(m_editor, *chosen) ? chosen : std::nullopt;
}

bool PictureEditing::mayResize() const
{
    return !m_editor.isReadOnly() && !m_editor.isContentHidden();
}

// The toolkit says of an attachment only that there is an object. What is selected is told here to
// those who do not see it.
void PictureEditing::tellName()
{
    const auto selected = m_editor.isContentHidden() ? std::nullopt : selectedAttachment(m_editor);
    const QString told = !selected       ? QString()
        : isPicture(m_editor, *selected) ? u"Picture “%1” is selected"_s.arg(selected->shownName())
                                         : u"File “%1” is selected"_s.arg(selected->shownName());
    if (m_editor.accessibleDescription() != told) {
        m_editor.setAccessibleDescription(told);
    }
}

// --- Handles --------------------------------------------------------------------------------

std::array<PictureEditing::Handle, 8> PictureEditing::handles()
{
    // Corners first: where a picture is small they lie over the others.
    return {{{-1, -1}, {1, -1}, {-1, 1}, {1, 1}, {0, -1}, {-1, 0}, {1, 0}, {0, 1}}};
}

std::optional<PictureEditing::Handle> PictureEditing::handleAt(const QPointF &point) const
{
    const auto picture = mayResize() ? selectedPicture() : std::nullopt;
    if (!picture) {
        return std::nullopt;
    }
    const QRectF place = placeOf(m_editor, *picture);
    for (const Handle handle : handles()) {
        const QPointF distance = point - middleOf(place, handle.x, handle.y);
        if (std::abs(distance.x()) <= handleReach && std::abs(distance.y()) <= handleReach) {
            return handle;
        }
    }
    return std::nullopt;
}

void PictureEditing::draw(QPainter &painter) const
{
    const auto picture = selectedPicture();
    if (!picture) {
        return;
    }
    const QRectF place = m_drag ? m_drag->to : placeOf(m_editor, *picture);
    const QColor accent = m_editor.palette().color(QPalette::Highlight);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    // Once more, as the toolkit tints what is selected; and larger or smaller while it is pulled.
    if (AttachmentObject *drawer = AttachmentObject::of(*m_editor.document())) {
        painter.setOpacity(m_drag ? 0.75 : 1);
        drawer->drawPicture(painter, place, picture->format);
        painter.setOpacity(1);
    }
    painter.setPen(QPen(accent, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(place);
    if (!mayResize()) {
        return;
    }
    painter.setPen(QPen(accent, 1.5));
    painter.setBrush(m_editor.palette().color(QPalette::Base));
    const bool isSmall = std::min(place.width(), place.height()) < 5 * handleExtent;
    for (const Handle handle : handles()) {
        if (!isSmall || (handle.x != 0 && handle.y != 0)) {
            QRectF square(0, 0, handleExtent, handleExtent);
            square.moveCenter(middleOf(place, handle.x, handle.y));
            painter.drawRoundedRect(square, 2, 2);
        }
    }
}

// --- Mouse and keys -------------------------------------------------------------------------

bool PictureEditing::eventFilter(QObject *watched, QEvent *event)
{
    if (m_drag && event->type() == QEvent::FocusOut && watched == &m_editor) {
        cancel(); // who has the focus now has the mouse, too
        return false;
    }
    if (m_drag && event->type() == QEvent::KeyPress && watched == &m_editor) {
        if (static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
            cancel();
        }
        return true; // what is typed now would go in the place of the picture
    }
    if (watched != m_editor.viewport()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return press(static_cast<const QMouseEvent &>(*event));
    case QEvent::MouseMove:
        return move(static_cast<const QMouseEvent &>(*event));
    case QEvent::MouseButtonRelease:
        return release(static_cast<const QMouseEvent &>(*event));
    case QEvent::MouseButtonDblClick:
        return handleAt(static_cast<QMouseEvent *>(event)->position()).has_value();
    default:
        return false;
    }
}

bool PictureEditing::press(const QMouseEvent &event)
{
    const auto handle =
        event.button() == Qt::LeftButton ? handleAt(event.position()) : std::nullopt;
    const auto picture = handle ? selectedPicture() : std::nullopt;
    if (!picture) {
        return false;
    }
    const QRectF place = placeOf(m_editor, *picture);
    m_drag = Drag {*picture, *handle, place, place};
    return true;
}

bool PictureEditing::move(const QMouseEvent &event)
{
    if (!m_drag) {
        if (event.buttons() == Qt::NoButton) {
            showCursor(event.position());
        }
        return false;
    }
    const bool keepsRatio = !event.modifiers().testFlag(Qt::ShiftModifier);
    m_drag->to =
        pulled(m_drag->from, m_drag->handle.x, m_drag->handle.y, event.position(), keepsRatio);
    m_editor.viewport()->update();
    return true;
}

bool PictureEditing::release(const QMouseEvent &event)
{
    if (!m_drag || event.button() != Qt::LeftButton) {
        return m_drag.has_value();
    }
    const Drag drag = *std::exchange(m_drag, std::nullopt);
    m_editor.viewport()->update();
    const auto picture = selectedPicture();
    if (picture && picture->position == drag.picture.position && drag.to != drag.from) {
        // What one sees may be smaller than what the text tells, to fit the column.
        const double scale = resolutionOf(*m_editor.document()) / screenDotsPerInch;
        resize(*picture, drag.to.size() / scale);
    }
    return true;
}

void PictureEditing::cancel()
{
    m_drag.reset();
    m_editor.viewport()->update();
}

void PictureEditing::showCursor(const QPointF &point)
{
    const auto handle = handleAt(point);
    if (!handle && !m_hasCursor) {
        return;
    }
    m_hasCursor = handle.has_value();
    if (!handle) {
        m_editor.viewport()->setCursor(Qt::IBeamCursor);
    } else if (handle->x == 0 || handle->y == 0) {
        m_editor.viewport()->setCursor(handle->x == 0 ? Qt::SizeVerCursor : Qt::SizeHorCursor);
    } else {
        m_editor.viewport()->setCursor(handle->x == handle->y ? Qt::SizeFDiagCursor
                                                              : Qt::SizeBDiagCursor);
    }
}

// --- Size -----------------------------------------------------------------------------------

void PictureEditing::askSize()
{
    const auto picture = chosenPicture();
    const FlatRtfdEntry *file = picture ? entryOf(m_editor, *picture) : nullptr;
    const auto info = file ? pictureInfo(file->bytes) : std::nullopt;
    if (!info) {
        return;
    }
    auto *sheet = new PictureSizeSheet(picture->shownName(), toldSize(*picture), info->natural,
                                       &m_with.window);
    const int id = picture->format.intProperty(AttachmentId);
    m_with.sheets.beginSheet(
        *sheet, [self = QPointer(this), sheet, at = picture->position, id](int code) {
            sheet->deleteLater();
            const bool isChosen = self && code == QDialog::Accepted && self->mayResize();
            const auto now = isChosen ? attachmentAt(*self->m_editor.document(), at) : std::nullopt;
            if (now && now->format.intProperty(AttachmentId) == id) {
                self->resize(*now, sheet->chosenSize());
            }
        });
    connect(sheet, &PictureSizeSheet::answered, this,
            [this, sheet](int code) { m_with.sheets.endSheet(*sheet, code); });
}

void PictureEditing::resize(const PlacedAttachment &picture, const QSizeF &size)
{
    if (!m_editor.hasRoomFor(std::max(0.0, size.height() - toldSize(picture).height()))) {
        emit m_editor.tooTall();
        return;
    }
    QTextCharFormat format = picture.format;
    format.setProperty(AttachmentWidth, std::max(1, qRound(size.width() * twipsPerPixel)));
    format.setProperty(AttachmentHeight, std::max(1, qRound(size.height() * twipsPerPixel)));
    if (format == picture.format) {
        return;
    }
    select(m_editor, picture);
    m_editor.edit(u"Resize Picture"_s, [&](QTextCursor &cursor) { cursor.setCharFormat(format); });
}

} // namespace quorvane
