#pragma once

#include "platform/nsobject.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QLatin1StringView>

#include <optional>

namespace quorvane {

/// A property list, read where it lies: nothing is unpacked before it is asked for, so that
/// neither a huge count nor an object shared a thousandfold costs anything by itself. XML is
/// brought to the binary form first, there is one way to read.
///
/// Whoever walks through a list must bound depth and steps: references may form cycles.
class PropertyList final
{
public:
    enum class Kind { Invalid, Boolean, Integer, Real, Date, Data, String, Uid, Array, Dictionary };

    /// One value of a list, usable as long as the list stays where it is. Every question is
    /// answered in constant time unless its comment says otherwise; a value of another kind,
    /// or out of range, answers nothing or an Invalid value.
    class Value final
    {
    public:
        Value() = default; ///< Invalid.

        Kind kind() const { return m_kind; }

        /// The size of data in bytes, of a string in UTF-16 units, of a collection in entries.
        quint64 count() const { return m_count; }

        std::optional<NSNumber> number() const; ///< Of Boolean, Integer and Real.
        std::optional<NSDate> date() const;
        std::optional<QByteArrayView> data() const; ///< A slice of the list's bytes.
        /// A copy, in linear time. Nothing for bytes beyond ASCII where ASCII is said; UTF-16 is
        /// taken as it is, unpaired surrogates included.
        std::optional<QString> string() const;
        bool isString(QLatin1StringView ascii) const; ///< Linear in the length of the argument.
        /// The number of a UID, be it of the type or written as a dictionary with CF$UID only.
        std::optional<quint64> uid() const;

        Value element(quint64 index) const; ///< Of an array.
        Value key(quint64 index) const; ///< Of a dictionary.
        Value value(quint64 index) const; ///< Of a dictionary.

    private:
        friend class PropertyList;

        explicit Value(const PropertyList *list)
            : m_list(list)
        { }

        Value reference(quint64 slot) const;

        const PropertyList *m_list = nullptr;
        quint64 m_payload = 0;
        quint64 m_count = 0; // for numbers and UIDs the width in bytes
        Kind m_kind = Kind::Invalid;
        bool m_isWide = false; // a string in UTF-16
    };

    /// Nothing for bytes that are neither a binary property list with a sound trailer nor a whole
    /// XML property list. Objects are looked at when they are asked for, not here.
    static std::optional<PropertyList> fromData(const QByteArray &data);

    Value root() const { return object(m_top); }

    quint64 size() const { return static_cast<quint64>(m_bytes.size()); } ///< In binary form.

private:
    PropertyList() = default;
    static std::optional<PropertyList> fromBinary(const QByteArray &data);
    quint64 integerAt(quint64 position, quint64 width) const;
    Value object(quint64 number) const;
    bool readCount(Value &value, unsigned low) const;
    bool readScalar(Value &value, unsigned type, unsigned low) const;
    bool readSized(Value &value, unsigned type, unsigned low) const;

    QByteArray m_bytes;
    quint64 m_offsetTable = 0;
    quint64 m_objectCount = 0;
    quint64 m_top = 0;
    quint64 m_offsetWidth = 1;
    quint64 m_referenceWidth = 1;
};

} // namespace quorvane
