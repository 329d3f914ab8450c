#include "editor/attachmentediting.h"

#include "editor/attachmentobject.h"
#include "editor/copiedtext.h"
#include "editor/documentwindow.h"
#include "editor/draggedattachment.h"
#include "editor/editorsurroundings.h"
#include "editor/textcommands.h"
#include "editor/textcontextmenu.h"
#include "editor/texteditor.h"
#include "platform/nsworkspace.h"
#include "platform/safefilename.h"
#include "richtext/flatrtfd.h"
#include "richtext/textproperties.h"

#include <QAction>
#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QHelpEvent>
#include <QLocale>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <QToolTip>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr int dropMilliseconds = 60'000; // what took a drop may read the file well after it
constexpr int decimals = 1;
constexpr QSizeF largestDragged {240, 180};

QPixmap pictureOf(TextEditor &editor, const PlacedAttachment &attachment)
{
    const QRectF place = placeOf(editor, attachment);
    const QSizeF size =
        place.width() <= largestDragged.width() && place.height() <= largestDragged.height()
        ? place.size()
        : place.size().scaled(largestDragged, Qt::KeepAspectRatio);
    const double ratio = editor.devicePixelRatioF();
    QPixmap pixmap((size * ratio).toSize().expandedTo(QSize(1, 1)));
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(0.8);
    painter.scale(size.width() / place.width(), size.height() / place.height());
    AttachmentObject::of(*editor.document())
        ->drawObject(&painter, QRectF(QPointF(), place.size()), editor.document(),
                     attachment.position, attachment.format);
    return pixmap;
}

std::optional<PackageEntry> packageEntryOf(const FlatRtfdEntry &entry)
{
    const QString name = QString::fromUtf8(entry.name);
    const bool isSafe = !name.isEmpty() && name != "."_L1 && name != ".."_L1 && !name.contains(u'/')
        && !entry.name.contains('\0');
    if (!isSafe || entry.kind == FlatRtfdEntry::Kind::Unknown) {
        return std::nullopt;
    }
    PackageEntry out {entry.name, entry.kind == FlatRtfdEntry::Kind::Directory, entry.bytes, {}};
    for (const FlatRtfdEntry &child : entry.children) {
        if (const auto inner = packageEntryOf(child)) {
            out.children.push_back(*inner);
        }
    }
    return out;
}

} // namespace

AttachmentEditing::AttachmentEditing(const TextToolSurroundings &surroundings,
                                     TextContextMenu &menu)
    : m_with(surroundings)
    , m_editor(surroundings.window.editor())
    , m_opened(surroundings.world.runtimePath)
    , m_dragged(surroundings.world.runtimePath)
    , m_dropTimer(new QTimer(this))
{
    const auto isChosen = [this] {
        return MenuItemState {!m_editor.isContentHidden() && chosenAttachment(m_editor), {}, {}};
    };
    TextCommands &commands = surroundings.window.commands();
    commands.define(
        TextCommand::OpenAttachment, [this] { askToOpen(); }, isChosen);
    commands.define(
        TextCommand::SaveAttachmentAs, [this] { askToSave(); }, isChosen);
    menu.addSection([this](QMenu &shown, const QTextCursor &) { addSection(shown); });
    m_editor.viewport()->installEventFilter(this);
    m_dropTimer->setSingleShot(true);
    m_dropTimer->setInterval(dropMilliseconds);
    connect(m_dropTimer, &QTimer::timeout, this, &AttachmentEditing::forgetDragged);
    connect(&m_editor, &TextEditor::contentHiddenChanged, this, [this] {
        m_opened.clear();
        forgetDragged();
        m_pressed.reset();
        QToolTip::hideText();
        if (m_isDragging) {
            QDrag::cancel(); // the picture hangs on the mouse
        }
    });
}

void AttachmentEditing::addSection(QMenu &menu)
{
    if (selectedAttachment(m_editor)) {
        TextCommands &commands = m_with.window.commands();
        menu.addAction(&commands.action(TextCommand::OpenAttachment));
        menu.addAction(&commands.action(TextCommand::SaveAttachmentAs));
    }
}

// --- Mouse ----------------------------------------------------------------------------------

bool AttachmentEditing::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != m_editor.viewport() || m_editor.isContentHidden()) {
        return false;
    }
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        return press(static_cast<const QMouseEvent &>(*event));
    case QEvent::MouseMove:
        return move(static_cast<const QMouseEvent &>(*event));
    case QEvent::MouseButtonRelease:
        return std::exchange(m_pressed, std::nullopt).has_value();
    case QEvent::MouseButtonDblClick: {
        const auto &click = static_cast<const QMouseEvent &>(*event);
        const bool isOn = click.button() == Qt::LeftButton
            && attachmentUnder(m_editor, click.position().toPoint());
        if (isOn) {
            m_pressed.reset();
            askToOpen(); // the first click has selected it
        }
        return isOn;
    }
    case QEvent::ToolTip: {
        const auto &help = static_cast<const QHelpEvent &>(*event);
        return showToolTip(help.pos(), help.globalPos());
    }
    default:
        return false;
    }
}

// A text that is selected up to here, with Shift, is the toolkit's affair.
bool AttachmentEditing::press(const QMouseEvent &event)
{
    const bool isPlain = !event.modifiers().testAnyFlags(Qt::ShiftModifier | Qt::ControlModifier);
    const auto found =
        isPlain ? attachmentUnder(m_editor, event.position().toPoint()) : std::nullopt;
    if (!found || (event.button() != Qt::LeftButton && event.button() != Qt::RightButton)) {
        return false;
    }
    const QTextCursor cursor = m_editor.textCursor();
    const bool isInSelection =
        found->position >= cursor.selectionStart() && found->position < cursor.selectionEnd();
    const bool isAmongOthers = isInSelection && cursor.selectionEnd() - cursor.selectionStart() > 1;
    if (isAmongOthers) {
        return false; // all of that is dragged, or the menu is for all of it
    }
    m_editor.setFocus(Qt::MouseFocusReason);
    select(m_editor, *found);
    if (event.button() == Qt::LeftButton) {
        m_pressed = event.position().toPoint();
    }
    return true;
}

bool AttachmentEditing::move(const QMouseEvent &event)
{
    if (!m_pressed) {
        return false;
    }
    const QPoint distance = event.position().toPoint() - *m_pressed;
    if (!event.buttons().testFlag(Qt::LeftButton)) {
        m_pressed.reset();
    } else if (distance.manhattanLength() >= QApplication::startDragDistance()) {
        m_pressed.reset();
        if (const auto selected = selectedAttachment(m_editor)) {
            drag(*selected);
        }
    }
    return true;
}

void AttachmentEditing::drag(const PlacedAttachment &attachment)
{
    m_dropTimer->stop();
    forgetDragged();
    const auto makeFile = [self = QPointer(this), attachment] {
        return self ? self->draggedFile(attachment) : std::nullopt;
    };
    auto text = std::make_unique<CopiedText>(std::make_unique<QMimeData>(), m_editor.textCursor(),
                                             &m_editor);
    const QPointer self(this);
    const QPixmap picture = pictureOf(m_editor, attachment);
    auto *drag = new QDrag(m_editor.viewport()); // goes by itself when the drag is over
    drag->setMimeData(std::make_unique<DraggedAttachment>(std::move(text), makeFile).release());
    drag->setPixmap(picture);
    drag->setHotSpot(QRectF(QPointF(), picture.deviceIndependentSize()).center().toPoint());
    const Qt::DropActions may =
        m_editor.isReadOnly() ? Qt::CopyAction : Qt::CopyAction | Qt::MoveAction;
    // Nothing is taken away here, whatever is answered: another program may say that it has moved
    // what it never stored. In the text itself the drop does both.
    m_isDragging = true;
    drag->exec(may, m_editor.isReadOnly() ? Qt::CopyAction : Qt::MoveAction);
    if (self) {
        m_isDragging = false;
        m_dropTimer->start();
    }
}

/// The copy for another program, made when it asks first.
std::optional<QString> AttachmentEditing::draggedFile(const PlacedAttachment &attachment)
{
    const auto now = stillThere(attachment);
    const FlatRtfdEntry *file = now ? entryOf(m_editor, *now) : nullptr;
    if (!file || file->kind != FlatRtfdEntry::Kind::File || !m_dragged.hasPlace()) {
        return std::nullopt;
    }
    if (!m_draggedFile) {
        const auto made = m_dragged.add(now->shownName(), file->bytes);
        const auto *path = std::get_if<QString>(&made);
        m_draggedFile = path ? std::optional(*path) : std::nullopt;
    }
    return m_draggedFile;
}

void AttachmentEditing::forgetDragged()
{
    m_dragged.clear();
    m_draggedFile.reset();
}

bool AttachmentEditing::showToolTip(const QPoint &place, const QPoint &screenPlace)
{
    const auto found = attachmentUnder(m_editor, place);
    const FlatRtfdEntry *entry = found ? entryOf(m_editor, *found) : nullptr;
    if (!entry) {
        return false;
    }
    const QString size = entry->kind == FlatRtfdEntry::Kind::File
        ? QLocale().formattedDataSize(entry->bytes.size(), decimals, QLocale::DataSizeSIFormat)
        : u"folder"_s;
    QToolTip::showText(
        screenPlace,
        u"<p style='white-space:pre'>%1 (%2)</p>"_s.arg(found->shownName().toHtmlEscaped(), size),
        m_editor.viewport(), placeOf(m_editor, *found).toAlignedRect());
    return true;
}

// --- In other programs ----------------------------------------------------------------------

std::optional<PlacedAttachment>
AttachmentEditing::stillThere(const PlacedAttachment &attachment) const
{
    if (m_editor.isContentHidden()) {
        return std::nullopt;
    }
    const auto now = attachmentAt(*m_editor.document(), attachment.position);
    const bool isSame = now && now->name() == attachment.name()
        && now->format.intProperty(AttachmentId) == attachment.format.intProperty(AttachmentId);
    return isSame ? now : std::nullopt;
}

std::optional<QString> AttachmentEditing::refusalToOpen(const PlacedAttachment &attachment) const
{
    const FlatRtfdEntry *entry = entryOf(m_editor, attachment);
    if (!entry) {
        return u"The document has no file of this name. It may have been lost before the document "
               "came here."_s;
    }
    if (entry->kind != FlatRtfdEntry::Kind::File) {
        return u"It is a folder, and other programs could change what is in it. Save it outside "
               "the document to open it."_s;
    }
    if (mayRunAsProgram(safeFileName(attachment.shownName()), entry->bytes)) {
        return u"It is a program, or starts one. What comes in a document is not run from here. "
               "If you trust it, save it and start it yourself."_s;
    }
    if (!m_opened.hasPlace()) {
        return u"This session has no private folder in memory (XDG_RUNTIME_DIR), and a readable "
               "copy must not be put anywhere else. Save the attachment to a place that you "
               "choose."_s;
    }
    return std::nullopt;
}

void AttachmentEditing::askToOpen()
{
    const auto chosen = chosenAttachment(m_editor);
    if (!chosen) {
        return;
    }
    if (const auto refusal = refusalToOpen(*chosen)) {
        tell(u"“%1” cannot be opened."_s.arg(chosen->shownName()), *refusal);
        return;
    }
    const NSAlert alert {
        u"Do you want to open “%1” in another program?"_s.arg(chosen->shownName()),
        u"A copy that is not encrypted is made for it, in a folder in memory that only you can "
        u"read. The copy is there until this document is locked or closed. The other program may "
        u"keep traces of it, and what it changes does not come back into the document."_s,
        {u"Cancel"_s, u"Open"_s},
        NSAlertStyle::Warning};
    m_with.sheets.beginAlert(alert, [self = QPointer(this), chosen](AlertAnswer answer) {
        const bool opens = self && answer == AlertAnswer::Second;
        if (const auto now = opens ? self->stillThere(*chosen) : std::nullopt) {
            self->open(*now);
        }
    });
}

void AttachmentEditing::open(const PlacedAttachment &attachment)
{
    const auto made = m_opened.add(attachment.shownName(), entryOf(m_editor, attachment)->bytes);
    if (const auto *error = std::get_if<FileError>(&made)) {
        tell(u"“%1” cannot be opened."_s.arg(attachment.shownName()), error->reason());
        return;
    }
    if (!m_with.world.workspace.openFile(std::get<QString>(made))) {
        tell(u"“%1” cannot be opened."_s.arg(attachment.shownName()),
             u"No program was found that opens files of this kind."_s);
    }
}

// --- Outside --------------------------------------------------------------------------------

void AttachmentEditing::askToSave()
{
    const auto chosen = chosenAttachment(m_editor);
    if (!chosen) {
        return;
    }
    if (!entryOf(m_editor, *chosen)) {
        tell(u"“%1” cannot be saved."_s.arg(chosen->shownName()),
             u"The document has no file of this name. It may have been lost before the document "
             "came here."_s);
        return;
    }
    const NSAlert alert {
        u"“%1” will not be encrypted where you save it."_s.arg(chosen->shownName()),
        u"Everyone who can read that place can read the file. The attachment stays in the document "
        u"as well, protected as before."_s,
        {u"Cancel"_s, u"Save As…"_s},
        NSAlertStyle::Warning};
    m_with.sheets.beginAlert(alert, [self = QPointer(this), chosen](AlertAnswer answer) {
        if (!self || answer != AlertAnswer::Second) {
            return;
        }
        self->m_with.world.transfer.machinery.mainQueue.addOperation([self, chosen] {
            if (const auto now = self ? self->stillThere(*chosen) : std::nullopt) {
                self->askWhere(*now);
            }
        });
    });
}

void AttachmentEditing::askWhere(const PlacedAttachment &attachment)
{
    NSSavePanel panel;
    panel.name = safeFileName(attachment.shownName());
    const QString ending = QFileInfo(panel.name).suffix();
    const FlatRtfdEntry *entry = entryOf(m_editor, attachment);
    panel.savesPackage = entry && entry->kind == FlatRtfdEntry::Kind::Directory;
    if (panel.savesPackage && !ending.isEmpty()) {
        panel.allowedFileTypes = {ending};
    }
    m_with.world.transfer.machinery.panels.beginSaveSheet(
        m_with.sheets, panel,
        [self = QPointer(this), attachment](const std::optional<QString> &path) {
            const auto now = self && path ? self->stillThere(attachment) : std::nullopt;
            if (now) {
                self->save(*now, *path);
            }
        });
}

void AttachmentEditing::save(const PlacedAttachment &attachment, const QString &path)
{
    const QString heading = u"“%1” was not saved."_s.arg(attachment.shownName());
    const FlatRtfdEntry *entry = entryOf(m_editor, attachment);
    if (m_with.world.transfer.isOpen(path)) {
        tell(heading,
             u"“%1” is an open document of this program, and stays as it is. Choose another "
             "name."_s.arg(QFileInfo(path).fileName()));
        return;
    }
    std::optional<FileError> error;
    if (entry->kind == FlatRtfdEntry::Kind::File) {
        error = m_with.world.transfer.machinery.files.replace(path, entry->bytes);
    } else {
        const auto package = packageEntryOf(*entry);
        error = m_with.world.transfer.packages.replace(
            path, package ? package->children : PackageEntries());
    }
    if (error && !error->isInPlace()) {
        tell(heading, error->reason());
    }
}

void AttachmentEditing::tell(const QString &heading, const QString &words)
{
    m_with.sheets.beginAlert({heading, words, {u"OK"_s}}, [](AlertAnswer) {});
}

} // namespace quorvane
