#include "crypto/qvmacaddress.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <tuple>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype addressLength = 6;
constexpr qint64 longestAttribute = 256;
constexpr qsizetype longestName = 15; // IFNAMSIZ less its NUL
constexpr auto ethernetType = "1"; // ARPHRD_ETHER

QByteArray attribute(const QString &folder, QLatin1StringView name)
{
    QFile file(folder + u'/' + name);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return {};
    }
    return file.read(longestAttribute).trimmed();
}

std::optional<QByteArray> addressIn(const QString &folder)
{
    if (attribute(folder, "type"_L1) != ethernetType) {
        return std::nullopt;
    }
    const QByteArray text = attribute(folder, "address"_L1);
    const QByteArray address = QByteArray::fromHex(text); // skips the colons
    const bool isEmpty = address.count('\0') == address.size();
    if (text.size() != 3 * addressLength - 1 || address.size() != addressLength || isEmpty) {
        return std::nullopt;
    }
    return address;
}

bool isInterfaceName(const QString &name)
{
    const auto isPlain = [](QChar c) {
        return c > u' ' && c < u'\x7f' && c != u'/';
    };
    return !name.isEmpty() && name.size() <= longestName && name != "."_L1 && name != ".."_L1
        && std::all_of(name.begin(), name.end(), isPlain);
}

std::optional<QString> stringForm(const std::optional<QByteArray> &address)
{
    if (!address || address->isEmpty()) {
        return std::nullopt;
    }
    return QString::fromLatin1(address->toHex(':'));
}

} // namespace

QString QVMACAddress::sysClassNet()
{
    return u"/sys/class/net"_s;
}

std::optional<QByteArray> QVMACAddress::MACAddressData(const QString &interfaces)
{
    // Bridges and the like have no device behind them.
    using Rank = std::tuple<bool, qint64, QString>;
    std::optional<Rank> first;
    const QStringList names = QDir(interfaces).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    for (const QString &name : names) {
        const QString folder = interfaces + u'/' + name;
        if (!addressIn(folder)) {
            continue;
        }
        bool isNumber = false;
        const qint64 index = attribute(folder, "ifindex"_L1).toLongLong(&isNumber);
        const Rank rank {!QFileInfo::exists(folder + "/device"_L1),
                         isNumber ? index : std::numeric_limits<qint64>::max(), name};
        first = first ? std::min(*first, rank) : rank;
    }
    return first ? addressIn(interfaces + u'/' + std::get<QString>(*first)) : std::nullopt;
}

std::optional<QByteArray> QVMACAddress::MACAddressDataAtPort(const QString &name,
                                                             const QString &interfaces)
{
    return isInterfaceName(name) ? addressIn(interfaces + u'/' + name) : std::nullopt;
}

std::optional<QString> QVMACAddress::MACAddressString(const QString &interfaces)
{
    return stringForm(MACAddressData(interfaces));
}

std::optional<QString> QVMACAddress::MACAddressStringAtPort(const QString &name,
                                                            const QString &interfaces)
{
    return stringForm(MACAddressDataAtPort(name, interfaces));
}

} // namespace quorvane
