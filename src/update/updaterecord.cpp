#include "update/updaterecord.h"

#include "platform/propertylist.h"

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 mostEntries = 1000;

// A number may also come as a string of digits, which reads as its number.
std::optional<qint64> integerOf(const PropertyList::Value &value)
{
    if (const std::optional<NSNumber> number = value.number()) {
        return number->longValue();
    }
    if (const std::optional<QString> digits = value.string()) {
        return digits->toLongLong();
    }
    return std::nullopt;
}

} // namespace

std::optional<UpdateRecord> UpdateRecord::fromData(const QByteArray &data)
{
    const std::optional<PropertyList> list = PropertyList::fromData(data);
    if (!list || list->root().kind() != PropertyList::Kind::Dictionary) {
        return std::nullopt;
    }
    const PropertyList::Value root = list->root();
    UpdateRecord record;
    for (quint64 i = 0; i < qMin(root.count(), mostEntries); ++i) {
        const PropertyList::Value key = root.key(i);
        if (key.isString("LRA"_L1)) {
            record.lra = integerOf(root.value(i));
        } else if (key.isString("GFU"_L1)) {
            record.gfu = root.value(i).string().value_or(QString());
        } else if (key.isString("DPU"_L1)) {
            record.dpu = root.value(i).string().value_or(QString());
        }
    }
    return record;
}

} // namespace quorvane
