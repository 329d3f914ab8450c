#include "platform_qt/xmltags.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

bool isSpace(char byte)
{
    return byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
}

} // namespace

std::optional<XmlTag> XmlTags::next()
{
    while (true) {
        m_position = m_bytes.indexOf('<', m_position);
        if (m_position < 0) {
            m_position = m_bytes.size();
            return std::nullopt;
        }
        if (skip("<!--"_ba, "-->"_ba) || skip("<![CDATA["_ba, "]]>"_ba) || skip("<?"_ba, "?>"_ba)) {
            continue;
        }
        const qsizetype begin = m_position;
        const qsizetype end = endOfTag(begin);
        if (end < 0) {
            return std::nullopt;
        }
        m_position = end;
        if (m_bytes.at(begin + 1) == '!') {
            if (m_bytes.mid(begin, end - begin).contains('[')) {
                return std::nullopt;
            }
            continue;
        }
        const auto kind = m_bytes.at(begin + 1) == '/' ? XmlTag::Kind::End
            : m_bytes.at(end - 2) == '/'               ? XmlTag::Kind::Empty
                                                       : XmlTag::Kind::Start;
        return XmlTag {kind, begin, end};
    }
}

bool XmlTags::skip(const QByteArray &beginning, const QByteArray &ending)
{
    if (QByteArrayView(m_bytes).sliced(m_position).startsWith(beginning)) {
        const qsizetype end = m_bytes.indexOf(ending, m_position + beginning.size());
        m_position = end < 0 ? m_bytes.size() : end + ending.size();
        return true;
    }
    return false;
}

// A quoted value may hold a ">".
qsizetype XmlTags::endOfTag(qsizetype from) const
{
    char quote = '\0';
    for (qsizetype i = from; i < m_bytes.size(); ++i) {
        const char byte = m_bytes.at(i);
        if (quote != '\0') {
            quote = byte == quote ? '\0' : quote;
        } else if (byte == '"' || byte == '\'') {
            quote = byte;
        } else if (byte == '>') {
            return i + 1;
        }
    }
    return -1;
}

std::optional<std::pair<qsizetype, qsizetype>>
XmlTags::attributeValue(const QByteArray &bytes, const XmlTag &tag, const QByteArray &name)
{
    qsizetype at = tag.begin;
    while (at < tag.end) {
        const qsizetype equals = bytes.indexOf('=', at);
        if (equals < 0 || equals >= tag.end) {
            break;
        }
        qsizetype nameEnd = equals;
        while (isSpace(bytes.at(nameEnd - 1))) {
            --nameEnd;
        }
        qsizetype nameBegin = nameEnd;
        while (!isSpace(bytes.at(nameBegin - 1))) {
            --nameBegin;
        }
        qsizetype quote = equals + 1;
        while (isSpace(bytes.at(quote))) {
            ++quote;
        }
        const qsizetype close = bytes.indexOf(bytes.at(quote), quote + 1);
        if (bytes.mid(nameBegin, nameEnd - nameBegin) == name) {
            return std::pair {quote + 1, close};
        }
        at = close + 1;
    }
    return std::nullopt;
}

} // namespace quorvane
