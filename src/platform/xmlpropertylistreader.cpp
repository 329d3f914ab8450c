#include "platform/xmlpropertylistreader.h"

#include "platform/utf8.h"

#include <QDate>
#include <QString>
#include <QTime>

#include <algorithm>
#include <limits>

namespace quorvane {

using Reference = PropertyListWriter::Reference;

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

/// Of any length of digits; adds no object where the text is no integer of 64 bits.
std::optional<Reference> addInteger(PropertyListWriter &writer, QByteArrayView text)
{
    const bool isNegative = text.startsWith('-');
    QByteArrayView digits = isNegative || text.startsWith('+') ? text.sliced(1) : text;
    const bool isHex = digits.startsWith("0x") || digits.startsWith("0X");
    if (isHex) {
        digits = digits.sliced(2);
    }
    bool isNumber = false;
    const QByteArray copy = digits.toByteArray();
    const quint64 magnitude = copy.toULongLong(&isNumber, isHex ? 16 : 10);
    if (!isNumber || digits.startsWith('-') || digits.startsWith('+')) {
        return std::nullopt;
    }
    if (!isNegative) {
        return writer.addUnsignedInteger(magnitude);
    }
    constexpr quint64 lowest = quint64(1) << 63;
    const bool fits = magnitude <= lowest;
    return fits ? std::optional(writer.addInteger(static_cast<qint64>(~magnitude + 1)))
                : std::nullopt;
}

std::optional<double> realOf(QByteArrayView text)
{
    const QByteArray lower = text.toByteArray().toLower();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (lower == "inf" || lower == "+inf" || lower == "infinity" || lower == "+infinity") {
        return infinity;
    }
    if (lower == "-inf" || lower == "-infinity") {
        return -infinity;
    }
    bool isNumber = false;
    const double value = lower.toDouble(&isNumber);
    return isNumber ? std::optional(value) : std::nullopt;
}

/// "2001-01-01T00:00:01Z" as seconds since 2001.
std::optional<double> secondsOf(QByteArrayView text)
{
    constexpr QByteArrayView form = "dddd-dd-ddTdd:dd:ddZ";
    const bool hasForm = std::ranges::equal(form, text, [](char wanted, char found) {
        return wanted == 'd' ? found >= '0' && found <= '9' : wanted == found;
    });
    if (!hasForm) {
        return std::nullopt;
    }
    const auto number = [text](qsizetype at, qsizetype length) {
        return text.sliced(at, length).toByteArray().toInt();
    };
    const QDate day(number(0, 4), number(5, 2), number(8, 2));
    const QTime time(number(11, 2), number(14, 2), number(17, 2));
    if (!day.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    constexpr qint64 secondsOfDay = 86400;
    const qint64 days = QDate(2001, 1, 1).daysTo(day);
    const qint64 seconds = days * secondsOfDay + time.msecsSinceStartOfDay() / 1000;
    return static_cast<double>(seconds);
}

std::optional<Reference> addValue(PropertyListWriter &writer, QByteArrayView name, QByteArray text)
{
    if (name == "string" || name == "key") {
        std::optional<QString> string = stringFromUtf8(text);
        return string ? std::optional(writer.addString(*std::move(string))) : std::nullopt;
    }
    if (name == "data") {
        text.removeIf(isSpace);
        auto decoded = QByteArray::fromBase64Encoding(std::move(text),
                                                      QByteArray::AbortOnBase64DecodingErrors);
        return decoded ? std::optional(writer.addData(std::move(*decoded))) : std::nullopt;
    }
    const QByteArrayView trimmed = QByteArrayView(text).trimmed();
    if (name == "integer") {
        return addInteger(writer, trimmed);
    }
    if (name == "real") {
        const std::optional<double> value = realOf(trimmed);
        return value ? std::optional(writer.addReal(*value)) : std::nullopt;
    }
    if (name == "date") {
        const std::optional<double> value = secondsOf(trimmed);
        return value ? std::optional(writer.addDate(*value)) : std::nullopt;
    }
    const bool isBoolean = (name == "true" || name == "false") && trimmed.isEmpty();
    return isBoolean ? std::optional(writer.addBoolean(name == "true")) : std::nullopt;
}

} // namespace

std::optional<QByteArray> XmlPropertyListReader::binaryFromXml(const QByteArray &xml)
{
    XmlPropertyListReader reader(xml);
    return reader.readDocument() ? std::optional(reader.m_writer.data(*reader.m_root))
                                 : std::nullopt;
}

bool XmlPropertyListReader::readDocument()
{
    if (startsWith("\xEF\xBB\xBF")) {
        m_position += 3;
    }
    if (!skipMisc()) {
        return false;
    }
    if (startsWith("<!DOCTYPE") && !(skipDocumentType() && skipMisc())) {
        return false;
    }
    if (!readPlist() || !m_root) {
        return false;
    }
    return skipMisc() && m_position == m_xml.size();
}

bool XmlPropertyListReader::readPlist()
{
    const std::optional<Tag> plist = readTag();
    if (!plist || plist->isEnd || plist->isEmpty || plist->name != "plist") {
        return false;
    }
    while (skipMisc()) {
        const std::optional<Tag> tag = readTag();
        if (!tag) {
            return false;
        }
        if (tag->isEnd && m_open.empty()) {
            return tag->name == "plist";
        }
        if (!(tag->isEnd ? readEnd(tag->name) : readStart(*tag))) {
            return false;
        }
    }
    return false;
}

bool XmlPropertyListReader::readEnd(QByteArrayView name)
{
    return name == (m_open.back().isDictionary ? "dict" : "array") && closeCollection();
}

bool XmlPropertyListReader::readStart(const Tag &tag)
{
    const bool isDictionary = tag.name == "dict";
    if (!isDictionary && tag.name != "array") {
        return readLeaf(tag);
    }
    const Reference number = isDictionary ? m_writer.addDictionary() : m_writer.addArray();
    if (!addMember(number, false)) {
        return false;
    }
    m_open.push_back({number, isDictionary, {}});
    return !tag.isEmpty || closeCollection();
}

bool XmlPropertyListReader::readLeaf(const Tag &tag)
{
    std::optional<QByteArray> text = readText(tag);
    if (!text) {
        return false;
    }
    const std::optional<Reference> number = addValue(m_writer, tag.name, *std::move(text));
    return number && addMember(*number, tag.name == "key");
}

// Keys stand in dictionaries, before each value, and nowhere else.
bool XmlPropertyListReader::addMember(Reference member, bool isKey)
{
    if (m_open.empty()) {
        if (isKey || m_root) {
            return false;
        }
        m_root = member;
        return true;
    }
    Collection &parent = m_open.back();
    const bool isKeyDue = parent.isDictionary && parent.members.size() % 2 == 0;
    if (isKey != isKeyDue) {
        return false;
    }
    parent.members.push_back(member);
    return true;
}

bool XmlPropertyListReader::closeCollection()
{
    Collection closed = std::move(m_open.back());
    m_open.pop_back();
    closed.members.shrink_to_fit();
    if (!closed.isDictionary) {
        m_writer.setElements(closed.number, std::move(closed.members));
        return true;
    }
    if (closed.members.size() % 2 != 0) {
        return false;
    }
    std::vector<Reference> keysAndValues;
    keysAndValues.reserve(closed.members.size());
    for (const size_t first : {size_t(0), size_t(1)}) {
        for (size_t i = first; i < closed.members.size(); i += 2) {
            keysAndValues.push_back(closed.members[i]);
        }
    }
    m_writer.setKeysAndValues(closed.number, std::move(keysAndValues));
    return true;
}

void XmlPropertyListReader::skipSpace()
{
    while (m_position < m_xml.size() && isSpace(m_xml[m_position])) {
        ++m_position;
    }
}

bool XmlPropertyListReader::skipPast(QByteArrayView end)
{
    const qsizetype at = m_xml.indexOf(end, m_position);
    m_position = at < 0 ? m_xml.size() : at + end.size();
    return at >= 0;
}

// Space, comments and processing instructions: what may stand between any two tags.
bool XmlPropertyListReader::skipMisc()
{
    for (;;) {
        skipSpace();
        if (startsWith("<!--")) {
            m_position += 4;
            if (!skipPast("-->")) {
                return false;
            }
        } else if (startsWith("<?")) {
            if (!skipPast("?>")) {
                return false;
            }
        } else {
            return true;
        }
    }
}

bool XmlPropertyListReader::skipDocumentType()
{
    const qsizetype from = m_position;
    return skipPast(">") && !m_xml.sliced(from, m_position - from).contains('[');
}

std::optional<XmlPropertyListReader::Tag> XmlPropertyListReader::readTag()
{
    if (!startsWith("<")) {
        return std::nullopt;
    }
    const qsizetype from = m_position + 1;
    if (!skipPast(">")) {
        return std::nullopt;
    }
    Tag tag;
    QByteArrayView inner = m_xml.sliced(from, m_position - 1 - from);
    if (inner.startsWith('/')) {
        tag.isEnd = true;
        inner = inner.sliced(1);
    } else if (inner.endsWith('/')) {
        tag.isEmpty = true;
        inner.chop(1);
    }
    const auto *nameEnd = std::ranges::find_if(inner, isSpace);
    tag.name = inner.first(nameEnd - inner.begin());
    return tag;
}

// What stands between a start tag and its end tag; elements inside are refused.
std::optional<QByteArray> XmlPropertyListReader::readText(const Tag &tag)
{
    QByteArray text;
    if (tag.isEmpty) {
        return text;
    }
    while (m_position < m_xml.size()) {
        const QByteArrayView rest = m_xml.sliced(m_position);
        const auto *stop = std::ranges::find_if(rest, [](char c) { return c == '<' || c == '&'; });
        text.append(rest.first(stop - rest.begin()));
        m_position += stop - rest.begin();
        if (startsWith("&")) {
            if (!readReference(text)) {
                return std::nullopt;
            }
        } else if (startsWith("<![CDATA[")) {
            const qsizetype from = m_position + 9;
            if (!skipPast("]]>") || m_position - 3 < from) {
                return std::nullopt;
            }
            text.append(m_xml.sliced(from, m_position - 3 - from));
        } else if (startsWith("<!--")) {
            m_position += 4;
            if (!skipPast("-->")) {
                return std::nullopt;
            }
        } else {
            const std::optional<Tag> end = readTag();
            const bool isOwnEnd = end && end->isEnd && end->name == tag.name;
            return isOwnEnd ? std::optional(text) : std::nullopt;
        }
    }
    return std::nullopt;
}

// The five predefined entities and characters by number.
bool XmlPropertyListReader::readReference(QByteArray &text)
{
    constexpr qsizetype longest = 12;
    const QByteArrayView ahead =
        m_xml.sliced(m_position, std::min(longest, m_xml.size() - m_position));
    const qsizetype end = ahead.indexOf(';');
    if (end < 0) {
        return false;
    }
    const QByteArrayView name = ahead.sliced(1, end - 1);
    m_position += end + 1;

    struct Entity
    {
        QByteArrayView name;
        char character = 0;
    };

    constexpr Entity entities[] = {
        {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
    for (const Entity &entity : entities) {
        if (name == entity.name) {
            text.append(entity.character);
            return true;
        }
    }
    if (!name.startsWith('#')) {
        return false;
    }
    const bool isHex = name.startsWith("#x");
    bool isNumber = false;
    const uint code = name.sliced(isHex ? 2 : 1).toByteArray().toUInt(&isNumber, isHex ? 16 : 10);
    if (!isNumber || code > QChar::LastValidCodePoint || QChar::isSurrogate(code)) {
        return false;
    }
    text.append(QStringView(QChar::fromUcs4(code)).toUtf8());
    return true;
}

} // namespace quorvane
