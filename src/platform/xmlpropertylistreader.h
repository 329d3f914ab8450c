#pragma once

#include "platform/propertylistwriter.h"

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <vector>

namespace quorvane {

/// Brings an XML property list to the binary form, in linear time and bounded stack.
///
/// A scanner of its own, because a general XML parser gives bytes from strangers too many ways
/// to cost time: entities, default attributes, attributes compared each with each. Here a
/// document type with declarations of its own is refused and attributes are passed over. Text is
/// UTF-8, whatever the XML declaration says, and line ends are kept as they stand: the format's
/// writers do not escape them.
class XmlPropertyListReader final
{
public:
    /// Nothing for bytes that are not one whole property list.
    static std::optional<QByteArray> binaryFromXml(const QByteArray &xml);

private:
    struct Tag
    {
        QByteArrayView name;
        bool isEnd = false;
        bool isEmpty = false; // <name/>
    };

    struct Collection
    {
        PropertyListWriter::Reference number;
        bool isDictionary;
        std::vector<PropertyListWriter::Reference> members; // of a dictionary: key, value, key, ...
    };

    explicit XmlPropertyListReader(QByteArrayView xml)
        : m_xml(xml)
    { }

    bool readDocument();
    bool readPlist();
    bool readEnd(QByteArrayView name);
    bool readStart(const Tag &tag);
    bool readLeaf(const Tag &tag);
    bool addMember(PropertyListWriter::Reference member, bool isKey);
    bool closeCollection();

    void skipSpace();
    bool skipPast(QByteArrayView end);
    bool skipMisc();
    bool skipDocumentType();
    std::optional<Tag> readTag();
    std::optional<QByteArray> readText(const Tag &tag);
    bool readReference(QByteArray &text);

    bool startsWith(QByteArrayView text) const { return m_xml.sliced(m_position).startsWith(text); }

    QByteArrayView m_xml;
    qsizetype m_position = 0;
    PropertyListWriter m_writer;
    std::vector<Collection> m_open;
    std::optional<PropertyListWriter::Reference> m_root;
};

} // namespace quorvane
