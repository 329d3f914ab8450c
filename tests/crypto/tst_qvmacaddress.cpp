#include "crypto/qvmacaddress.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

struct Interface
{
    QString name;
    QByteArray type;
    QByteArray index;
    QByteArray address;
    bool isHardware = true;
};

using Interfaces = QList<Interface>;
using Address = std::optional<QString>;

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

void build(const QString &root, const Interfaces &interfaces)
{
    for (const Interface &each : interfaces) {
        const QString folder = root + u'/' + each.name;
        QVERIFY(QDir().mkpath(each.isHardware ? folder + "/device"_L1 : folder));
        write(folder + "/type"_L1, each.type + '\n');
        write(folder + "/ifindex"_L1, each.index + '\n');
        write(folder + "/address"_L1, each.address + '\n');
    }
    write(root + "/bonding_masters"_L1, "\n");
}

const Interface loopback {u"lo"_s, "772", "1", "00:00:00:00:00:00", false};

} // namespace

class TestQVMACAddress : public QObject
{
    Q_OBJECT

private slots:
    void theFirstEthernetInterfaceIsTaken_data();
    void theFirstEthernetInterfaceIsTaken();
    void aPortIsTakenByItsName_data();
    void aPortIsTakenByItsName();
    void bytesAndStringAgree();
    void thisMachineAnswersSixBytesOrNothing();
};

void TestQVMACAddress::theFirstEthernetInterfaceIsTaken_data()
{
    QTest::addColumn<Interfaces>("interfaces");
    QTest::addColumn<Address>("address");

    const Interface wired {u"enp3s0"_s, "1", "3", "0a:00:27:00:00:01"};
    const Interface radio {u"wlan0"_s, "1", "2", "a4:5e:60:c2:01:7f"};
    const Interface late {u"aaa0"_s, "1", "10", "a4:5e:60:c2:01:10"};
    const Interface bridge {u"br0"_s, "1", "1", "02:42:ac:11:00:02", false};
    QTest::newRow("none without interfaces") << Interfaces {} << Address();
    QTest::newRow("none with the loopback alone") << Interfaces {loopback} << Address();
    QTest::newRow("leading zeros stay")
        << Interfaces {loopback, wired} << Address(u"0a:00:27:00:00:01"_s);
    QTest::newRow("the kernel's number decides, as a number")
        << Interfaces {late, wired, radio} << Address(u"a4:5e:60:c2:01:7f"_s);
    QTest::newRow("hardware goes before a bridge")
        << Interfaces {bridge, wired} << Address(u"0a:00:27:00:00:01"_s);
    QTest::newRow("a bridge is better than nothing")
        << Interfaces {loopback, bridge} << Address(u"02:42:ac:11:00:02"_s);
    QTest::newRow("zeros are no address")
        << Interfaces {{u"dummy0"_s, "1", "1", "00:00:00:00:00:00"}} << Address();
    QTest::newRow("longer addresses are not Ethernet's")
        << Interfaces {{u"ib0"_s, "32", "1", "80:00:00:48:fe:80:00:00"}} << Address();
    QTest::newRow("an Ethernet address of odd length is none")
        << Interfaces {{u"eth0"_s, "1", "1", "80:00:00:48:fe"}} << Address();
    QTest::newRow("what is no number comes last")
        << Interfaces {{u"eth0"_s, "1", "", "a4:5e:60:c2:01:00"}, wired}
        << Address(u"0a:00:27:00:00:01"_s);
}

void TestQVMACAddress::theFirstEthernetInterfaceIsTaken()
{
    QFETCH(Interfaces, interfaces);
    QTemporaryDir root;
    build(root.path(), interfaces);
    QTEST(QVMACAddress::MACAddressString(root.path()), "address");
}

void TestQVMACAddress::aPortIsTakenByItsName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<Address>("address");

    QTest::newRow("a known one") << u"eth0"_s << Address(u"a4:5e:60:c2:01:7f"_s);
    QTest::newRow("an unknown one") << u"eth1"_s << Address();
    QTest::newRow("the loopback has none") << u"lo"_s << Address();
    QTest::newRow("no name") << QString() << Address();
    QTest::newRow("the folder itself") << u"."_s << Address();
    QTest::newRow("the folder above") << u".."_s << Address();
    QTest::newRow("a way out") << u"../outside"_s << Address();
    QTest::newRow("a way round") << u"./eth0"_s << Address();
    QTest::newRow("beyond ASCII") << u"eth\u00e9"_s << Address();
    QTest::newRow("a NUL in it") << QString(u"eth0"_s + QChar(0)) << Address();
}

void TestQVMACAddress::aPortIsTakenByItsName()
{
    QFETCH(QString, name);
    const Interface wired {u"eth0"_s, "1", "2", "a4:5e:60:c2:01:7f"};
    QTemporaryDir root;
    const QString net = root.filePath(u"net"_s);
    build(net, {loopback, wired});
    Interface outside = wired;
    outside.name = u"outside"_s;
    build(root.path(), {outside});
    Interface accented = wired;
    accented.name = u"eth\u00e9"_s;
    build(net, {accented});
    QTEST(QVMACAddress::MACAddressStringAtPort(name, net), "address");
}

void TestQVMACAddress::bytesAndStringAgree()
{
    QTemporaryDir root;
    build(root.path(), {{u"eth0"_s, "1", "2", "0a:00:27:00:00:01"}});
    const QByteArray bytes = QByteArray::fromHex("0a0027000001");
    QCOMPARE(QVMACAddress::MACAddressData(root.path()).value(), bytes);
    QCOMPARE(QVMACAddress::MACAddressDataAtPort(u"eth0"_s, root.path()).value(), bytes);
    QVERIFY(!QVMACAddress::MACAddressData(root.filePath(u"nowhere"_s)));
}

void TestQVMACAddress::thisMachineAnswersSixBytesOrNothing()
{
    const std::optional<QByteArray> address = QVMACAddress::MACAddressData();
    QVERIFY(!address || address->size() == 6);
    QVERIFY(!QVMACAddress::MACAddressStringAtPort(u"lo"_s));
}

QTEST_GUILESS_MAIN(TestQVMACAddress)
#include "tst_qvmacaddress.moc"
