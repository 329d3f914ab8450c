#include "platform/nskeyedarchiver.h"

#include <QTest>

#include <cstdlib>
#include <memory>

#include <plist/plist.h>

using namespace quorvane;
using namespace Qt::StringLiterals;

namespace {

using PeerList = std::unique_ptr<void, decltype(&plist_free)>;

QByteArray taken(char *bytes, uint32_t size)
{
    QByteArray result(bytes, static_cast<qsizetype>(size));
    std::free(bytes);
    return result;
}

} // namespace

/// libplist, an independent program, opens what we write; we open what it writes.
class TestArchivePeers final : public QObject
{
    Q_OBJECT

private slots:
    void libplistReadsOursAndWeReadIts_data();
    void libplistReadsOursAndWeReadIts();
};

void TestArchivePeers::libplistReadsOursAndWeReadIts_data()
{
    QTest::addColumn<NSObject>("object");
    QTest::newRow("a date") << NSObject(NSDate {509523358.684097});
    QTest::newRow("every class") << NSObject(NSDictionary {
        {u"yes"_s, NSNumber::numberWithBool(true)},
        {u"no"_s, NSNumber::numberWithBool(false)},
        {u"version"_s, NSNumber::numberWithUnsignedLong(20400)},
        {u"small"_s, NSNumber::numberWithLong(std::numeric_limits<qint64>::min())},
        {u"large"_s, NSNumber::numberWithUnsignedLong(std::numeric_limits<quint64>::max())},
        {u"half"_s, NSNumber::numberWithDouble(0.5)},
        {u"text"_s, u"grüße <&> 😀"_s},
        {u"empty text"_s, QString()},
        {u"data"_s, QByteArray("\0\xFF", 2)},
        {u"no data"_s, QByteArray()},
        {u"date"_s, NSDate {1.5}},
        {u"dictionary"_s, NSDictionary {{u"none"_s, NSDictionary()}}},
    });
    NSDictionary many;
    for (int i = 0; i < 300; ++i) {
        many.insert(QString::number(i), QByteArray(i, 'x'));
    }
    QTest::newRow("wide references and offsets") << NSObject(many);
}

void TestArchivePeers::libplistReadsOursAndWeReadIts()
{
    QFETCH(NSObject, object);
    const QByteArray ours = NSKeyedArchiver::archivedDataWithRootObject(object);
    plist_t opened = nullptr;
    plist_from_bin(ours.constData(), static_cast<uint32_t>(ours.size()), &opened);
    const PeerList peer(opened, plist_free);
    QVERIFY(peer != nullptr);
    QCOMPARE(plist_dict_get_size(peer.get()), 4U);

    char *bytes = nullptr;
    uint32_t size = 0;
    plist_to_bin(peer.get(), &bytes, &size);
    QVERIFY(NSKeyedUnarchiver::unarchiveObjectWithData(taken(bytes, size)) == object);
    plist_to_xml(peer.get(), &bytes, &size);
    QVERIFY(NSKeyedUnarchiver::unarchiveObjectWithData(taken(bytes, size)) == object);
}

QTEST_GUILESS_MAIN(TestArchivePeers)

#include "tst_archivepeers.moc"
