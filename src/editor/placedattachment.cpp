#include "editor/placedattachment.h"

#include "editor/attachmenticon.h"
#include "editor/attachmentobject.h"
#include "editor/texteditor.h"
#include "richtext/attachmentstore.h"
#include "richtext/textproperties.h"

#include <QAbstractTextDocumentLayout>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace quorvane {

namespace {
constexpr double twipsPerPixel = 15;
}

QString PlacedAttachment::name() const
{
    return format.stringProperty(AttachmentName);
}

QString PlacedAttachment::shownName() const
{
    return shownAttachmentName(name());
}

std::optional<PlacedAttachment> attachmentAt(const QTextDocument &document, int position)
{
    if (position < 0 || document.characterAt(position) != QChar::ObjectReplacementCharacter) {
        return std::nullopt;
    }
    QTextCursor cursor(const_cast<QTextDocument *>(&document)); // it only looks
    cursor.setPosition(position + 1); // whose format is the one of the character before
    const QTextCharFormat format = cursor.charFormat();
    return format.objectType() == attachmentObjectType
        ? std::optional(PlacedAttachment {position, format})
        : std::nullopt;
}

std::optional<PlacedAttachment> selectedAttachment(const TextEditor &editor)
{
    const QTextCursor cursor = editor.textCursor();
    return cursor.selectionEnd() - cursor.selectionStart() == 1
        ? attachmentAt(*editor.document(), cursor.selectionStart())
        : std::nullopt;
}

std::optional<PlacedAttachment> chosenAttachment(const TextEditor &editor)
{
    const QTextCursor cursor = editor.textCursor();
    if (cursor.hasSelection()) {
        return selectedAttachment(editor);
    }
    const auto behind = attachmentAt(*editor.document(), cursor.position());
    return behind ? behind : attachmentAt(*editor.document(), cursor.position() - 1);
}

std::optional<PlacedAttachment> attachmentUnder(const TextEditor &editor, const QPoint &point)
{
    const int near = editor.cursorForPosition(point).position();
    for (const int position : {near, near - 1}) {
        const auto found = attachmentAt(*editor.document(), position);
        if (found && placeOf(editor, *found).contains(point)) {
            return found;
        }
    }
    return std::nullopt;
}

QRectF placeOf(const TextEditor &editor, const PlacedAttachment &attachment)
{
    QTextDocument &document = *editor.document();
    AttachmentObject *drawer = AttachmentObject::of(document);
    const QTextBlock block = document.findBlock(attachment.position);
    const int at = attachment.position - block.position();
    const QTextLine line = block.layout()->lineForTextPosition(at);
    if (!drawer || !line.isValid()) {
        return {};
    }
    const QSizeF size = drawer->intrinsicSize(&document, attachment.position, attachment.format);
    const double from = line.cursorToX(at);
    const double to = line.cursorToX(at + 1);
    // It stands on the line that the text stands on.
    const QPointF inBlock(std::min(from, to), line.y() + line.ascent() - size.height());
    const QPointF origin = document.documentLayout()->blockBoundingRect(block).topLeft();
    return {editor.origin() + origin + inBlock, QSizeF(std::abs(to - from), size.height())};
}

void select(TextEditor &editor, const PlacedAttachment &attachment)
{
    QTextCursor cursor(editor.document());
    cursor.setPosition(attachment.position);
    cursor.setPosition(attachment.position + 1, QTextCursor::KeepAnchor);
    editor.setTextCursor(cursor);
}

const FlatRtfdEntry *entryOf(const TextEditor &editor, const PlacedAttachment &attachment)
{
    const AttachmentStore *store = AttachmentStore::find(*editor.document());
    return store ? store->entry(attachment.name()) : nullptr;
}

bool isPicture(const TextEditor &editor, const PlacedAttachment &attachment)
{
    AttachmentObject *drawer = AttachmentObject::of(*editor.document());
    return drawer && drawer->isPicture(attachment.format);
}

QTextCharFormat attachmentFormat(QTextDocument &document, const QTextCharFormat &around,
                                 const QString &name, const QSizeF &size)
{
    QTextCharFormat format = around;
    format.setObjectType(attachmentObjectType);
    format.setProperty(AttachmentName, name);
    format.setProperty(AttachmentId, AttachmentStore::of(document).nextId());
    if (!size.isEmpty()) {
        format.setProperty(AttachmentWidth, std::max(1, qRound(size.width() * twipsPerPixel)));
        format.setProperty(AttachmentHeight, std::max(1, qRound(size.height() * twipsPerPixel)));
    }
    return format;
}

} // namespace quorvane
