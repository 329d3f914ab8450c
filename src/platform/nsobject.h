#pragma once

#include "platform/nsvalues.h"

#include <QByteArray>
#include <QMap>
#include <QString>

#include <memory>
#include <optional>
#include <variant>

namespace quorvane {

/// A boxed number or boolean. Conversions between the kinds are those of a C cast, with values
/// out of range brought to the nearest one that fits.
class NSNumber final
{
public:
    static NSNumber numberWithBool(bool value) { return NSNumber(value); }

    static NSNumber numberWithLong(qint64 value) { return NSNumber(value); }

    static NSNumber numberWithUnsignedLong(quint64 value);

    static NSNumber numberWithDouble(double value) { return NSNumber(value); }

    bool isBool() const { return std::holds_alternative<bool>(m_value); }

    bool isDouble() const { return std::holds_alternative<double>(m_value); }

    bool boolValue() const;
    qint32 intValue() const;
    qint64 longValue() const;
    quint64 unsignedLongValue() const;
    double doubleValue() const;

    bool operator==(const NSNumber &) const = default;

private:
    using Value = std::variant<bool, qint64, quint64, double>;

    explicit NSNumber(Value value)
        : m_value(value)
    { }

    Value m_value;
};

class NSObject;
using NSDictionary = QMap<QString, NSObject>;

/// A value of the classes that a keyed archive of ours can hold. Nil is the default; an object of
/// a class that we do not know is kept as "unknown" and answers nothing to every question.
class NSObject final
{
public:
    NSObject() = default;
    NSObject(NSNumber value);
    NSObject(QString value);
    NSObject(QByteArray value);
    NSObject(NSDate value);
    NSObject(NSDictionary value);
    static NSObject unknown();

    bool isNil() const;
    std::optional<NSNumber> number() const;
    std::optional<QString> string() const;
    std::optional<QByteArray> data() const;
    std::optional<NSDate> date() const;
    const NSDictionary *dictionary() const; ///< Null for every other class.

    bool operator==(const NSObject &other) const;

private:
    struct Unknown
    {
        bool operator==(const Unknown &) const = default;
    };

    // The dictionary is shared by the copies of this immutable value.
    std::variant<std::monostate, Unknown, NSNumber, QString, QByteArray, NSDate,
                 std::shared_ptr<const NSDictionary>>
        m_value;
};

} // namespace quorvane
