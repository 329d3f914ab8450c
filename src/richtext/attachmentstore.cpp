#include "richtext/attachmentstore.h"

#include <QTextDocument>

using namespace Qt::StringLiterals;

namespace quorvane {

AttachmentStore::AttachmentStore(QTextDocument *document)
    : QObject(document)
{ }

AttachmentStore &AttachmentStore::of(QTextDocument &document)
{
    auto *store = document.findChild<AttachmentStore *>(QString(), Qt::FindDirectChildrenOnly);
    return *(store ? store : new AttachmentStore(&document));
}

const AttachmentStore *AttachmentStore::find(const QTextDocument &document)
{
    return document.findChild<AttachmentStore *>(QString(), Qt::FindDirectChildrenOnly);
}

void AttachmentStore::setEntries(FlatRtfdEntries entries,
                                 const std::vector<FlatRtfdAttributes> &attributes)
{
    m_entries.clear();
    m_exact.clear();
    m_composed.clear();
    QHash<QByteArray, FlatRtfdAttributes> known;
    for (const FlatRtfdAttributes &record : attributes) {
        // The text's record comes last where a file has the same name.
        if (!known.contains(record.name)) {
            known.insert(record.name, record);
        }
    }
    for (FlatRtfdEntry &entry : entries) {
        Stored stored;
        stored.name = QString::fromUtf8(entry.name);
        const auto record = known.constFind(entry.name);
        if (record != known.constEnd()) {
            stored.attributes = *record;
        }
        stored.entry = std::move(entry);
        m_entries.push_back(std::move(stored));
        index(m_entries.size() - 1);
    }
}

QString AttachmentStore::add(const QString &name, const QByteArray &bytes)
{
    return add(name, {name.toUtf8(), FlatRtfdEntry::Kind::File, bytes, {}}, std::nullopt);
}

QString AttachmentStore::add(const QString &name, FlatRtfdEntry entry,
                             std::optional<FlatRtfdAttributes> attributes)
{
    QString free = name;
    for (int number = 1; indexOf(free); ++number) {
        free = QString::number(number) + "__#$!@%!#__"_L1 + name;
    }
    Stored stored;
    stored.name = free;
    stored.entry = std::move(entry);
    stored.entry.name = free.toUtf8();
    stored.attributes = std::move(attributes);
    stored.isPlaced = true;
    m_entries.push_back(std::move(stored));
    index(m_entries.size() - 1);
    return free;
}

void AttachmentStore::index(std::size_t at)
{
    const QString &name = m_entries[at].name;
    if (!m_exact.contains(name)) {
        m_exact.insert(name, at);
        m_composed.insert(name.normalized(QString::NormalizationForm_C), at);
    }
}

std::optional<std::size_t> AttachmentStore::indexOf(const QString &name) const
{
    const auto exact = m_exact.constFind(name);
    if (exact != m_exact.constEnd()) {
        return *exact;
    }
    const auto composed = m_composed.constFind(name.normalized(QString::NormalizationForm_C));
    return composed != m_composed.constEnd() ? std::optional(*composed) : std::nullopt;
}

const FlatRtfdEntry *AttachmentStore::entry(const QString &name) const
{
    const std::optional<std::size_t> found = indexOf(name);
    return found ? &m_entries[*found].entry : nullptr;
}

void AttachmentStore::markPlaced(const QString &name)
{
    if (const std::optional<std::size_t> found = indexOf(name)) {
        m_entries[*found].isPlaced = true;
    }
}

std::vector<AttachmentStore::WrittenEntry>
AttachmentStore::entriesFor(const QSet<QString> &names) const
{
    QSet<std::size_t> wanted;
    for (const QString &name : names) {
        if (const std::optional<std::size_t> found = indexOf(name)) {
            wanted.insert(*found);
        }
    }
    std::vector<WrittenEntry> entries;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        const Stored &stored = m_entries[i];
        if (!stored.isPlaced || wanted.contains(i)) {
            entries.push_back({&stored.entry, stored.attributes.value_or(FlatRtfdAttributes())});
            entries.back().attributes.name = stored.entry.name;
        }
    }
    return entries;
}

} // namespace quorvane
