#include "platform_qt/desktopbookmarks.h"

#include "platform_qt/xmltags.h"

#include <QFile>
#include <QUrl>
#include <QXmlStreamReader>

#include <algorithm>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr auto noSpace = ""_L1;
constexpr auto bookmarkSpace = "http://www.freedesktop.org/standards/desktop-bookmarks"_L1;
constexpr auto mimeSpace = "http://www.freedesktop.org/standards/shared-mime-info"_L1;
constexpr auto metadataOwner = "http://freedesktop.org"_L1;

const QByteArray emptyList = R"(<?xml version="1.0" encoding="UTF-8"?>
<xbel version="1.0"
      xmlns:bookmark="http://www.freedesktop.org/standards/desktop-bookmarks"
      xmlns:mime="http://www.freedesktop.org/standards/shared-mime-info"
>
</xbel>
)"_ba;

QByteArray escaped(const QString &text)
{
    return text.toHtmlEscaped().replace(u'\'', "&apos;"_L1).toUtf8();
}

// Written as other programs write it, so that one file has one entry.
QString addressOf(const QString &path)
{
    return u"file://"_s
        + QString::fromLatin1(QFile::encodeName(path).toPercentEncoding("!$&'()*+,/:=@"_ba));
}

bool isUtf8(const QString &encoding)
{
    return encoding.isEmpty() || encoding.compare("UTF-8"_L1, Qt::CaseInsensitive) == 0;
}

} // namespace

DesktopBookmarks::DesktopBookmarks(QByteArray bytes)
    : m_bytes(std::move(bytes))
{ }

std::optional<DesktopBookmarks> DesktopBookmarks::read(const QByteArray &bytes)
{
    DesktopBookmarks list(bytes.isEmpty() ? emptyList : bytes);
    if (list.m_bytes.size() > largestFile || !list.parse()) {
        return std::nullopt;
    }
    return list;
}

// The reader tells what the elements mean, the tags where they stand; both see them in one order.
bool DesktopBookmarks::parse()
{
    QXmlStreamReader reader(m_bytes);
    XmlTags tags(m_bytes);
    qsizetype open = -1;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::StartDocument
            && !isUtf8(reader.documentEncoding().toString())) {
            return false;
        }
        if (token == QXmlStreamReader::StartElement) {
            const std::optional<XmlTag> tag = tags.next();
            if (!tag || tag->kind == XmlTag::Kind::End) {
                return false;
            }
            if (m_elements.empty()) {
                const auto declared = reader.namespaceDeclarations();
                m_declaresPrefixes = declared.contains({u"bookmark"_s, QString(bookmarkSpace)})
                    && declared.contains({u"mime"_s, QString(mimeSpace)});
            }
            m_elements.push_back({reader.namespaceUri().toString(), reader.name().toString(),
                                  reader.attributes(), open, tag->begin, tag->end, tag->end,
                                  tag->end});
            open = std::ssize(m_elements) - 1;
        } else if (token == QXmlStreamReader::EndElement) {
            Element &element = m_elements[static_cast<std::size_t>(open)];
            if (m_bytes.at(element.inner - 2) != '/') {
                const std::optional<XmlTag> tag = tags.next();
                if (!tag || tag->kind != XmlTag::Kind::End) {
                    return false;
                }
                element.innerEnd = tag->begin;
                element.end = tag->end;
            }
            open = element.parent;
        }
    }
    return !reader.hasError() && m_elements.front().name == "xbel"_L1;
}

bool DesktopBookmarks::isBookmark(qsizetype index) const
{
    const Element &element = m_elements[static_cast<std::size_t>(index)];
    return element.parent >= 0 && element.space.isEmpty() && element.name == "bookmark"_L1;
}

QString DesktopBookmarks::pathOf(qsizetype bookmark) const
{
    const Element &element = m_elements[static_cast<std::size_t>(bookmark)];
    return QUrl::fromEncoded(element.attributes.value("href"_L1).toUtf8()).toLocalFile();
}

std::vector<qsizetype> DesktopBookmarks::applicationsOf(qsizetype bookmark) const
{
    std::vector<qsizetype> found;
    const qsizetype end = m_elements[static_cast<std::size_t>(bookmark)].end;
    for (qsizetype i = bookmark + 1; i < std::ssize(m_elements); ++i) {
        const Element &element = m_elements[static_cast<std::size_t>(i)];
        if (element.begin >= end) {
            break;
        }
        if (element.space == bookmarkSpace && element.name == "application"_L1) {
            found.push_back(i);
        }
    }
    return found;
}

// Older programs tell the application's time in seconds since 1970, or only that of the entry.
QDateTime DesktopBookmarks::timeOf(qsizetype bookmark, qsizetype application) const
{
    const auto &own = m_elements[static_cast<std::size_t>(application)].attributes;
    if (own.hasAttribute("modified"_L1)) {
        return QDateTime::fromString(own.value("modified"_L1).toString(), Qt::ISODateWithMs);
    }
    if (own.hasAttribute("timestamp"_L1)) {
        return QDateTime::fromSecsSinceEpoch(own.value("timestamp"_L1).toLongLong(), Qt::UTC);
    }
    const auto &entry = m_elements[static_cast<std::size_t>(bookmark)].attributes;
    return QDateTime::fromString(entry.value("modified"_L1).toString(), Qt::ISODateWithMs);
}

std::optional<qsizetype> DesktopBookmarks::bookmarkOf(const QString &path) const
{
    for (qsizetype i = 0; i < std::ssize(m_elements); ++i) {
        if (isBookmark(i) && pathOf(i) == path) {
            return i;
        }
    }
    return std::nullopt;
}

std::optional<qsizetype> DesktopBookmarks::childOf(qsizetype parent, QLatin1StringView space,
                                                   QLatin1StringView name) const
{
    const qsizetype end = m_elements[static_cast<std::size_t>(parent)].end;
    for (qsizetype i = parent + 1; i < std::ssize(m_elements); ++i) {
        const Element &element = m_elements[static_cast<std::size_t>(i)];
        if (element.begin >= end) {
            break;
        }
        const bool isOfOther =
            name == "metadata"_L1 && element.attributes.value("owner"_L1) != metadataOwner;
        if (element.parent == parent && element.space == space && element.name == name
            && !isOfOther) {
            return i;
        }
    }
    return std::nullopt;
}

QList<DesktopBookmarks::Use> DesktopBookmarks::usesOf(const QString &application) const
{
    QList<Use> uses;
    for (qsizetype i = 0; i < std::ssize(m_elements); ++i) {
        if (!isBookmark(i) || !pathOf(i).startsWith(u'/')) {
            continue;
        }
        for (const qsizetype each : applicationsOf(i)) {
            if (attributeOf(each, "name"_L1) == application) {
                uses.append({pathOf(i), timeOf(i, each)});
            }
        }
    }
    std::stable_sort(uses.begin(), uses.end(),
                     [](const Use &a, const Use &b) { return a.time > b.time; });
    return uses;
}

QStringList DesktopBookmarks::pathsOf(const QString &application) const
{
    QStringList paths;
    for (const Use &use : usesOf(application)) {
        paths.append(use.path);
    }
    paths.removeDuplicates();
    return paths;
}

QByteArray DesktopBookmarks::withUse(const QString &path, const Application &application,
                                     const QDateTime &now) const
{
    QDateTime time = now.toUTC();
    if (const QList<Use> uses = usesOf(application.name);
        !uses.isEmpty() && uses.first().time >= time) {
        time = uses.first().time.addMSecs(1); // also where the clock was set back meanwhile
    }
    const QByteArray stamp = time.toUTC().toString(Qt::ISODateWithMs).toLatin1();
    const std::optional<qsizetype> bookmark = bookmarkOf(path);
    return spliced(bookmark ? renewal(*bookmark, application, stamp)
                            : Splices {newBookmark(path, application, stamp)});
}

QByteArray DesktopBookmarks::withoutUses(const QString &application,
                                         const std::function<bool(const QString &path)> &goes) const
{
    Splices splices;
    for (qsizetype i = 0; i < std::ssize(m_elements); ++i) {
        if (!isBookmark(i) || !goes(pathOf(i))) {
            continue;
        }
        const std::vector<qsizetype> all = applicationsOf(i);
        const auto isOurs = [&](qsizetype each) {
            return attributeOf(each, "name"_L1) == application;
        };
        const auto ours = std::count_if(all.begin(), all.end(), isOurs);
        if (ours > 0 && ours == std::ssize(all)) {
            splices.push_back(removal(i));
            continue;
        }
        for (const qsizetype each : all) {
            if (isOurs(each)) {
                splices.push_back(removal(each));
            }
        }
    }
    return spliced(std::move(splices));
}

QString DesktopBookmarks::attributeOf(qsizetype element, QLatin1StringView name) const
{
    return m_elements[static_cast<std::size_t>(element)].attributes.value(name).toString();
}

// What is put into a file that names the two grammars otherwise brings its own names along.
QByteArray DesktopBookmarks::declarations() const
{
    return m_declaresPrefixes ? QByteArray()
                              : " xmlns:bookmark=\""_ba + bookmarkSpace.data()
            + "\" xmlns:mime=\""_ba + mimeSpace.data() + '"';
}

QByteArray DesktopBookmarks::applicationText(const Application &application,
                                             const QByteArray &stamp, qint64 count) const
{
    return "<bookmark:application"_ba + declarations() + " name=\""_ba + escaped(application.name)
        + "\" exec=\""_ba + escaped(u'\'' + application.command + u'\'') + "\" modified=\""_ba
        + stamp + "\" count=\""_ba + QByteArray::number(count) + "\"/>"_ba;
}

QByteArray DesktopBookmarks::infoText(Depth depth, const Application &application,
                                      const QByteArray &stamp) const
{
    QByteArray text = applicationText(application, stamp, 1);
    if (depth >= Depth::Applications) {
        text = "<bookmark:applications"_ba + declarations() + ">\n          "_ba + text
            + "\n        </bookmark:applications>"_ba;
    }
    if (depth >= Depth::Metadata) {
        text = "<metadata owner=\"http://freedesktop.org\">\n        <mime:mime-type"_ba
            + declarations() + " type=\""_ba + escaped(application.mimeType) + "\"/>\n        "_ba
            + text + "\n      </metadata>"_ba;
    }
    if (depth >= Depth::Info) {
        text = "<info>\n      "_ba + text + "\n    </info>"_ba;
    }
    return text;
}

DesktopBookmarks::Splice DesktopBookmarks::newBookmark(const QString &path,
                                                       const Application &application,
                                                       const QByteArray &stamp) const
{
    const QByteArray text = "  <bookmark href=\""_ba + escaped(addressOf(path)) + "\" added=\""_ba
        + stamp + "\" modified=\""_ba + stamp + "\" visited=\""_ba + stamp + "\">\n    "_ba
        + infoText(Depth::Info, application, stamp) + "\n  </bookmark>\n"_ba;
    return insertion(0, text);
}

DesktopBookmarks::Splices DesktopBookmarks::renewal(qsizetype bookmark,
                                                    const Application &application,
                                                    const QByteArray &stamp) const
{
    Splices splices;
    for (const QByteArray &name : {"modified"_ba, "visited"_ba}) {
        splices.push_back(attribute(bookmark, name, stamp));
    }
    for (const qsizetype each : applicationsOf(bookmark)) {
        if (attributeOf(each, "name"_L1) == application.name) {
            const Element &old = m_elements[static_cast<std::size_t>(each)];
            const qint64 count = attributeOf(each, "count"_L1).toLongLong();
            splices.push_back({old.begin, old.end, applicationText(application, stamp, count + 1)});
            return splices;
        }
    }
    // The innermost element that is there takes what is missing.
    qsizetype holder = bookmark;
    Depth depth = Depth::Info;
    for (const auto &[space, name, within] : {
             std::tuple {noSpace, "info"_L1, Depth::Metadata},
             std::tuple {noSpace, "metadata"_L1, Depth::Applications},
             std::tuple {bookmarkSpace, "applications"_L1, Depth::Application},
         }) {
        const std::optional<qsizetype> child = childOf(holder, space, name);
        if (!child) {
            break;
        }
        holder = *child;
        depth = within;
    }
    splices.push_back(insertion(holder, infoText(depth, application, stamp)));
    return splices;
}

DesktopBookmarks::Splice DesktopBookmarks::insertion(qsizetype index, const QByteArray &text) const
{
    const Element &element = m_elements[static_cast<std::size_t>(index)];
    if (element.inner < element.end) {
        return {element.innerEnd, element.innerEnd, text};
    }
    // An empty tag becomes two.
    qsizetype nameEnd = element.begin + 1;
    while (!"\t\r\n />"_ba.contains(m_bytes.at(nameEnd))) {
        ++nameEnd;
    }
    const QByteArray name = m_bytes.mid(element.begin + 1, nameEnd - element.begin - 1);
    return {element.end - 2, element.end, '>' + text + "</"_ba + name + '>'};
}

DesktopBookmarks::Splice DesktopBookmarks::attribute(qsizetype index, const QByteArray &name,
                                                     const QByteArray &value) const
{
    const Element &element = m_elements[static_cast<std::size_t>(index)];
    const XmlTag tag {XmlTag::Kind::Start, element.begin, element.inner};
    if (const auto range = XmlTags::attributeValue(m_bytes, tag, name)) {
        return {range->first, range->second, value};
    }
    const qsizetype place = element.begin + qsizetype(sizeof "<bookmark") - 1;
    return {place, place, ' ' + name + "=\""_ba + value + '"'};
}

// With the line that it stands on, where nothing else does.
DesktopBookmarks::Splice DesktopBookmarks::removal(qsizetype index) const
{
    const Element &element = m_elements[static_cast<std::size_t>(index)];
    qsizetype begin = element.begin;
    while (m_bytes.at(begin - 1) == ' ' || m_bytes.at(begin - 1) == '\t') {
        --begin;
    }
    const bool hasLine = m_bytes.at(begin - 1) == '\n' && m_bytes.at(element.end) == '\n';
    return hasLine ? Splice {begin, element.end + 1, {}} : Splice {element.begin, element.end, {}};
}

QByteArray DesktopBookmarks::spliced(Splices splices) const
{
    std::stable_sort(splices.begin(), splices.end(),
                     [](const Splice &a, const Splice &b) { return a.begin > b.begin; });
    QByteArray bytes = m_bytes;
    for (const Splice &splice : splices) {
        bytes.replace(splice.begin, splice.end - splice.begin, splice.text);
    }
    return bytes;
}

} // namespace quorvane
