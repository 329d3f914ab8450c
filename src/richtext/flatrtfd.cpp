#include "richtext/flatrtfd.h"

#include <QByteArrayView>
#include <QtEndian>

#include <algorithm>

namespace quorvane {

namespace {

constexpr quint32 fileType = 1;
constexpr quint32 directoryType = 3;
constexpr quint32 paddedMark = 0x80000000;
constexpr qsizetype paddedFrom = 4096;
constexpr int deepest = 32;
constexpr quint32 mostEntries = 65536;
constexpr quint32 recordSize = 16;

/// Takes numbers and bytes from a stretch of data and notes when it ran out.
class Source final
{
public:
    explicit Source(QByteArrayView data)
        : m_data(data)
    { }

    bool isShort() const { return m_short; }

    qsizetype left() const { return m_data.size(); }

    quint32 number()
    {
        if (m_data.size() < 4) {
            m_short = true;
            m_data = {};
            return 0;
        }
        const auto value = qFromLittleEndian<quint32>(m_data.data());
        m_data = m_data.sliced(4);
        return value;
    }

    QByteArrayView bytes(quint32 wanted)
    {
        const qsizetype length = std::min<qsizetype>(wanted, m_data.size());
        m_short = m_short || length < qsizetype(wanted);
        const QByteArrayView taken = m_data.first(length);
        m_data = m_data.sliced(length);
        return taken;
    }

private:
    QByteArrayView m_data;
    bool m_short = false;
};

FlatRtfdEntries readDirectory(Source source, int depth, bool &damaged);

void readFile(Source source, FlatRtfdEntry &entry, bool &damaged)
{
    quint32 length = source.number();
    if (length == paddedMark) {
        length = source.number();
        source.bytes(source.number());
    }
    entry.bytes = source.bytes(length).toByteArray();
    damaged = damaged || source.isShort();
}

void readNode(QByteArrayView node, int depth, FlatRtfdEntry &entry, bool &damaged)
{
    Source source(node);
    const quint32 type = source.number();
    if (type == fileType) {
        readFile(source, entry, damaged);
    } else if (type == directoryType && depth < deepest) {
        entry.kind = FlatRtfdEntry::Kind::Directory;
        entry.children = readDirectory(source, depth + 1, damaged);
    } else {
        entry.kind = FlatRtfdEntry::Kind::Unknown;
        entry.bytes = node.toByteArray();
    }
}

/// \a source stands behind the type word.
FlatRtfdEntries readDirectory(Source source, int depth, bool &damaged)
{
    FlatRtfdEntries entries;
    const quint32 count = source.number();
    damaged = damaged || count > mostEntries;
    for (quint32 i = 0; i < std::min(count, mostEntries) && source.left() > 0; ++i) {
        FlatRtfdEntry entry;
        entry.name = source.bytes(source.number()).toByteArray();
        entries.push_back(std::move(entry));
    }
    std::vector<quint32> sizes;
    for (quint32 i = 0; i < count && i < entries.size(); ++i) {
        sizes.push_back(source.number());
    }
    for (std::size_t i = 0; i < entries.size(); ++i) {
        readNode(source.bytes(sizes[i]), depth, entries[i], damaged);
    }
    damaged = damaged || source.isShort() || entries.size() < count;
    return entries;
}

void append(QByteArray &out, quint32 number)
{
    char bytes[4];
    qToLittleEndian(number, bytes);
    out.append(bytes, 4);
}

void putAt(QByteArray &out, qsizetype place, qsizetype number)
{
    qToLittleEndian(quint32(number), out.data() + place);
}

void appendName(QByteArray &out, const QByteArray &name)
{
    append(out, quint32(name.size()));
    out.append(name);
}

void appendFile(QByteArray &out, const QByteArray &bytes)
{
    append(out, fileType);
    if (bytes.size() >= paddedFrom) {
        append(out, paddedMark);
        append(out, quint32(bytes.size()));
        const qsizetype start = out.size() + 4;
        const qsizetype padding = (paddedFrom - start % paddedFrom) % paddedFrom;
        append(out, quint32(padding));
        out.append(padding, '\0');
    } else {
        append(out, quint32(bytes.size()));
    }
    out.append(bytes);
}

void appendDirectory(QByteArray &out, const FlatRtfdEntries &entries)
{
    append(out, directoryType);
    append(out, quint32(entries.size()));
    for (const FlatRtfdEntry &entry : entries) {
        appendName(out, entry.name);
    }
    qsizetype sizePlace = out.size();
    out.append(qsizetype(entries.size()) * 4, '\0');
    for (const FlatRtfdEntry &entry : entries) {
        const qsizetype start = out.size();
        switch (entry.kind) {
        case FlatRtfdEntry::Kind::File:
            appendFile(out, entry.bytes);
            break;
        case FlatRtfdEntry::Kind::Directory:
            appendDirectory(out, entry.children);
            break;
        case FlatRtfdEntry::Kind::Unknown:
            out.append(entry.bytes);
            break;
        }
        putAt(out, sizePlace, out.size() - start);
        sizePlace += 4;
    }
}

} // namespace

std::optional<FlatRtfd> readFlatRtfd(const QByteArray &data)
{
    if (!data.startsWith("rtfd")) {
        return std::nullopt;
    }
    Source source(QByteArrayView(data).sliced(4));
    FlatRtfd result;
    // Always 0 so far; another value would be a version that still has a directory behind it.
    result.damaged = source.number() != 0;
    if (source.number() != directoryType || source.isShort()) {
        return std::nullopt;
    }
    result.entries = readDirectory(source, 0, result.damaged);
    return result;
}

QByteArray writeFlatRtfd(const FlatRtfdEntries &entries)
{
    QByteArray out = "rtfd";
    append(out, 0);
    appendDirectory(out, entries);
    return out;
}

std::vector<FlatRtfdAttributes> readFlatRtfdAttributes(const QByteArray &data)
{
    Source source {QByteArrayView(data)};
    std::vector<FlatRtfdAttributes> records;
    const quint32 count = source.number();
    for (quint32 i = 0; i < std::min(count, mostEntries) && source.left() > 0; ++i) {
        FlatRtfdAttributes record;
        record.name = source.bytes(source.number()).toByteArray();
        records.push_back(record);
    }
    std::vector<quint32> sizes;
    for (std::size_t i = 0; i < records.size(); ++i) {
        sizes.push_back(source.number());
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        Source fields(source.bytes(sizes[i]));
        FlatRtfdAttributes &record = records[i];
        record.modified = fields.number();
        record.mode = fields.number();
        record.first = fields.number();
        record.second = fields.number();
        if (fields.isShort()) {
            records.resize(i);
            break;
        }
    }
    return records;
}

QByteArray writeFlatRtfdAttributes(const std::vector<FlatRtfdAttributes> &records)
{
    QByteArray out;
    append(out, quint32(records.size()));
    for (const FlatRtfdAttributes &record : records) {
        appendName(out, record.name);
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        append(out, recordSize);
    }
    for (const FlatRtfdAttributes &record : records) {
        append(out, record.modified);
        append(out, record.mode);
        append(out, record.first);
        append(out, record.second);
    }
    return out;
}

} // namespace quorvane
