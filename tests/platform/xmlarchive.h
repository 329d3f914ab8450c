#pragma once

#include <QByteArray>

/// Archives spelled out in XML, for tables of odd and broken ones.
namespace xmlarchive {

inline QByteArray uid(int number)
{
    return "<dict><key>CF$UID</key><integer>" + QByteArray::number(number) + "</integer></dict>";
}

inline QByteArray entry(const QByteArray &key, const QByteArray &value)
{
    return "<key>" + key + "</key>" + value;
}

/// An instance with the given entries whose class stands at the UID.
inline QByteArray instance(const QByteArray &entries, int classUid)
{
    return "<dict>" + entries + entry("$class", uid(classUid)) + "</dict>";
}

inline QByteArray classEntry(const QByteArray &name, const QByteArray &ancestor = "NSObject")
{
    const QByteArray chain =
        "<array><string>" + name + "</string><string>" + ancestor + "</string></array>";
    return "<dict>" + entry("$classname", "<string>" + name + "</string>")
        + entry("$classes", chain) + "</dict>";
}

inline QByteArray array(std::initializer_list<int> uids)
{
    QByteArray result = "<array>";
    for (const int number : uids) {
        result += uid(number);
    }
    return result + "</array>";
}

inline QByteArray dictionary(std::initializer_list<int> keys, std::initializer_list<int> values,
                             int classUid)
{
    return instance(entry("NS.keys", array(keys)) + entry("NS.objects", array(values)), classUid);
}

/// A whole archive; the first of the objects has UID 1 and is the root.
inline QByteArray archive(const QByteArray &objects, const QByteArray &prologue = {})
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + prologue
        + "<plist version=\"1.0\"><dict>" + entry("$archiver", "<string>NSKeyedArchiver</string>")
        + entry("$objects", "<array><string>$null</string>" + objects + "</array>")
        + entry("$top", "<dict>" + entry("root", uid(1)) + "</dict>")
        + entry("$version", "<integer>100000</integer>") + "</dict></plist>\n";
}

} // namespace xmlarchive
