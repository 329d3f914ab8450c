#include "platform/propertylist.h"

#include "platform/xmlpropertylistreader.h"

#include <QtEndian>

#include <algorithm>
#include <bit>
#include <cstring>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 headerSize = 8;
constexpr quint64 trailerSize = 32;
constexpr unsigned countFollows = 0xF;

// The high half of an object's first byte.
enum Type : unsigned {
    Singleton = 0x0,
    IntegerType = 0x1,
    RealType = 0x2,
    DateType = 0x3,
    DataType = 0x4,
    AsciiType = 0x5,
    WideType = 0x6,
    UidType = 0x8,
    ArrayType = 0xA,
    DictionaryType = 0xD,
};

} // namespace

std::optional<PropertyList> PropertyList::fromData(const QByteArray &data)
{
    if (data.startsWith("bplist0")) {
        return fromBinary(data);
    }
    const std::optional<QByteArray> binary = XmlPropertyListReader::binaryFromXml(data);
    return binary ? fromBinary(*binary) : std::nullopt;
}

std::optional<PropertyList> PropertyList::fromBinary(const QByteArray &data)
{
    PropertyList list;
    list.m_bytes = data;
    const quint64 size = list.size();
    if (size < headerSize + trailerSize) {
        return std::nullopt;
    }
    // Trailer: 6 unused bytes, two widths, then three big-endian words of 8 bytes.
    const quint64 trailer = size - trailerSize;
    list.m_offsetWidth = list.integerAt(trailer + 6, 1);
    list.m_referenceWidth = list.integerAt(trailer + 7, 1);
    list.m_objectCount = list.integerAt(trailer + 8, 8);
    list.m_top = list.integerAt(trailer + 16, 8);
    list.m_offsetTable = list.integerAt(trailer + 24, 8);
    const auto isWidth = [](quint64 width) {
        return width >= 1 && width <= 8;
    };
    if (!isWidth(list.m_offsetWidth) || !isWidth(list.m_referenceWidth)) {
        return std::nullopt;
    }
    if (list.m_offsetTable <= headerSize || list.m_offsetTable > trailer) {
        return std::nullopt;
    }
    // The table ends where the trailer begins; bytes put in between or cut out show here.
    const quint64 tableSize = trailer - list.m_offsetTable;
    if (list.m_objectCount != tableSize / list.m_offsetWidth
        || tableSize % list.m_offsetWidth != 0) {
        return std::nullopt;
    }
    return list.m_top < list.m_objectCount ? std::optional(std::move(list)) : std::nullopt;
}

// Callers have checked that the bytes are there.
quint64 PropertyList::integerAt(quint64 position, quint64 width) const
{
    quint64 result = 0;
    const char *bytes = m_bytes.constData() + position;
    for (quint64 i = 0; i < width; ++i) {
        result = (result << 8) | static_cast<unsigned char>(bytes[i]);
    }
    return result;
}

PropertyList::Value PropertyList::object(quint64 number) const
{
    if (number >= m_objectCount) {
        return Value();
    }
    const quint64 position = integerAt(m_offsetTable + number * m_offsetWidth, m_offsetWidth);
    if (position < headerSize || position >= m_offsetTable) {
        return Value();
    }
    Value value(this);
    value.m_payload = position + 1;
    const auto marker = static_cast<unsigned>(integerAt(position, 1));
    const unsigned type = marker >> 4;
    const unsigned low = marker & 0xF;
    const bool isSized = type == DataType || type == AsciiType || type == WideType
        || type == ArrayType || type == DictionaryType;
    const bool isRead = isSized ? readSized(value, type, low) : readScalar(value, type, low);
    return isRead ? value : Value();
}

bool PropertyList::readScalar(Value &value, unsigned type, unsigned low) const
{
    switch (type) {
    case Singleton:
        value.m_kind =
            Kind::Boolean; // 8 and 9; null, fill bytes and whatever else have no use here
        return low == 8 || low == 9;
    case IntegerType:
        value.m_kind = Kind::Integer;
        value.m_count = quint64(1) << low;
        return low <= 4 && value.m_count <= m_offsetTable - value.m_payload;
    case RealType:
    case DateType:
        value.m_kind = type == RealType ? Kind::Real : Kind::Date;
        value.m_count = quint64(1) << low;
        return (low == 3 || (low == 2 && type == RealType))
            && value.m_count <= m_offsetTable - value.m_payload;
    case UidType:
        value.m_kind = Kind::Uid;
        value.m_count = low + 1;
        return low < 8 && value.m_count <= m_offsetTable - value.m_payload;
    default:
        return false;
    }
}

bool PropertyList::readSized(Value &value, unsigned type, unsigned low) const
{
    if (!readCount(value, low)) {
        return false;
    }
    quint64 width = 1;
    switch (type) {
    case DataType:
        value.m_kind = Kind::Data;
        break;
    case AsciiType:
        value.m_kind = Kind::String;
        break;
    case WideType:
        value.m_kind = Kind::String;
        value.m_isWide = true;
        width = 2;
        break;
    case ArrayType:
        value.m_kind = Kind::Array;
        width = m_referenceWidth;
        break;
    default:
        value.m_kind = Kind::Dictionary;
        width = 2 * m_referenceWidth;
        break;
    }
    const quint64 available = m_offsetTable - value.m_payload;
    return value.m_count <= available && value.m_count * width <= available;
}

// Counts from 15 on follow the first byte as an integer object.
bool PropertyList::readCount(Value &value, unsigned low) const
{
    value.m_count = low;
    if (low != countFollows) {
        return true;
    }
    if (value.m_payload >= m_offsetTable) {
        return false;
    }
    const quint64 marker = integerAt(value.m_payload, 1);
    const quint64 width = quint64(1) << (marker & 0xF);
    value.m_payload += 1;
    if (marker >> 4 != IntegerType || width > 8 || width > m_offsetTable - value.m_payload) {
        return false;
    }
    value.m_count = integerAt(value.m_payload, width);
    value.m_payload += width;
    return true;
}

std::optional<NSNumber> PropertyList::Value::number() const
{
    switch (m_kind) {
    case Kind::Boolean:
        return NSNumber::numberWithBool(m_list->integerAt(m_payload - 1, 1) == 9);
    case Kind::Real:
        if (m_count == 4) {
            const auto bits = static_cast<quint32>(m_list->integerAt(m_payload, 4));
            return NSNumber::numberWithDouble(static_cast<double>(std::bit_cast<float>(bits)));
        }
        return NSNumber::numberWithDouble(std::bit_cast<double>(m_list->integerAt(m_payload, 8)));
    case Kind::Integer:
        break;
    default:
        return std::nullopt;
    }
    if (m_count < 8) {
        return NSNumber::numberWithLong(static_cast<qint64>(m_list->integerAt(m_payload, m_count)));
    }
    const quint64 low = m_list->integerAt(m_payload + m_count - 8, 8);
    if (m_count == 8) {
        return NSNumber::numberWithLong(static_cast<qint64>(low));
    }
    // Sixteen bytes hold what eight signed ones cannot; what needs more than 64 bits is no number.
    const quint64 high = m_list->integerAt(m_payload, 8);
    if (high == 0) {
        return NSNumber::numberWithUnsignedLong(low);
    }
    const auto asSigned = static_cast<qint64>(low);
    const bool isSignExtension = high == ~quint64(0) && asSigned < 0;
    return isSignExtension ? std::optional(NSNumber::numberWithLong(asSigned)) : std::nullopt;
}

std::optional<NSDate> PropertyList::Value::date() const
{
    if (m_kind != Kind::Date) {
        return std::nullopt;
    }
    return NSDate {std::bit_cast<double>(m_list->integerAt(m_payload, 8))};
}

std::optional<QByteArrayView> PropertyList::Value::data() const
{
    if (m_kind != Kind::Data) {
        return std::nullopt;
    }
    return QByteArrayView(m_list->m_bytes.constData() + m_payload, qsizetype(m_count));
}

std::optional<QString> PropertyList::Value::string() const
{
    if (m_kind != Kind::String) {
        return std::nullopt;
    }
    const char *bytes = m_list->m_bytes.constData() + m_payload;
    const auto length = static_cast<qsizetype>(m_count);
    if (m_isWide) {
        QString result(length, Qt::Uninitialized);
        qFromBigEndian<quint16>(bytes, length, result.data());
        return result;
    }
    const QByteArrayView text(bytes, length);
    const bool isAscii =
        std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    return isAscii ? std::optional(QString::fromLatin1(text)) : std::nullopt;
}

bool PropertyList::Value::isString(QLatin1StringView ascii) const
{
    if (m_kind != Kind::String || m_count != static_cast<quint64>(ascii.size())) {
        return false;
    }
    if (m_isWide) {
        return string() == ascii;
    }
    const char *bytes = m_list->m_bytes.constData() + m_payload;
    return std::memcmp(bytes, ascii.data(), static_cast<size_t>(m_count)) == 0;
}

std::optional<quint64> PropertyList::Value::uid() const
{
    if (m_kind == Kind::Uid) {
        return m_list->integerAt(m_payload, m_count);
    }
    if (m_kind != Kind::Dictionary || m_count != 1 || !key(0).isString("CF$UID"_L1)) {
        return std::nullopt;
    }
    const Value inner = value(0);
    const std::optional<NSNumber> number = inner.number();
    if (inner.kind() != Kind::Integer || !number || number->doubleValue() < 0) {
        return std::nullopt;
    }
    return number->unsignedLongValue();
}

PropertyList::Value PropertyList::Value::element(quint64 index) const
{
    return m_kind == Kind::Array && index < m_count ? reference(index) : Value();
}

PropertyList::Value PropertyList::Value::key(quint64 index) const
{
    return m_kind == Kind::Dictionary && index < m_count ? reference(index) : Value();
}

PropertyList::Value PropertyList::Value::value(quint64 index) const
{
    return m_kind == Kind::Dictionary && index < m_count ? reference(m_count + index) : Value();
}

PropertyList::Value PropertyList::Value::reference(quint64 slot) const
{
    const quint64 width = m_list->m_referenceWidth;
    return m_list->object(m_list->integerAt(m_payload + slot * width, width));
}

} // namespace quorvane
