#include "richtext/flatrtfd.h"

#include <QTest>
#include <QtEndian>

using namespace quorvane;

namespace {

QByteArray u32(quint32 number)
{
    QByteArray bytes(4, '\0');
    qToLittleEndian(number, bytes.data());
    return bytes;
}

FlatRtfdEntry file(const QByteArray &name, const QByteArray &bytes)
{
    return {name, FlatRtfdEntry::Kind::File, bytes, {}};
}

FlatRtfdEntries sample()
{
    FlatRtfdEntry folder {"nested", FlatRtfdEntry::Kind::Directory, {}, {file("in", "side")}};
    FlatRtfdEntry unknown {"link", FlatRtfdEntry::Kind::Unknown, u32(7) + "target", {}};
    return {file("a.png", QByteArray(5000, 'p')), folder, unknown, file("TXT.rtf", "{\\rtf1 x}"),
            file("empty", "")};
}

} // namespace

class TestFlatRtfd : public QObject
{
    Q_OBJECT

private slots:
    void aTextOfThePlatformReadsAndWritesByteForByte();
    void longContentsBeginAtAPage();
    void entriesOfAllKindsGoThereAndBack();
    void aTextCutShortGivesWhatIsLeft();
    void lyingNumbersAreNotBelieved_data();
    void lyingNumbersAreNotBelieved();
};

void TestFlatRtfd::aTextOfThePlatformReadsAndWritesByteForByte()
{
    const QByteArray rtf(0x164, 'r');
    const QByteArray records =
        u32(1) + u32(7) + "TXT.rtf" + u32(16) + u32(0x68844313) + u32(0666) + u32(0) + u32(0);
    const QByteArray dump = "rtfd" + u32(0) + u32(3) + u32(2) + u32(7) + "TXT.rtf" + u32(1) + "."
        + u32(0x16c) + u32(0x2b) + u32(1) + u32(0x164) + rtf + u32(1) + u32(0x23) + records;
    QCOMPARE(dump.size(), 447);

    const std::optional<FlatRtfd> read = readFlatRtfd(dump);
    QVERIFY(read && !read->damaged);
    QCOMPARE(read->entries.size(), std::size_t(2));
    QCOMPARE(read->entries[0].bytes, rtf);
    QCOMPARE(writeFlatRtfd(read->entries), dump);

    const auto attributes = readFlatRtfdAttributes(read->entries[1].bytes);
    QCOMPARE(attributes.size(), std::size_t(1));
    QCOMPARE(attributes[0].modified, 0x68844313u);
    QCOMPARE(writeFlatRtfdAttributes(attributes), records);
}

void TestFlatRtfd::longContentsBeginAtAPage()
{
    const FlatRtfdEntries entries {file("Pasted Graphic 1.png", QByteArray(4516, 'i')),
                                   file(".", QByteArray(0x4f, '.')),
                                   file("TXT.rtf", QByteArray(4466, 't'))};
    const QByteArray dump = writeFlatRtfd(entries);
    QCOMPARE(dump.size(), 0x4172);
    QCOMPARE(dump.sliced(0x38, 12), u32(0x2160) + u32(0x57) + u32(0x1f77));
    QCOMPARE(dump.sliced(0x44, 16), u32(1) + u32(0x80000000) + u32(4516) + u32(4012));
    QCOMPARE(dump.indexOf('i', 0x100), 0x1000);
    QCOMPARE(dump.indexOf("ttt"), 0x3000);
    QVERIFY(readFlatRtfd(dump)->entries == entries);
}

void TestFlatRtfd::entriesOfAllKindsGoThereAndBack()
{
    const std::optional<FlatRtfd> read = readFlatRtfd(writeFlatRtfd(sample()));
    QVERIFY(read && !read->damaged);
    QVERIFY(read->entries == sample());
    QVERIFY(readFlatRtfd(writeFlatRtfd({}))->entries.empty());
}

void TestFlatRtfd::aTextCutShortGivesWhatIsLeft()
{
    const QByteArray dump = writeFlatRtfd({file("a", "first"), file("b", "second")});
    for (qsizetype length = 0; length < dump.size(); ++length) {
        const std::optional<FlatRtfd> read = readFlatRtfd(dump.first(length));
        QCOMPARE(read.has_value(), length >= 12);
        QVERIFY(!read || read->damaged);
    }
    const std::optional<FlatRtfd> cut = readFlatRtfd(dump.chopped(3));
    QCOMPARE(cut->entries[0].bytes, QByteArray("first"));
    QCOMPARE(cut->entries[1].bytes, QByteArray("sec"));
}

void TestFlatRtfd::lyingNumbersAreNotBelieved_data()
{
    QTest::addColumn<QByteArray>("dump");
    QTest::addColumn<int>("entries");
    const QByteArray head = "rtfd" + u32(0) + u32(3);
    const QByteArray one = u32(1) + u32(1) + "a";
    QTest::newRow("more entries than bytes") << head + u32(0xffffffff) + u32(0) << 1;
    QTest::newRow("a name longer than all") << head + u32(1) + u32(0xfffffff0) + "a" << 1;
    QTest::newRow("an entry longer than all")
        << head + one + u32(0xffffffff) + u32(1) + u32(2) + "xy" << 1;
    QTest::newRow("contents longer than the entry")
        << head + one + u32(10) + u32(1) + u32(99) + "xy" << 1;
    QTest::newRow("padding longer than the entry")
        << head + one + u32(18) + u32(1) + u32(0x80000000) + u32(2) + u32(0xffffffff) + "xy" << 1;
    QByteArray deep = "rtfd" + u32(0);
    for (int i = 0; i < 20000; ++i) {
        deep += u32(3) + one + u32(0x7fffffff);
    }
    QTest::newRow("folders without an end") << deep << 1;
}

void TestFlatRtfd::lyingNumbersAreNotBelieved()
{
    QFETCH(QByteArray, dump);
    QFETCH(int, entries);
    const std::optional<FlatRtfd> read = readFlatRtfd(dump);
    QVERIFY(read);
    QVERIFY(read->damaged);
    QCOMPARE(int(read->entries.size()), entries);
}

QTEST_GUILESS_MAIN(TestFlatRtfd)
#include "tst_flatrtfd.moc"
