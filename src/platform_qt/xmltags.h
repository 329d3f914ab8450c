#pragma once

#include <QByteArray>

#include <optional>
#include <utility>

namespace quorvane {

/// Where one tag stands in the bytes of a file.
struct XmlTag
{
    enum class Kind { Start, End, Empty };

    Kind kind;
    qsizetype begin;
    qsizetype end; ///< Behind its ">".
};

/// Finds the tags of a well-formed XML file in UTF-8, comments and the like left out. Whether the
/// file is well-formed is for a real reader to say.
class XmlTags final
{
public:
    /// \a bytes outlive this.
    explicit XmlTags(const QByteArray &bytes)
        : m_bytes(bytes)
    { }

    /// The next tag; nothing behind the last, and for a file that declares a grammar of its own.
    std::optional<XmlTag> next();

    /// From where to where the value of an attribute stands, quotes left out.
    static std::optional<std::pair<qsizetype, qsizetype>>
    attributeValue(const QByteArray &bytes, const XmlTag &tag, const QByteArray &name);

private:
    bool skip(const QByteArray &beginning, const QByteArray &ending);
    qsizetype endOfTag(qsizetype from) const;

    const QByteArray &m_bytes;
    qsizetype m_position = 0;
};

} // namespace quorvane
