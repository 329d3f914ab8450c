#include "editor/copiedtext.h"

#include "editor/attachmentobject.h"
#include "editor/picturefile.h"
#include "editor/placedattachment.h"
#include "editor/texteditor.h"
#include "richtext/body.h"
#include "richtext/richtextexport.h"
#include "richtext/textproperties.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>
#include <QTextList>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr auto plainFormat = "text/plain"_L1;
constexpr auto htmlFormat = "text/html"_L1;
constexpr auto pngFormat = "image/png"_L1;
// Under the first two it is offered; office programs and others call it by all of these.
constexpr std::array rtfFormats {"text/rtf"_L1, "application/rtf"_L1, "text/richtext"_L1,
                                 "application/x-rtf"_L1};
const QStringList offeredRtf {rtfFormats[0], rtfFormats[1]};

struct Attachment
{
    int position;
    QTextCharFormat format;

    QString name() const { return format.stringProperty(AttachmentName); }
};

void appendAttachments(std::vector<Attachment> &attachments, const QTextFragment &fragment)
{
    const QTextCharFormat format = fragment.charFormat();
    if (format.objectType() != attachmentObjectType) {
        return;
    }
    const QString text = fragment.text();
    for (int index = 0; index < text.size(); ++index) {
        if (text.at(index) == QChar::ObjectReplacementCharacter) {
            attachments.push_back({fragment.position() + index, format});
        }
    }
}

/// The attachments among the characters from \a from up to \a to.
std::vector<Attachment> attachmentsOf(const QTextDocument &document, int from, int to)
{
    std::vector<Attachment> attachments;
    for (QTextBlock block = document.findBlock(from); block.isValid() && block.position() < to;
         block = block.next()) {
        for (auto part = block.begin(); !part.atEnd(); ++part) {
            appendAttachments(attachments, part.fragment());
        }
    }
    std::erase_if(attachments, [from, to](const Attachment &attachment) {
        return attachment.position < from || attachment.position >= to;
    });
    return attachments;
}

std::vector<Attachment> attachmentsOf(const QTextDocument &document)
{
    return attachmentsOf(document, 0, document.characterCount());
}

QSet<QString> namesOf(const std::vector<Attachment> &attachments)
{
    QSet<QString> names;
    for (const Attachment &attachment : attachments) {
        names.insert(attachment.name());
    }
    return names;
}

/// The entries that attachments of these names stand for, and no other.
std::vector<AttachmentStore::WrittenEntry> placedEntries(const AttachmentStore &store,
                                                         const QSet<QString> &names)
{
    std::vector<AttachmentStore::WrittenEntry> entries = store.entriesFor(names);
    std::erase_if(entries, [&](const AttachmentStore::WrittenEntry &written) {
        return std::none_of(names.begin(), names.end(), [&](const QString &name) {
            return store.entry(name) == written.entry;
        });
    });
    return entries;
}

/// Puts the file into \a store. \return the name that it has there.
QString moveFile(const QString &name, const AttachmentStore &from, AttachmentStore &store,
                 const QSet<QString> &inUse)
{
    const FlatRtfdEntry *there = store.entry(name);
    const auto written = placedEntries(from, {name});
    if (written.empty()) {
        // Without a file: it must not come to stand for the file of another one.
        return there ? store.add(name, QByteArray()) : name;
    }
    const FlatRtfdEntry &entry = *written.front().entry;
    if (there && *there == entry && !inUse.contains(name)) {
        return name;
    }
    return store.add(name, entry, written.front().attributes);
}

} // namespace

CopiedText::CopiedText(std::unique_ptr<QMimeData> common, const QTextCursor &selection,
                       const TextEditor *source)
    : m_common(std::move(common))
    , m_text(selection)
    , m_length(selection.selectionEnd() - selection.selectionStart())
    , m_source(source)
{
    const QTextDocument &document = *selection.document();
    const QTextBlock first = document.findBlock(selection.selectionStart());
    m_beginsInItem = first.textList();
    if (first.position() == selection.selectionStart()) {
        m_firstParagraph = first.blockFormat();
        m_firstParagraph->setObjectIndex(-1); // a list is one of its own document
        m_beginsWithItem =
            m_beginsInItem && selection.selectionEnd() >= first.position() + first.length() - 1;
    }
    const auto names =
        namesOf(attachmentsOf(document, selection.selectionStart(), selection.selectionEnd()));
    const AttachmentStore *store = AttachmentStore::find(document);
    if (!store || names.isEmpty()) {
        return;
    }
    for (const AttachmentStore::WrittenEntry &written : placedEntries(*store, names)) {
        m_entries.push_back({*written.entry, written.attributes});
    }
    m_picture = pictureIn(selection);
}

/// The picture that is all of the selection.
std::optional<CopiedText::Picture> CopiedText::pictureIn(const QTextCursor &selection) const
{
    const auto attachment = m_length == 1
        ? attachmentAt(*selection.document(), selection.selectionStart())
        : std::nullopt;
    if (!attachment || !hasPictureSize(attachment->format) || m_entries.empty()) {
        return std::nullopt;
    }
    const QByteArray &bytes = m_entries.front().entry.bytes;
    const bool isTurned = !attachment->format.boolProperty(AttachmentNoOrient);
    const std::optional<PictureInfo> info = pictureInfo(bytes, isTurned);
    return info ? std::optional(Picture {info->type, bytes, isTurned}) : std::nullopt;
}

void CopiedText::clearClipboards(const TextEditor *source)
{
    QClipboard *clipboard = QGuiApplication::clipboard();
    for (const QClipboard::Mode mode : {QClipboard::Clipboard, QClipboard::Selection}) {
        // The very object comes back only as long as the clipboard is this program's.
        const auto *copied = qobject_cast<const CopiedText *>(clipboard->mimeData(mode));
        if (copied && copied->m_source == source) {
            clipboard->clear(mode);
        }
    }
}

QStringList CopiedText::formats() const
{
    return QStringList {rtfdFormat} + offeredRtf + pictureFormats() + m_common->formats();
}

QStringList CopiedText::pictureFormats() const
{
    if (!m_picture) {
        return {};
    }
    return m_picture->type == pngFormat ? QStringList {pngFormat}
                                        : QStringList {m_picture->type, pngFormat};
}

bool CopiedText::hasFormat(const QString &format) const
{
    return formats().contains(format);
}

// A drag goes on while its document is locked, and asks only when it is dropped.
bool CopiedText::isHidden() const
{
    return m_source && m_source->isContentHidden();
}

QVariant CopiedText::retrieveData(const QString &format, QMetaType) const
{
    if (isHidden()) {
        return {};
    }
    if (format == rtfdFormat) {
        return bodyFromDocument(*document());
    }
    if (offeredRtf.contains(format)) {
        return rtfFromDocument(*document());
    }
    if (m_picture && format == m_picture->type) {
        return m_picture->bytes;
    }
    if (m_picture && format == pngFormat) {
        return pngOf(m_picture->bytes, m_picture->isTurned);
    }
    if (!m_common->hasFormat(format)) {
        return {}; // an empty answer would be taken for the text
    }
    if (format == plainFormat) {
        return plainTextFromBody(bodyFromDocument(*text())); // the toolkit's own changes characters
    }
    if (format == htmlFormat) {
        return m_common->html();
    }
    return m_common->data(format);
}

/// Without the files of the attachments.
std::unique_ptr<QTextDocument> CopiedText::text() const
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    QTextCursor cursor(document.get());
    cursor.insertFragment(m_text);
    cursor.movePosition(QTextCursor::Start);
    if (m_beginsInItem && document->characterCount() - 1 > m_length) {
        cursor.deleteChar(); // the toolkit may put an empty paragraph before a list
    }
    const bool isOnlyPartOfItem = m_beginsInItem && !m_beginsWithItem;
    if (isOnlyPartOfItem) {
        cursor.setBlockFormat(QTextBlockFormat()); // words of an item are no item
    } else if (m_firstParagraph && !m_beginsWithItem) {
        cursor.setBlockFormat(*m_firstParagraph);
    }
    return document;
}

std::unique_ptr<QTextDocument> CopiedText::document() const
{
    std::unique_ptr<QTextDocument> document = text();
    AttachmentStore &store = AttachmentStore::of(*document);
    for (const Entry &entry : m_entries) {
        store.add(QString::fromUtf8(entry.entry.name), entry.entry, entry.attributes);
    }
    return document;
}

bool offersRtf(const QMimeData &source)
{
    return std::any_of(rtfFormats.begin(), rtfFormats.end(),
                       [&source](QLatin1StringView format) { return source.hasFormat(format); });
}

QByteArray rtfOf(const QMimeData &source)
{
    for (const QLatin1StringView format : rtfFormats) {
        if (source.hasFormat(format)) {
            QByteArray rtf = source.data(format);
            if (formOf(rtf) == BodyForm::Rtf) {
                return rtf;
            }
        }
    }
    return {};
}

std::unique_ptr<QTextDocument> pastedBody(const QByteArray &body, QTextDocument &target)
{
    auto document = std::make_unique<QTextDocument>();
    document->setUndoRedoEnabled(false);
    document->setDefaultFont(target.defaultFont());
    readBody(body, *document);
    const std::vector<Attachment> attachments = attachmentsOf(*document);
    if (attachments.empty()) {
        return document;
    }
    const AttachmentStore &from = AttachmentStore::of(*document);
    AttachmentStore &store = AttachmentStore::of(target);
    const QSet<QString> inUse = namesOf(attachmentsOf(target));
    QHash<QString, QString> names;
    for (const QString &name : namesOf(attachments)) {
        names.insert(name, moveFile(name, from, store, inUse));
    }
    QTextCursor cursor(document.get());
    for (const Attachment &attachment : attachments) {
        QTextCharFormat format = attachment.format;
        format.setProperty(AttachmentName, names.value(attachment.name()));
        format.setProperty(AttachmentId, store.nextId());
        cursor.setPosition(attachment.position);
        cursor.setPosition(attachment.position + 1, QTextCursor::KeepAnchor);
        cursor.setCharFormat(format);
    }
    return document;
}

} // namespace quorvane
