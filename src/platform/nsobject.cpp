#include "platform/nsobject.h"

#include <cmath>
#include <limits>
#include <type_traits>
#include <utility>

namespace quorvane {

namespace {

template <typename Integer> Integer fromDouble(double value)
{
    using Limits = std::numeric_limits<Integer>;
    if (std::isnan(value)) {
        return 0;
    }
    // The exponent is the first power of two above the range: exact as a double, max() is not.
    if (value >= std::ldexp(1.0, Limits::digits)) {
        return Limits::max();
    }
    if (value <= static_cast<double>(Limits::min())) {
        return Limits::min();
    }
    return static_cast<Integer>(value);
}

template <typename Integer, typename Value> Integer nearest(Value value)
{
    if constexpr (std::is_same_v<Value, bool>) {
        return value ? 1 : 0;
    } else if constexpr (std::is_floating_point_v<Value>) {
        return fromDouble<Integer>(value);
    } else {
        using Limits = std::numeric_limits<Integer>;
        if (std::cmp_less(value, Limits::min())) {
            return Limits::min();
        }
        return std::cmp_greater(value, Limits::max()) ? Limits::max() : static_cast<Integer>(value);
    }
}

} // namespace

NSNumber NSNumber::numberWithUnsignedLong(quint64 value)
{
    // An archive does not tell the two kinds apart, so equal numbers have one form here too.
    const auto asSigned = static_cast<qint64>(value);
    return asSigned < 0 ? NSNumber(value) : NSNumber(asSigned);
}

bool NSNumber::boolValue() const
{
    return std::visit([](auto value) { return value != decltype(value)(0); }, m_value);
}

qint32 NSNumber::intValue() const
{
    return std::visit([](auto value) { return nearest<qint32>(value); }, m_value);
}

qint64 NSNumber::longValue() const
{
    return std::visit([](auto value) { return nearest<qint64>(value); }, m_value);
}

quint64 NSNumber::unsignedLongValue() const
{
    return std::visit([](auto value) { return nearest<quint64>(value); }, m_value);
}

double NSNumber::doubleValue() const
{
    return std::visit([](auto value) { return static_cast<double>(value); }, m_value);
}

NSObject::NSObject(NSNumber value)
    : m_value(value)
{ }

NSObject::NSObject(QString value)
    : m_value(std::move(value))
{ }

NSObject::NSObject(QByteArray value)
    : m_value(std::move(value))
{ }

NSObject::NSObject(NSDate value)
    : m_value(value)
{ }

NSObject::NSObject(NSDictionary value)
    : m_value(std::make_shared<const NSDictionary>(std::move(value)))
{ }

NSObject NSObject::unknown()
{
    NSObject object;
    object.m_value = Unknown();
    return object;
}

bool NSObject::isNil() const
{
    return std::holds_alternative<std::monostate>(m_value);
}

std::optional<NSNumber> NSObject::number() const
{
    const auto *value = std::get_if<NSNumber>(&m_value);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<QString> NSObject::string() const
{
    const auto *value = std::get_if<QString>(&m_value);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<QByteArray> NSObject::data() const
{
    const auto *value = std::get_if<QByteArray>(&m_value);
    return value ? std::optional(*value) : std::nullopt;
}

std::optional<NSDate> NSObject::date() const
{
    const auto *value = std::get_if<NSDate>(&m_value);
    return value ? std::optional(*value) : std::nullopt;
}

const NSDictionary *NSObject::dictionary() const
{
    const auto *value = std::get_if<std::shared_ptr<const NSDictionary>>(&m_value);
    return value ? value->get() : nullptr;
}

bool NSObject::operator==(const NSObject &other) const
{
    const NSDictionary *mine = dictionary();
    const NSDictionary *theirs = other.dictionary();
    if (mine != nullptr && theirs != nullptr) {
        return mine == theirs || *mine == *theirs;
    }
    return m_value == other.m_value;
}

} // namespace quorvane
