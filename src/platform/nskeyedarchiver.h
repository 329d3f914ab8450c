#pragma once

#include "platform/nsobject.h"

namespace quorvane {

/// Writes keyed archives: a binary property list with "$version", "$archiver", "$top" and
/// "$objects", in this order.
class NSKeyedArchiver final
{
public:
    /// The archive of one value with the dictionary entry "root". A dictionary is written as
    /// NSMutableDictionary; entries that are nil or unknown are left out.
    static QByteArray archivedDataWithRootObject(const NSObject &root);
};

/// Reads keyed archives, binary or XML, of any writer.
class NSKeyedUnarchiver final
{
public:
    /// The root value, or nothing where the bytes are no whole keyed archive. Never takes more
    /// memory than a small multiple of the data, and bounded stack, whatever the bytes are.
    static std::optional<NSObject> unarchiveObjectWithData(const QByteArray &data);
};

} // namespace quorvane
