#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace quorvane {

/// The Ethernet address of this machine, 6 raw bytes, which a document records as the place of
/// its making. Nothing depends on its being there.
///
/// \a interfaces is the folder in which the kernel shows its network interfaces.
class QVMACAddress final
{
public:
    QVMACAddress() = delete;

    /// The address of the first Ethernet interface: a piece of hardware before a virtual one,
    /// then by the kernel's own numbers.
    [[nodiscard]] static std::optional<QByteArray>
    MACAddressData(const QString &interfaces = sysClassNet());
    /// The address of the interface of that name.
    [[nodiscard]] static std::optional<QByteArray>
    MACAddressDataAtPort(const QString &name, const QString &interfaces = sysClassNet());
    /// As a4:5e:60:c2:01:7f.
    [[nodiscard]] static std::optional<QString>
    MACAddressString(const QString &interfaces = sysClassNet());
    [[nodiscard]] static std::optional<QString>
    MACAddressStringAtPort(const QString &name, const QString &interfaces = sysClassNet());

private:
    static QString sysClassNet();
};

} // namespace quorvane
