#include "editor/copiedtext.h"

#include "richtext/body.h"
#include "richtext/textproperties.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr auto plainFormat = "text/plain"_L1;
constexpr auto htmlFormat = "text/html"_L1;

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
                       const QObject *source)
    : m_common(std::move(common))
    , m_text(selection)
    , m_source(source)
{
    const QTextDocument &document = *selection.document();
    const QTextBlock first = document.findBlock(selection.selectionStart());
    if (first.position() == selection.selectionStart()) {
        m_firstParagraph = first.blockFormat();
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
}

void CopiedText::clearClipboards(const QObject *source)
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
    return QStringList {rtfdFormat} + m_common->formats();
}

bool CopiedText::hasFormat(const QString &format) const
{
    return formats().contains(format);
}

QVariant CopiedText::retrieveData(const QString &format, QMetaType) const
{
    if (format == rtfdFormat) {
        return body();
    }
    if (!m_common->hasFormat(format)) {
        return {}; // an empty answer would be taken for the text
    }
    if (format == plainFormat) {
        return m_common->text();
    }
    if (format == htmlFormat) {
        return m_common->html();
    }
    return m_common->data(format);
}

QByteArray CopiedText::body() const
{
    QTextDocument document;
    document.setUndoRedoEnabled(false);
    QTextCursor cursor(&document);
    cursor.insertFragment(m_text);
    if (m_firstParagraph) {
        cursor.movePosition(QTextCursor::Start);
        cursor.setBlockFormat(*m_firstParagraph);
    }
    AttachmentStore &store = AttachmentStore::of(document);
    for (const Entry &entry : m_entries) {
        store.add(QString::fromUtf8(entry.entry.name), entry.entry, entry.attributes);
    }
    return bodyFromDocument(document);
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
