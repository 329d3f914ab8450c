#include "platform/propertylistwriter.h"

#include "platform/largebuffer.h"

#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace quorvane {

namespace {

constexpr unsigned headerSize = 8;
constexpr unsigned trailerSize = 32;

/// The smallest of the widths 1, 2, 4 and 8 that holds the value.
unsigned widthOf(quint64 value)
{
    if (value <= 0xFF) {
        return 1;
    }
    if (value <= 0xFFFF) {
        return 2;
    }
    return value <= 0xFFFFFFFF ? 4 : 8;
}

} // namespace

/// Takes what is written. Without a target it only counts, so that one description of the format
/// gives both the size and the bytes.
class PropertyListWriter::Sink final
{
public:
    Sink(char *target, unsigned referenceWidth)
        : m_target(target)
        , m_referenceWidth(referenceWidth)
    { }

    quint64 position() const { return m_position; }

    void bytes(const void *source, quint64 size)
    {
        if (m_target != nullptr && size > 0) {
            std::memcpy(m_target + m_position, source, static_cast<size_t>(size));
        }
        m_position += size;
    }

    void integer(quint64 value, unsigned width)
    {
        const quint64 bigEndian = qToBigEndian(value);
        bytes(reinterpret_cast<const char *>(&bigEndian) + (sizeof(bigEndian) - width), width);
    }

    void put(const Object &object)
    {
        std::visit([this](const auto &value) { put(value); }, object);
    }

private:
    void put(bool value) { integer(value ? 0x09 : 0x08, 1); }

    void put(qint64 value)
    {
        put(static_cast<quint64>(value), widthOf(static_cast<quint64>(value)));
    }

    void put(quint64 value)
    {
        integer(0x14, 1);
        integer(0, 8);
        integer(value, 8);
    }

    void put(double value)
    {
        integer(0x23, 1);
        integer(std::bit_cast<quint64>(value), 8);
    }

    void put(Date value)
    {
        integer(0x33, 1);
        integer(std::bit_cast<quint64>(value.seconds), 8);
    }

    void put(const QByteArray &data)
    {
        const auto size = static_cast<quint64>(data.size());
        header(0x4, size);
        bytes(data.constData(), size);
    }

    void put(const QString &text)
    {
        const bool isAscii = std::ranges::all_of(text, [](QChar c) { return c.unicode() < 0x80; });
        const auto length = static_cast<quint64>(text.size());
        header(isAscii ? 0x5 : 0x6, length);
        if (m_target != nullptr && isAscii) {
            std::ranges::transform(text, m_target + m_position, &QChar::toLatin1);
        } else if (m_target != nullptr) {
            qToBigEndian<quint16>(text.utf16(), text.size(), m_target + m_position);
        }
        m_position += isAscii ? length : 2 * length;
    }

    void put(Uid uid)
    {
        const unsigned width = widthOf(uid.value);
        integer(0x80U | (width - 1), 1);
        integer(uid.value, width);
    }

    void put(const Array &array)
    {
        header(0xA, array.elements.size());
        references(array.elements);
    }

    void put(const Dictionary &dictionary)
    {
        header(0xD, dictionary.keysAndValues.size() / 2);
        references(dictionary.keysAndValues);
    }

    // A width of eight is read as signed.
    void put(quint64 value, unsigned width)
    {
        integer(0x10U | static_cast<unsigned>(std::countr_zero(width)), 1);
        integer(value, width);
    }

    void header(unsigned type, quint64 count)
    {
        integer(type << 4 | (count < 15 ? static_cast<unsigned>(count) : 15), 1);
        if (count >= 15) {
            put(count, widthOf(count));
        }
    }

    void references(const std::vector<Reference> &references)
    {
        for (const Reference reference : references) {
            integer(reference, m_referenceWidth);
        }
    }

    char *m_target;
    quint64 m_position = 0;
    unsigned m_referenceWidth;
};

PropertyListWriter::Reference PropertyListWriter::addUnsignedInteger(quint64 value)
{
    const auto asSigned = static_cast<qint64>(value);
    return asSigned < 0 ? add(value) : add(asSigned);
}

void PropertyListWriter::setElements(Reference array, std::vector<Reference> elements)
{
    std::get<Array>(m_objects[array]).elements = std::move(elements);
}

void PropertyListWriter::setKeysAndValues(Reference dictionary,
                                          std::vector<Reference> keysAndValues)
{
    std::get<Dictionary>(m_objects[dictionary]).keysAndValues = std::move(keysAndValues);
}

PropertyListWriter::Reference PropertyListWriter::add(Object object)
{
    m_objects.push_back(std::move(object));
    return static_cast<Reference>(m_objects.size() - 1);
}

QByteArray PropertyListWriter::data(Reference top) const
{
    const unsigned referenceWidth = widthOf(m_objects.size() - 1);
    Sink counter(nullptr, referenceWidth);
    quint64 lastOffset = 0;
    for (const Object &object : m_objects) {
        lastOffset = headerSize + counter.position();
        counter.put(object);
    }
    const quint64 offsetTable = headerSize + counter.position();
    const unsigned offsetWidth = widthOf(lastOffset);
    const quint64 size = offsetTable + m_objects.size() * offsetWidth + trailerSize;

    QByteArray result = largeBuffer(static_cast<qsizetype>(size));
    char *target = result.data();
    Sink sink(target, referenceWidth);
    Sink offsets(target + offsetTable, referenceWidth);
    sink.bytes("bplist00", headerSize);
    for (const Object &object : m_objects) {
        offsets.integer(sink.position(), offsetWidth);
        sink.put(object);
    }
    offsets.bytes("\0\0\0\0\0\0", 6);
    offsets.integer(offsetWidth, 1);
    offsets.integer(referenceWidth, 1);
    offsets.integer(m_objects.size(), 8);
    offsets.integer(top, 8);
    offsets.integer(offsetTable, 8);
    return result;
}

} // namespace quorvane
