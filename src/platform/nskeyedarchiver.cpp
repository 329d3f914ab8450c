#include "platform/nskeyedarchiver.h"

#include "platform/propertylistwriter.h"

#include <QHash>
#include <QLatin1StringView>

#include <utility>
#include <vector>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

using Reference = PropertyListWriter::Reference;
using Uid = quint32;

class Archive final
{
public:
    QByteArray write(const NSObject &root);

private:
    using Names = std::vector<QLatin1StringView>;

    Uid allocate(Reference object);
    Uid encode(const NSObject &object);
    Uid encodeString(const QString &string);
    Uid encodeDictionary(const NSDictionary &dictionary);
    Uid encodeNumber(const NSNumber &number);
    Uid encodeInstance(QLatin1StringView key, Reference payload, const Names &classes);
    Uid classUid(const Names &classes);

    Reference name(QLatin1StringView text);
    Reference uid(Uid number);
    Reference uidArray(const std::vector<Uid> &numbers);

    PropertyListWriter m_writer;
    std::vector<Reference> m_objects; // by UID
    std::vector<std::optional<Reference>> m_uids; // by UID
    QHash<QLatin1StringView, Reference> m_names;
    QHash<QLatin1StringView, Uid> m_classes;
};

bool isWritten(const NSObject &object)
{
    return !object.isNil() && object != NSObject::unknown();
}

QByteArray Archive::write(const NSObject &root)
{
    const Reference archive = m_writer.addDictionary();
    const std::vector<Reference> keys = {name("$version"_L1), name("$archiver"_L1), name("$top"_L1),
                                         name("$objects"_L1)};
    const Reference version = m_writer.addInteger(100000);
    const Reference archiver = name("NSKeyedArchiver"_L1);
    const Reference top = m_writer.addDictionary();
    const Reference rootKey = name("root"_L1);
    const Reference objects = m_writer.addArray();

    allocate(name("$null"_L1));
    const Uid rootUid = isWritten(root) ? encode(root) : 0;
    m_writer.setKeysAndValues(top, {rootKey, uid(rootUid)});
    m_writer.setElements(objects, std::move(m_objects));
    m_writer.setKeysAndValues(
        archive, {keys[0], keys[1], keys[2], keys[3], version, archiver, top, objects});
    return m_writer.data(archive);
}

Uid Archive::allocate(Reference object)
{
    m_objects.push_back(object);
    m_uids.emplace_back();
    return static_cast<Uid>(m_objects.size() - 1);
}

Uid Archive::encode(const NSObject &object)
{
    if (const NSDictionary *dictionary = object.dictionary()) {
        return encodeDictionary(*dictionary);
    }
    if (const std::optional<QString> string = object.string()) {
        return encodeString(*string);
    }
    if (const std::optional<QByteArray> data = object.data()) {
        return allocate(m_writer.addData(*data));
    }
    if (const std::optional<NSDate> date = object.date()) {
        const Reference time = m_writer.addReal(date->timeIntervalSinceReferenceDate);
        return encodeInstance("NS.time"_L1, time, {"NSDate"_L1, "NSObject"_L1});
    }
    const std::optional<NSNumber> number = object.number();
    return number ? encodeNumber(*number) : 0;
}

Uid Archive::encodeString(const QString &string)
{
    if (string != "$null"_L1) {
        return allocate(m_writer.addString(string));
    }
    // As a plain string, readers that compare by text would take it for nil.
    return encodeInstance("NS.string"_L1, m_writer.addString(string),
                          {"NSMutableString"_L1, "NSString"_L1, "NSObject"_L1});
}

Uid Archive::encodeNumber(const NSNumber &number)
{
    if (number.isBool()) {
        return allocate(m_writer.addBoolean(number.boolValue()));
    }
    if (number.isDouble()) {
        return allocate(m_writer.addReal(number.doubleValue()));
    }
    // Negative integers are zero as unsigned ones.
    const qint64 asSigned = number.longValue();
    return allocate(asSigned < 0 ? m_writer.addInteger(asSigned)
                                 : m_writer.addUnsignedInteger(number.unsignedLongValue()));
}

// The order of a recursive writer: the instance, its keys, its values with all that they hold,
// and its class where it is the first of it.
Uid Archive::encodeDictionary(const NSDictionary &dictionary)
{
    const Reference instance = m_writer.addDictionary();
    const Uid result = allocate(instance);
    std::vector<Uid> keys;
    std::vector<Uid> values;
    for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
        if (isWritten(entry.value())) {
            keys.push_back(encodeString(entry.key()));
        }
    }
    for (const NSObject &value : dictionary) {
        if (isWritten(value)) {
            values.push_back(encode(value));
        }
    }
    const Uid classNumber = classUid({"NSMutableDictionary"_L1, "NSDictionary"_L1, "NSObject"_L1});
    m_writer.setKeysAndValues(instance,
                              {name("NS.keys"_L1), name("NS.objects"_L1), name("$class"_L1),
                               uidArray(keys), uidArray(values), uid(classNumber)});
    return result;
}

Uid Archive::encodeInstance(QLatin1StringView key, Reference payload, const Names &classes)
{
    const Reference instance = m_writer.addDictionary();
    const Uid result = allocate(instance);
    const Uid classNumber = classUid(classes);
    m_writer.setKeysAndValues(instance, {name(key), name("$class"_L1), payload, uid(classNumber)});
    return result;
}

Uid Archive::classUid(const Names &classes)
{
    const auto known = m_classes.constFind(classes.front());
    if (known != m_classes.constEnd()) {
        return *known;
    }
    const Reference entry = m_writer.addDictionary();
    const Uid result = allocate(entry);
    m_classes.insert(classes.front(), result);
    std::vector<Reference> chain;
    for (const QLatin1StringView className : classes) {
        chain.push_back(name(className));
    }
    const Reference first = chain.front();
    m_writer.setKeysAndValues(
        entry,
        {name("$classname"_L1), name("$classes"_L1), first, m_writer.addArray(std::move(chain))});
    return result;
}

// The structure's own words stand in the list once.
Reference Archive::name(QLatin1StringView text)
{
    const auto known = m_names.constFind(text);
    if (known != m_names.constEnd()) {
        return *known;
    }
    return *m_names.insert(text, m_writer.addString(text));
}

Reference Archive::uid(Uid number)
{
    std::optional<Reference> &reference = m_uids[number];
    if (!reference) {
        reference = m_writer.addUid(number);
    }
    return *reference;
}

Reference Archive::uidArray(const std::vector<Uid> &numbers)
{
    std::vector<Reference> references;
    references.reserve(numbers.size());
    for (const Uid number : numbers) {
        references.push_back(uid(number));
    }
    return m_writer.addArray(std::move(references));
}

} // namespace

QByteArray NSKeyedArchiver::archivedDataWithRootObject(const NSObject &root)
{
    return Archive().write(root);
}

} // namespace quorvane
