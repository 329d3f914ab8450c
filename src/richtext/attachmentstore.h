#pragma once

#include "richtext/flatrtfd.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>

class QTextDocument;

namespace quorvane {

/// The files beside a document's text. It belongs to the document as its child; clone() does not
/// copy it. What was deleted from the text stays here, because undo brings it back; it is not
/// written.
class AttachmentStore final : public QObject
{
    Q_OBJECT

public:
    struct WrittenEntry
    {
        const FlatRtfdEntry *entry; ///< Valid while the store is not changed.
        FlatRtfdAttributes attributes;
    };

    /// The document's store, made where there is none yet.
    static AttachmentStore &of(QTextDocument &document);
    static const AttachmentStore *find(const QTextDocument &document);

    /// Takes the entries that came beside a text in place of what there was.
    void setEntries(FlatRtfdEntries entries, const std::vector<FlatRtfdAttributes> &attributes);

    /// Adds a file; a name that is taken gets a number in front. \return the name it has now.
    QString add(const QString &name, const QByteArray &bytes);
    /// Adds a file or a folder of another text, in the same way.
    QString add(const QString &name, FlatRtfdEntry entry,
                std::optional<FlatRtfdAttributes> attributes);

    /// The entry of that name, or nullptr.
    const FlatRtfdEntry *entry(const QString &name) const;

    /// Notes that an attachment of the text stands for the entry: it goes when the attachment goes.
    void markPlaced(const QString &name);

    /// The entries to write beside a text with attachments of these names: theirs, and all that no
    /// attachment ever stood for. In the order in which they came.
    std::vector<WrittenEntry> entriesFor(const QSet<QString> &names) const;

    /// A number for an attachment, another one at each call.
    int nextId() { return ++m_lastId; }

private:
    explicit AttachmentStore(QTextDocument *document);

    struct Stored
    {
        FlatRtfdEntry entry;
        QString name;
        std::optional<FlatRtfdAttributes> attributes;
        bool isPlaced = false;
    };

    std::optional<std::size_t> indexOf(const QString &name) const;
    void index(std::size_t at);

    std::vector<Stored> m_entries;
    QHash<QString, std::size_t> m_exact;
    QHash<QString, std::size_t> m_composed; ///< Names in normal form: file systems change it.
    int m_lastId = 0;
};

} // namespace quorvane
