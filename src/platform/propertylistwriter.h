#pragma once

#include <QByteArray>
#include <QString>

#include <deque>
#include <utility>
#include <variant>
#include <vector>

namespace quorvane {

/// Writes a binary property list. Objects are added in the order in which they are to stand;
/// each add function returns the number by which collections refer to the object. Data and
/// strings are held by sharing: their bytes are copied once, into the result.
class PropertyListWriter final
{
public:
    using Reference = quint32;

    Reference addBoolean(bool value) { return add(value); }

    Reference addInteger(qint64 value) { return add(value); }

    /// What is above the signed range takes sixteen bytes, as the format asks.
    Reference addUnsignedInteger(quint64 value);

    Reference addReal(double value) { return add(value); }

    Reference addDate(double secondsSinceReferenceDate)
    {
        return add(Date {secondsSinceReferenceDate});
    }

    Reference addData(QByteArray value) { return add(std::move(value)); }

    /// Written as ASCII where that is enough, else as UTF-16.
    Reference addString(QString value) { return add(std::move(value)); }

    Reference addUid(quint32 value) { return add(Uid {value}); }

    /// Collections may be added empty and be filled later, so that they can stand before what
    /// they hold.
    Reference addArray(std::vector<Reference> elements = {})
    {
        return add(Array {std::move(elements)});
    }

    Reference addDictionary() { return add(Dictionary()); }

    void setElements(Reference array, std::vector<Reference> elements);
    /// All the keys, then all their values.
    void setKeysAndValues(Reference dictionary, std::vector<Reference> keysAndValues);

    /// The list with the given object at the top, in one allocation of the exact size.
    QByteArray data(Reference top) const;

private:
    struct Date
    {
        double seconds;
    };

    struct Uid
    {
        quint32 value;
    };

    struct Array
    {
        std::vector<Reference> elements;
    };

    struct Dictionary
    {
        std::vector<Reference> keysAndValues;
    };

    using Object = std::variant<bool, qint64, quint64, double, Date, QByteArray, QString, Uid,
                                Array, Dictionary>;
    class Sink;

    Reference add(Object object);

    std::deque<Object> m_objects; // grows without a copy of what it holds
};

} // namespace quorvane
