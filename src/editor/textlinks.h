#pragma once

#include <QString>

#include <optional>

class QTextCharFormat;
class QTextCursor;
class QTextDocument;

namespace quorvane {

/// A stretch of a paragraph that leads to one address.
struct TextLink
{
    int from;
    int to;
    QString address;
};

/// The link that the character at the position belongs to, or else the one in front of it.
std::optional<TextLink> linkAround(const QTextDocument &document, int position);

/// Makes what is selected a link, with the look of links.
void makeLink(QTextCursor &selection, const QString &address);
/// Takes links off what is selected, with the look that they gave it.
void removeLinks(QTextCursor &selection);
void addLink(QTextCharFormat &format, const QString &address);

/// An address as somebody types it, with its scheme: https where none is told, mailto for mail.
QString completedAddress(const QString &typed);

/// What is wrong with an address as it was typed; nothing where it can be one.
std::optional<QString> faultOfAddress(const QString &typed);

/// Part of a text that can be nothing but an address.
struct PlainAddress
{
    qsizetype from;
    qsizetype length;
    QString address; ///< Complete.
};

/// \a word has no blanks in it. What stands around an address in a sentence is no part of it.
std::optional<PlainAddress> addressIn(const QString &word);

} // namespace quorvane
