#pragma once

#include <QDateTime>
#include <QFont>
#include <QString>

#include <functional>
#include <optional>

namespace quorvane {

/// String operations for general use. All calls are to come from one thread: the serial numbers
/// share a counter.
class QVStringUtils final
{
public:
    using CharacterSet = std::function<bool(QChar)>;

    QVStringUtils() = delete;

    static QString createUUIDString(); ///< Upper case, without braces.
    static QString uniqueUUIDString();
    /// The text without every UTF-16 unit that the allowed ones do not hold.
    static QString trimString(const QString &text, const QString &acceptingOnlyChars);
    /// The text where it fits; else its longest beginning, of one unit at least, and "..".
    static QString trimStringToFit(const QString &text, qint32 pixelLenght,
                                   const QFont &withAttributes);
    /// Year to second as digits: unique between seconds, no finer.
    static QString uniqueTimeString(const QDateTime &now = QDateTime::currentDateTime());
    static QString uniqueTimeRandString(const QDateTime &now = QDateTime::currentDateTime());
    /// How many calls in a row have had this time string, less one.
    static QString getNewSerialForTimeString(const QString &timeString);
    static QString uniqueTimeSerialString(const QDateTime &now = QDateTime::currentDateTime());
    static QString stringByRemovingCharacters(const QString &text, const CharacterSet &inSet);
    /// Nothing where all of the text is white space, or there is no text.
    static std::optional<QString> removeInitialSpaces(const QString &text);
    /// Blanks alone go: tabs and line ends are content.
    static QString trimLateralSpace(const QString &text);
    static QString removeLateralSpace(const QString &text);
    static bool spaceTrimmedNotEmpy(const std::optional<QString> &text);
    static QString trimLateralQuote(const QString &text);
    static QString addLeading0(const QString &text, qint64 totalLen);
};

} // namespace quorvane
