#include "richtext/richtextexport.h"

#include "richtext/attachmentstore.h"
#include "richtext/rtfwriter.h"

#include <QTextDocument>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

constexpr auto textName = "TXT.rtf"_L1;
constexpr qsizetype longestName = 255; // Bytes, on the file systems of today.

/// What two names have in common that some disk takes for one.
QString clashKey(const QString &name)
{
    return name.normalized(QString::NormalizationForm_KC).toCaseFolded();
}

/// The name without what leads out of a folder or cannot stand in one.
QString harmless(const QString &name)
{
    QString safe = name;
    for (QChar &c : safe) {
        const bool isControl = c < u' ' || c == u'\x7f';
        c = isControl || c == u'/' || c == u'\\' || c == u':' || c == QChar::ReplacementCharacter
            ? QChar(u'_')
            : c;
    }
    while (safe.toUtf8().size() > longestName) {
        safe.remove(safe.size() / 2, 1 + (safe.size() - longestName / 4) / 8);
    }
    const bool isOnlyDots =
        std::all_of(safe.begin(), safe.end(), [](QChar c) { return c == u'.'; });
    return isOnlyDots ? u"_"_s + safe : safe;
}

/// Gives each thing of a folder a name of its own.
class FreeNames final
{
public:
    void take(const QString &name) { m_taken.insert(clashKey(name)); }

    QString nameFor(const QString &wanted)
    {
        const QString safe = harmless(wanted);
        QString name = safe;
        for (int number = 1; m_taken.contains(clashKey(name)); ++number) {
            name = harmless(QString::number(number) + "__#$!@%!#__"_L1 + safe);
        }
        take(name);
        return name;
    }

private:
    QSet<QString> m_taken;
};

std::optional<PackageEntry> packageEntry(const FlatRtfdEntry &entry, const QString &name)
{
    if (entry.kind == FlatRtfdEntry::Kind::Unknown) {
        return std::nullopt;
    }
    PackageEntry out {name.toUtf8(), entry.kind == FlatRtfdEntry::Kind::Directory, entry.bytes, {}};
    FreeNames names;
    for (const FlatRtfdEntry &child : entry.children) {
        const bool isTold =
            child.name == "." || (child.name.startsWith("__@") && child.name.endsWith("@__"));
        if (isTold) {
            continue; // It tells of the others and is no file.
        }
        if (auto inner = packageEntry(child, names.nameFor(QString::fromUtf8(child.name)))) {
            out.children.push_back(*std::move(inner));
        }
    }
    return out;
}

FlatRtfdEntry flatEntry(const PackageEntry &entry)
{
    FlatRtfdEntry out {entry.name,
                       entry.isFolder ? FlatRtfdEntry::Kind::Directory : FlatRtfdEntry::Kind::File,
                       entry.bytes,
                       {}};
    std::transform(entry.children.begin(), entry.children.end(), std::back_inserter(out.children),
                   flatEntry);
    return out;
}

bool isText(const PackageEntry &entry)
{
    return !entry.isFolder && entry.name.compare("TXT.rtf", Qt::CaseInsensitive) == 0;
}

} // namespace

QByteArray rtfFromDocument(const QTextDocument &document)
{
    return RtfWriter(document, RtfWriter::Form::Alone).write();
}

PackageEntries packageFromDocument(const QTextDocument &document)
{
    RtfWriter writer(document);
    QByteArray text = writer.write();
    const QSet<QString> &met = writer.attachmentNames();
    PackageEntries entries;
    FreeNames names;
    names.take(textName);
    QHash<const FlatRtfdEntry *, QString> fileNames;
    const AttachmentStore *store = AttachmentStore::find(document);
    for (const AttachmentStore::WrittenEntry &written :
         store ? store->entriesFor(met) : std::vector<AttachmentStore::WrittenEntry>()) {
        const QString name = names.nameFor(QString::fromUtf8(written.entry->name));
        if (auto entry = packageEntry(*written.entry, name)) {
            entries.push_back(*std::move(entry));
            fileNames.insert(written.entry, name);
        }
    }
    QHash<QString, QString> newNames;
    for (const QString &name : met) {
        const FlatRtfdEntry *entry = store ? store->entry(name) : nullptr;
        // A name without a file must not come to stand for one that was renamed.
        const QString now =
            fileNames.contains(entry) ? fileNames.value(entry) : names.nameFor(name);
        if (now != name) {
            newNames.insert(name, now);
        }
    }
    if (!newNames.isEmpty()) {
        RtfWriter renaming(document);
        renaming.renameAttachments(newNames);
        text = renaming.write();
    }
    entries.push_back({QByteArray(textName.data(), textName.size()), false, text, {}});
    return entries;
}

QByteArray bodyFromPackage(const PackageEntries &entries)
{
    FlatRtfdEntries flat;
    const auto text = std::find_if(entries.begin(), entries.end(), isText);
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        flat.push_back(flatEntry(*entry));
        if (entry == text) {
            flat.back().name = "TXT.rtf";
        }
    }
    return writeFlatRtfd(flat);
}

} // namespace quorvane
