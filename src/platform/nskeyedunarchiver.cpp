#include "platform/largebuffer.h"
#include "platform/nskeyedarchiver.h"
#include "platform/propertylist.h"
#include "platform/utf8.h"

#include <QLatin1StringView>

#include <algorithm>
#include <map>
#include <utility>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

QByteArray copyOf(QByteArrayView bytes)
{
    QByteArray copy = largeBuffer(bytes.size());
    std::copy(bytes.begin(), bytes.end(), copy.begin());
    return copy;
}

using Kind = PropertyList::Kind;
using Value = PropertyList::Value;

constexpr int greatestDepth = 64; // of dictionaries in dictionaries
constexpr quint64 weightOfObject = 64;
constexpr quint64 weightOfEntry = 128;

enum class Class { Unknown, AttributedString, Data, Date, Dictionary, Number, String };

struct ClassName
{
    QLatin1StringView name;
    Class value = Class::Unknown;
};

constexpr ClassName knownClasses[] = {
    {"NSAttributedString"_L1, Class::AttributedString},
    {"NSData"_L1, Class::Data},
    {"NSMutableData"_L1, Class::Data},
    {"NSDate"_L1, Class::Date},
    {"NSDictionary"_L1, Class::Dictionary},
    {"NSMutableDictionary"_L1, Class::Dictionary},
    {"NSNumber"_L1, Class::Number},
    {"NSString"_L1, Class::String},
    {"NSMutableString"_L1, Class::String},
};

Class classNamed(const Value &name)
{
    for (const ClassName &known : knownClasses) {
        if (name.isString(known.name)) {
            return known.value;
        }
    }
    return Class::Unknown;
}

/// Counts down; what has run out stays so.
class Allowance final
{
public:
    explicit Allowance(quint64 amount)
        : m_left(amount)
    { }

    [[nodiscard]] bool take(quint64 amount)
    {
        m_left = amount < m_left ? m_left - amount : 0;
        return m_left > 0;
    }

private:
    quint64 m_left;
};

/// One reading. An object that comes back as nothing ends it: the archive is broken, or wants
/// more steps or memory than an honest archive of its size can need.
class Unarchiver final
{
public:
    explicit Unarchiver(PropertyList list)
        : m_list(std::move(list))
        , m_steps(4 * m_list.size() + 65536)
        , m_memory(8 * m_list.size() + 1048576)
    { }

    std::optional<NSObject> root();

private:
    std::optional<Value> find(const Value &dictionary, QLatin1StringView key);
    std::optional<Value> payload(const Value &instance, QLatin1StringView key);
    std::optional<Value> topEntry(const Value &top);
    Value dereferenced(const Value &value) const;

    std::optional<NSObject> object(const Value &value, int depth);
    std::optional<NSObject> plainObject(const Value &value);
    std::optional<NSObject> instance(const Value &value, int depth);
    std::optional<Class> classOf(const Value &instance);

    std::optional<NSObject> attributedStringInstance(const Value &instance, int depth);
    std::optional<NSObject> dataInstance(const Value &instance);
    std::optional<NSObject> dateInstance(const Value &instance);
    std::optional<NSObject> numberInstance(const Value &instance);
    std::optional<NSObject> stringInstance(const Value &instance);
    std::optional<NSObject> dictionaryInstance(const Value &instance, int depth);
    std::optional<NSObject> numberedDictionary(const Value &instance, int depth);
    bool addEntry(NSDictionary &dictionary, const Value &key, const Value &value, int depth);

    PropertyList m_list;
    Value m_objects;
    Allowance m_steps; // entries of collections looked at
    Allowance m_memory; // bytes of all values, a shared one counted wherever it is
};

std::optional<NSObject> Unarchiver::root()
{
    const Value archive = m_list.root();
    const std::optional<Value> version = find(archive, "$version"_L1);
    const std::optional<Value> archiver = find(archive, "$archiver"_L1);
    const std::optional<Value> top = find(archive, "$top"_L1);
    const std::optional<Value> objects = find(archive, "$objects"_L1);
    if (!version || !archiver || !top || !objects || objects->kind() != Kind::Array) {
        return std::nullopt;
    }
    const std::optional<NSNumber> number = version->number();
    if (!number || number->longValue() != 100000 || !archiver->isString("NSKeyedArchiver"_L1)) {
        return std::nullopt;
    }
    m_objects = *objects;
    const std::optional<Value> entry = topEntry(*top);
    return entry && entry->uid() ? object(*entry, 0) : std::nullopt;
}

// Un-keyed writers number the entries from "$0".
std::optional<Value> Unarchiver::topEntry(const Value &top)
{
    if (std::optional<Value> entry = find(top, "root"_L1)) {
        return entry;
    }
    if (std::optional<Value> entry = find(top, "$0"_L1)) {
        return entry;
    }
    return top.count() == 1 ? std::optional(top.value(0)) : std::nullopt;
}

// Of two entries with one key the last counts.
std::optional<Value> Unarchiver::find(const Value &dictionary, QLatin1StringView key)
{
    if (dictionary.kind() != Kind::Dictionary || !m_steps.take(dictionary.count())) {
        return std::nullopt;
    }
    for (quint64 i = dictionary.count(); i > 0; --i) {
        if (dictionary.key(i - 1).isString(key)) {
            return dictionary.value(i - 1);
        }
    }
    return std::nullopt;
}

// Some writers put the contents of an instance inside it, some beside it.
std::optional<Value> Unarchiver::payload(const Value &instance, QLatin1StringView key)
{
    const std::optional<Value> value = find(instance, key);
    return value ? std::optional(dereferenced(*value)) : std::nullopt;
}

Value Unarchiver::dereferenced(const Value &value) const
{
    const std::optional<quint64> uid = value.uid();
    return uid ? m_objects.element(*uid) : value;
}

std::optional<NSObject> Unarchiver::object(const Value &value, int depth)
{
    if (depth > greatestDepth || !m_steps.take(1) || !m_memory.take(weightOfObject)) {
        return std::nullopt;
    }
    const std::optional<quint64> uid = value.uid();
    if (!uid) {
        return plainObject(value);
    }
    if (*uid == 0) {
        return NSObject();
    }
    const Value target = m_objects.element(*uid);
    if (target.uid()) {
        return std::nullopt;
    }
    return target.kind() == Kind::Dictionary ? instance(target, depth) : plainObject(target);
}

std::optional<NSObject> Unarchiver::plainObject(const Value &value)
{
    switch (value.kind()) {
    case Kind::Boolean:
    case Kind::Integer:
    case Kind::Real: {
        const std::optional<NSNumber> number = value.number();
        return number ? std::optional(NSObject(*number)) : std::nullopt;
    }
    case Kind::Date:
        return NSObject(*value.date());
    case Kind::Data:
        return m_memory.take(value.count()) ? std::optional(NSObject(copyOf(*value.data())))
                                            : std::nullopt;
    case Kind::String: {
        std::optional<QString> string;
        if (m_memory.take(2 * value.count())) {
            string = value.string();
        }
        return string ? std::optional(NSObject(*std::move(string))) : std::nullopt;
    }
    case Kind::Array:
        return NSObject::unknown();
    case Kind::Invalid:
    case Kind::Uid:
    case Kind::Dictionary:
        return std::nullopt;
    }
    return std::nullopt;
}

std::optional<NSObject> Unarchiver::instance(const Value &value, int depth)
{
    const std::optional<Class> itsClass = classOf(value);
    if (!itsClass) {
        return std::nullopt;
    }
    switch (*itsClass) {
    case Class::Unknown:
        return NSObject::unknown();
    case Class::AttributedString:
        return attributedStringInstance(value, depth);
    case Class::Data:
        return dataInstance(value);
    case Class::Date:
        return dateInstance(value);
    case Class::Dictionary:
        return dictionaryInstance(value, depth);
    case Class::Number:
        return numberInstance(value);
    case Class::String:
        return stringInstance(value);
    }
    return std::nullopt;
}

// By its own name, and where that says nothing by the nearest ancestor that we know.
std::optional<Class> Unarchiver::classOf(const Value &instance)
{
    const std::optional<Value> reference = find(instance, "$class"_L1);
    if (!reference || !reference->uid()) {
        return std::nullopt;
    }
    const Value entry = dereferenced(*reference);
    const std::optional<Value> name = find(entry, "$classname"_L1);
    if (!name || name->kind() != Kind::String) {
        return std::nullopt;
    }
    Class result = classNamed(*name);
    const std::optional<Value> chain = find(entry, "$classes"_L1);
    if (!chain) {
        return result;
    }
    if (chain->kind() != Kind::Array || !m_steps.take(chain->count())) {
        return std::nullopt;
    }
    for (quint64 i = 0; i < chain->count() && result == Class::Unknown; ++i) {
        result = classNamed(chain->element(i));
    }
    return result;
}

// An instance of a known class without the contents that we know is a subclass with ways of its
// own; contents of the wrong kind are damage.

// A styled text is taken for its characters.
std::optional<NSObject> Unarchiver::attributedStringInstance(const Value &instance, int depth)
{
    const std::optional<Value> characters = find(instance, "NSString"_L1);
    if (!characters) {
        return NSObject::unknown();
    }
    std::optional<NSObject> string = object(*characters, depth + 1);
    return string && string->string() ? std::move(string) : std::nullopt;
}

std::optional<NSObject> Unarchiver::dataInstance(const Value &instance)
{
    std::optional<Value> contents = payload(instance, "NS.data"_L1);
    if (!contents) {
        contents = payload(instance, "NS.bytes"_L1);
    }
    if (!contents) {
        return NSObject::unknown();
    }
    return contents->kind() == Kind::Data ? plainObject(*contents) : std::nullopt;
}

std::optional<NSObject> Unarchiver::dateInstance(const Value &instance)
{
    const std::optional<Value> contents = payload(instance, "NS.time"_L1);
    if (!contents) {
        return NSObject::unknown();
    }
    const std::optional<NSNumber> seconds = contents->number();
    return seconds ? std::optional(NSObject(NSDate {seconds->doubleValue()})) : std::nullopt;
}

std::optional<NSObject> Unarchiver::numberInstance(const Value &instance)
{
    for (const QLatin1StringView key :
         {"NS.number"_L1, "NS.boolval"_L1, "NS.intval"_L1, "NS.dblval"_L1}) {
        const std::optional<Value> contents = payload(instance, key);
        if (!contents) {
            continue;
        }
        const std::optional<NSNumber> number = contents->number();
        if (!number) {
            return std::nullopt;
        }
        if (key == "NS.boolval"_L1) {
            return NSObject(NSNumber::numberWithBool(number->boolValue()));
        }
        if (key == "NS.dblval"_L1) {
            return NSObject(NSNumber::numberWithDouble(number->doubleValue()));
        }
        return NSObject(*number);
    }
    return NSObject::unknown();
}

std::optional<NSObject> Unarchiver::stringInstance(const Value &instance)
{
    if (const std::optional<Value> contents = payload(instance, "NS.string"_L1)) {
        return contents->kind() == Kind::String ? plainObject(*contents) : std::nullopt;
    }
    const std::optional<Value> contents = payload(instance, "NS.bytes"_L1);
    if (!contents) {
        return NSObject::unknown();
    }
    const std::optional<QByteArrayView> bytes = contents->data();
    if (!bytes || !m_memory.take(2 * contents->count())) {
        return std::nullopt;
    }
    std::optional<QString> string = stringFromUtf8(*bytes);
    return string ? std::optional(NSObject(*std::move(string))) : std::nullopt;
}

std::optional<NSObject> Unarchiver::dictionaryInstance(const Value &instance, int depth)
{
    const std::optional<Value> keys = payload(instance, "NS.keys"_L1);
    const std::optional<Value> objects = payload(instance, "NS.objects"_L1);
    if (!keys && !objects) {
        return numberedDictionary(instance, depth);
    }
    const auto isArray = [](const std::optional<Value> &value) {
        return value && value->kind() == Kind::Array;
    };
    if (!isArray(keys) || !isArray(objects) || keys->count() != objects->count()) {
        return std::nullopt;
    }
    NSDictionary dictionary;
    for (quint64 i = 0; i < keys->count(); ++i) {
        if (!addEntry(dictionary, keys->element(i), objects->element(i), depth)) {
            return std::nullopt;
        }
    }
    return NSObject(std::move(dictionary));
}

// The older form: "NS.key.0" and "NS.object.0", "NS.key.1" and so on, in any order.
std::optional<NSObject> Unarchiver::numberedDictionary(const Value &instance, int depth)
{
    constexpr auto keyPrefix = "NS.key."_L1;
    constexpr auto objectPrefix = "NS.object."_L1;
    constexpr quint64 longestName = 30;
    std::map<quint64, Value> keys;
    std::map<quint64, Value> objects;
    if (!m_steps.take(instance.count())) {
        return std::nullopt;
    }
    for (quint64 i = 0; i < instance.count(); ++i) {
        const Value nameValue = instance.key(i);
        const std::optional<QString> name =
            nameValue.count() <= longestName ? nameValue.string() : std::nullopt;
        const bool isKey = name && name->startsWith(keyPrefix);
        if (!isKey && !(name && name->startsWith(objectPrefix))) {
            continue;
        }
        bool isNumber = false;
        const QStringView digits =
            QStringView(*name).sliced(isKey ? keyPrefix.size() : objectPrefix.size());
        const quint64 index = digits.toULongLong(&isNumber);
        if (!isNumber || !m_memory.take(weightOfEntry)) {
            return std::nullopt;
        }
        (isKey ? keys : objects).insert_or_assign(index, instance.value(i));
    }
    NSDictionary dictionary;
    quint64 index = 0;
    for (const auto &[number, key] : keys) {
        const auto found = objects.find(number);
        if (number != index++ || found == objects.end()
            || !addEntry(dictionary, key, found->second, depth)) {
            return std::nullopt;
        }
    }
    return keys.size() == objects.size() ? std::optional(NSObject(std::move(dictionary)))
                                         : std::nullopt;
}

// A key that is no string makes no entry; none of ours has one, and it harms no other.
bool Unarchiver::addEntry(NSDictionary &dictionary, const Value &key, const Value &value, int depth)
{
    const std::optional<NSObject> keyObject = object(key, depth + 1);
    if (!keyObject || !m_memory.take(weightOfEntry)) {
        return false;
    }
    const std::optional<QString> name = keyObject->string();
    if (!name) {
        return true;
    }
    const std::optional<NSObject> valueObject = object(value, depth + 1);
    if (valueObject && !valueObject->isNil()) {
        dictionary.insert(*name, *valueObject);
    }
    return valueObject.has_value();
}

} // namespace

std::optional<NSObject> NSKeyedUnarchiver::unarchiveObjectWithData(const QByteArray &data)
{
    std::optional<PropertyList> list = PropertyList::fromData(data);
    return list ? Unarchiver(*std::move(list)).root() : std::nullopt;
}

} // namespace quorvane
