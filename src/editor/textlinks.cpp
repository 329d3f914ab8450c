#include "editor/textlinks.h"

#include "editor/selectedtext.h"
#include "richtext/textproperties.h"

#include <QRegularExpression>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QUrl>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {

const auto opening = u"([{<\"'“‘«"_s;
const auto closing = u".,;:!?)]}>\"'”’»"_s;

bool isMail(const QString &text)
{
    static const QRegularExpression pattern(u"\\A[\\w.%+-]+@[A-Za-z0-9-]+(\\.[A-Za-z0-9-]+)+\\z"_s);
    return pattern.match(text).hasMatch();
}

bool isWeb(const QString &text)
{
    static const QRegularExpression pattern(
        u"\\A(https?://[^\\s/?#.]+|www\\.[^\\s/?#.]+\\.)[^\\s]*\\z"_s,
        QRegularExpression::CaseInsensitiveOption);
    return pattern.match(text).hasMatch() && QUrl(text).isValid();
}

/// A bracket that was opened in the address is one of its own.
bool isBehindAddress(QStringView text)
{
    const QChar last = text.back();
    const qsizetype bracket = u")]}"_s.indexOf(last);
    const bool isOwn = bracket >= 0 && text.count(last) <= text.count(u"([{"_s.at(bracket));
    return closing.contains(last) && !isOwn;
}

/// Calls for each stretch of one format in the selection, the last one first.
template <typename Change> void changeFormats(const QTextCursor &selection, Change change)
{
    struct Piece
    {
        int from;
        int to;
        QTextCharFormat format;
    };

    std::vector<Piece> pieces;
    const int from = selection.selectionStart();
    const int to = selection.selectionEnd();
    for (QTextBlock block = selection.document()->findBlock(from);
         block.isValid() && block.position() < to; block = block.next()) {
        for (auto it = block.begin(); !it.atEnd(); ++it) {
            const int start = std::max(it.fragment().position(), from);
            const int end = std::min(it.fragment().position() + it.fragment().length(), to);
            if (start < end) {
                pieces.push_back({start, end, it.fragment().charFormat()});
            }
        }
    }
    QTextCursor cursor(selection);
    for (Piece &piece : pieces) {
        if (change(piece.format)) {
            cursor.setPosition(piece.from);
            cursor.setPosition(piece.to, QTextCursor::KeepAnchor);
            cursor.setCharFormat(piece.format);
        }
    }
}

} // namespace

std::optional<TextLink> linkAround(const QTextDocument &document, int position)
{
    const QTextBlock block = document.findBlock(position);
    std::optional<TextLink> link;
    for (auto it = block.begin(); !it.atEnd(); ++it) {
        const QTextFragment fragment = it.fragment();
        const QString address = fragment.charFormat().anchorHref();
        if (link && !address.isEmpty() && address == link->address
            && fragment.position() == link->to) {
            link->to += fragment.length();
            continue;
        }
        if (link && position < link->to) {
            return link;
        }
        if (fragment.position() > position || (link && link->to == position && address.isEmpty())) {
            break;
        }
        link.reset();
        if (!address.isEmpty()) {
            link = {fragment.position(), fragment.position() + fragment.length(), address};
        }
    }
    return link && position <= link->to ? link : std::nullopt;
}

void addLink(QTextCharFormat &format, const QString &address)
{
    format.setAnchor(true);
    format.setAnchorHref(address);
    format.setForeground(QColor(linkColour));
    format.setUnderlineStyle(QTextCharFormat::SingleUnderline);
    format.setProperty(LinkLook, true);
}

void makeLink(QTextCursor &selection, const QString &address)
{
    changeFormats(selection, [&address](QTextCharFormat &format) {
        addLink(format, address);
        return true;
    });
}

void removeLinks(QTextCursor &selection)
{
    changeFormats(selection, [](QTextCharFormat &format) {
        const bool isLink = format.isAnchor();
        dropLink(format);
        return isLink;
    });
}

QString completedAddress(const QString &typed)
{
    static const QRegularExpression scheme(u"\\A[A-Za-z][A-Za-z0-9+-]*:(?![0-9])"_s);
    const QString text = typed.trimmed();
    if (text.isEmpty() || text.startsWith(u'#') || scheme.match(text).hasMatch()) {
        return text;
    }
    if (text.startsWith(u'/')) {
        return QUrl::fromLocalFile(text).toString(QUrl::FullyEncoded);
    }
    return isMail(text) ? u"mailto:"_s + text : u"https://"_s + text;
}

std::optional<QString> faultOfAddress(const QString &typed)
{
    const QString text = typed.trimmed();
    const bool isPath = text.startsWith(u'/');
    if (!isPath && std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSpace(); })) {
        return u"An address has no blanks in it. In the name of a file, %20 stands for one."_s;
    }
    const QString address = completedAddress(text);
    const QUrl url(address, QUrl::StrictMode);
    const bool isWeb = url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
    const bool isWhole = !url.isEmpty() && url.isValid() && (!isWeb || !url.host().isEmpty());
    return text.isEmpty() || isWhole
        ? std::nullopt
        : std::optional(u"“%1” is no address that can be opened."_s.arg(address));
}

std::optional<PlainAddress> addressIn(const QString &word)
{
    QStringView text(word);
    qsizetype from = 0;
    while (!text.isEmpty() && opening.contains(text.front())) {
        text = text.sliced(1);
        ++from;
    }
    while (!text.isEmpty() && isBehindAddress(text)) {
        text.chop(1);
    }
    const QString found = text.toString();
    return isWeb(found) || isMail(found)
        ? std::optional(PlainAddress {from, found.size(), completedAddress(found)})
        : std::nullopt;
}

} // namespace quorvane
