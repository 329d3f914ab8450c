#include "platform/nsuserdefaults.h"

#include <QByteArray>
#include <QString>

#include <cmath>
#include <limits>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

bool isNumber(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

qint64 saturated(double value)
{
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= limit) {
        return std::numeric_limits<qint64>::max();
    }
    return value < -limit ? std::numeric_limits<qint64>::min() : static_cast<qint64>(value);
}

bool isDigit(QChar character)
{
    return character >= u'0' && character <= u'9';
}

// The number that a text begins with, after blanks: "12 minutes" counts as 12.
QByteArray leadingNumber(const QString &text, bool fraction)
{
    const QString trimmed = text.trimmed();
    qsizetype end = 0;
    const auto skipDigits = [&] {
        const qsizetype begin = end;
        while (end < trimmed.size() && isDigit(trimmed[end])) {
            ++end;
        }
        return end > begin;
    };
    const auto skipSign = [&] {
        if (end < trimmed.size() && (trimmed[end] == u'-' || trimmed[end] == u'+')) {
            ++end;
        }
    };
    skipSign();
    bool digits = skipDigits();
    if (fraction && end < trimmed.size() && trimmed[end] == u'.') {
        ++end;
        digits = skipDigits() || digits;
    }
    if (!digits) {
        return QByteArray();
    }
    const qsizetype mantissaEnd = end;
    if (fraction && end < trimmed.size() && trimmed[end].toLower() == u'e') {
        ++end;
        skipSign();
        if (!skipDigits()) {
            end = mantissaEnd;
        }
    } else {
        end = mantissaEnd;
    }
    return trimmed.first(end).toLatin1();
}

qint64 integerFrom(const QString &text)
{
    const QByteArray number = leadingNumber(text, false);
    bool fits = false;
    const qint64 value = number.toLongLong(&fits);
    if (fits || number.isEmpty()) {
        return value;
    }
    return number.startsWith('-') ? std::numeric_limits<qint64>::min()
                                  : std::numeric_limits<qint64>::max();
}

// "YES", "true" and every number that is not zero, as the first character tells.
bool boolFrom(const QString &text)
{
    const QString trimmed = text.trimmed();
    qsizetype start = !trimmed.isEmpty() && (trimmed[0] == u'-' || trimmed[0] == u'+') ? 1 : 0;
    while (start < trimmed.size() && trimmed[start] == u'0') {
        ++start;
    }
    return start < trimmed.size() && u"YyTt123456789"_s.contains(trimmed[start]);
}

// A store may hand a value back as the text that it wrote: that is no other value.
bool isSame(const QVariant &one, const QVariant &other)
{
    if (one.isValid() != other.isValid()) {
        return false;
    }
    const auto isPlain = [](const QVariant &value) {
        return isNumber(value) || value.typeId() == QMetaType::QString;
    };
    if (isPlain(one) && isPlain(other) && one.typeId() != other.typeId()) {
        return one.toString() == other.toString();
    }
    return one == other;
}

} // namespace

void NSUserDefaults::registerDefaults(const QVariantMap &defaults)
{
    m_registered.insert(defaults);
}

QVariant NSUserDefaults::objectForKey(QLatin1StringView key) const
{
    const QVariant value = stored(key);
    return value.isValid() ? value : m_registered.value(key);
}

bool NSUserDefaults::boolForKey(QLatin1StringView key) const
{
    const QVariant value = objectForKey(key);
    return value.typeId() == QMetaType::QString ? boolFrom(value.toString())
                                                : isNumber(value) && value.toDouble() != 0.0;
}

qint64 NSUserDefaults::integerForKey(QLatin1StringView key) const
{
    const QVariant value = objectForKey(key);
    switch (value.typeId()) {
    case QMetaType::QString:
        return integerFrom(value.toString());
    case QMetaType::Float:
    case QMetaType::Double:
        return saturated(value.toDouble());
    case QMetaType::ULongLong:
        return value.toULongLong() > static_cast<quint64>(std::numeric_limits<qint64>::max())
            ? std::numeric_limits<qint64>::max()
            : value.toLongLong();
    default:
        return isNumber(value) ? value.toLongLong() : 0;
    }
}

double NSUserDefaults::doubleForKey(QLatin1StringView key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() == QMetaType::QString) {
        return leadingNumber(value.toString(), true).toDouble();
    }
    return isNumber(value) ? value.toDouble() : 0.0;
}

QString NSUserDefaults::stringForKey(QLatin1StringView key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() == QMetaType::Bool) {
        return value.toBool() ? u"1"_s : u"0"_s;
    }
    return isNumber(value) || value.typeId() == QMetaType::QString ? value.toString() : QString();
}

void NSUserDefaults::setObject(QLatin1StringView key, const QVariant &value)
{
    if (isSame(stored(key), value)) {
        return;
    }
    const QVariant before = objectForKey(key);
    store(key, value);
    if (!isSame(before, objectForKey(key))) {
        Q_EMIT changed(key);
    }
}

void NSUserDefaults::revertToInitialValues()
{
    const QStringList keys = m_registered.keys();
    for (const QString &key : keys) {
        const QByteArray name = key.toLatin1();
        setObject(QLatin1StringView(name), QVariant());
    }
}

} // namespace quorvane
