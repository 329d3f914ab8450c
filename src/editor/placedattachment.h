#pragma once

#include <QRectF>
#include <QString>
#include <QTextCharFormat>

#include <optional>

class QPoint;
class QTextDocument;

namespace quorvane {

class TextEditor;
struct FlatRtfdEntry;

/// An attachment where it stands in a text.
struct PlacedAttachment
{
    int position = 0; ///< Of its character.
    QTextCharFormat format;

    QString name() const; ///< As in the document's store.
    QString shownName() const; ///< As a person knows it.
};

/// The attachment at that character, or nothing.
std::optional<PlacedAttachment> attachmentAt(const QTextDocument &document, int position);

/// What the commands on an attachment act on: the one that is selected, alone; without a selection
/// the one behind the caret, else the one before it.
std::optional<PlacedAttachment> chosenAttachment(const TextEditor &editor);
/// The one that is selected, alone.
std::optional<PlacedAttachment> selectedAttachment(const TextEditor &editor);

/// The attachment under a point of the editor's viewport.
std::optional<PlacedAttachment> attachmentUnder(const TextEditor &editor, const QPoint &point);
/// Where it is drawn, in the viewport's coordinates.
QRectF placeOf(const TextEditor &editor, const PlacedAttachment &attachment);

void select(TextEditor &editor, const PlacedAttachment &attachment);

/// Its file or folder; nullptr where the text calls one that is not there.
const FlatRtfdEntry *entryOf(const TextEditor &editor, const PlacedAttachment &attachment);
/// Whether it is shown as the picture that it holds.
bool isPicture(const TextEditor &editor, const PlacedAttachment &attachment);

/// What a new attachment of that name looks like, put where the text looks like \a around. A size
/// in a document's pixels makes it a picture. It has a number of its own.
QTextCharFormat attachmentFormat(QTextDocument &document, const QTextCharFormat &around,
                                 const QString &name, const QSizeF &size = {});

} // namespace quorvane
