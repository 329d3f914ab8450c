#include "util/qvstringutils.h"

#include "crypto/randominrange.h"

#include <QFontMetricsF>
#include <QUuid>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr auto cutMark = ".."_L1;
constexpr qint64 greatestTail = 32'000'000'000'000;
constexpr int leastTailDigits = 5;

QString trimmedOf(const QString &text, QChar unwanted)
{
    const auto isWanted = [unwanted](QChar character) {
        return character != unwanted;
    };
    const auto first = std::find_if(text.begin(), text.end(), isWanted);
    const auto last = std::find_if(text.rbegin(), text.rend(), isWanted);
    return first == text.end() ? QString() : QString(first, last.base() - first);
}

QString digits(qint64 number, int atLeast)
{
    return u"%1"_s.arg(number, atLeast, 10, QChar(u'0'));
}

// The Unicode blanks and the tab; line ends are no blanks.
bool isWhitespace(QChar character)
{
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

struct Serial
{
    QString lastTimeString = u""_s;
    qint64 counter = 0;
};

Serial &serial()
{
    static Serial state;
    return state;
}

} // namespace

QString QVStringUtils::createUUIDString()
{
    return QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper();
}

QString QVStringUtils::uniqueUUIDString()
{
    return createUUIDString();
}

QString QVStringUtils::trimString(const QString &text, const QString &acceptingOnlyChars)
{
    return stringByRemovingCharacters(
        text, [&acceptingOnlyChars](QChar unit) { return !acceptingOnlyChars.contains(unit); });
}

QString QVStringUtils::trimStringToFit(const QString &text, qint32 pixelLenght,
                                       const QFont &withAttributes)
{
    const QFontMetricsF metrics(withAttributes);
    if (pixelLenght >= metrics.horizontalAdvance(text)) {
        return text;
    }
    QString kept = text;
    while (metrics.horizontalAdvance(kept + cutMark) > pixelLenght && kept.size() >= 2) {
        kept.chop(1);
    }
    return kept + cutMark;
}

QString QVStringUtils::uniqueTimeString(const QDateTime &now)
{
    const QDate date = now.date();
    const QTime time = now.time();
    return QString::number(date.year()) + digits(date.month(), 2) + digits(date.day(), 2)
        + digits(time.hour(), 2) + digits(time.minute(), 2) + digits(time.second(), 2);
}

QString QVStringUtils::uniqueTimeRandString(const QDateTime &now)
{
    return uniqueTimeString(now) + digits(randomInRange(1, greatestTail), leastTailDigits);
}

QString QVStringUtils::getNewSerialForTimeString(const QString &timeString)
{
    Serial &state = serial();
    state.counter = timeString == state.lastTimeString ? state.counter + 1 : 0;
    state.lastTimeString = timeString;
    return QString::number(state.counter);
}

QString QVStringUtils::uniqueTimeSerialString(const QDateTime &now)
{
    const QString time = uniqueTimeString(now);
    return time + getNewSerialForTimeString(time);
}

QString QVStringUtils::stringByRemovingCharacters(const QString &text, const CharacterSet &inSet)
{
    QString kept = u""_s;
    kept.reserve(text.size());
    std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                 [&inSet](QChar unit) { return !inSet(unit); });
    return kept;
}

std::optional<QString> QVStringUtils::removeInitialSpaces(const QString &text)
{
    const auto first = std::find_if_not(text.begin(), text.end(), isWhitespace);
    return first == text.end() ? std::nullopt : std::optional(QString(first, text.end() - first));
}

QString QVStringUtils::trimLateralSpace(const QString &text)
{
    return trimmedOf(text, u' ');
}

QString QVStringUtils::removeLateralSpace(const QString &text)
{
    return trimLateralSpace(text);
}

bool QVStringUtils::spaceTrimmedNotEmpy(const std::optional<QString> &text)
{
    return text && !trimLateralSpace(*text).isEmpty();
}

QString QVStringUtils::trimLateralQuote(const QString &text)
{
    return trimmedOf(text, u'"');
}

QString QVStringUtils::addLeading0(const QString &text, qint64 totalLen)
{
    return totalLen > text.size() ? text.rightJustified(totalLen, u'0') : text;
}

} // namespace quorvane
