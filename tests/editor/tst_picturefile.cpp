#include "editor/attachmenticon.h"
#include "editor/picturecache.h"
#include "editor/picturefile.h"

#include <QBuffer>
#include <QSignalSpy>
#include <QTest>
#include <QtEndian>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

QByteArray encoded(const QImage &image, const char *format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    return image.save(&buffer, format) ? bytes : QByteArray();
}

QByteArray encoded(const QSize &size, const char *format, int dotsPerMetre = 0)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    if (dotsPerMetre > 0) {
        image.setDotsPerMeterX(dotsPerMetre);
        image.setDotsPerMeterY(dotsPerMetre);
    }
    return encoded(image, format);
}

quint32 checksumOf(const QByteArray &bytes) // ISO 3309
{
    quint32 sum = 0xffffffff;
    for (const char byte : bytes) {
        sum ^= quint8(byte);
        for (int bit = 0; bit < 8; ++bit) {
            sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xedb88320 : 0);
        }
    }
    return ~sum;
}

/// A PNG that says another size than it has.
QByteArray pngSaying(quint32 width, quint32 height)
{
    constexpr int widthAt = 16;
    QByteArray bytes = encoded({4, 4}, "PNG");
    qToBigEndian(width, bytes.data() + widthAt);
    qToBigEndian(height, bytes.data() + widthAt + 4);
    qToBigEndian(checksumOf(bytes.mid(widthAt - 4, 17)), bytes.data() + widthAt + 13);
    return bytes;
}

QByteArray bitmapSaying(qint32 width, qint32 height)
{
    constexpr int widthAt = 18;
    QByteArray bytes = encoded({4, 4}, "BMP");
    qToLittleEndian(width, bytes.data() + widthAt);
    qToLittleEndian(height, bytes.data() + widthAt + 4);
    return bytes;
}

QByteArray gifSaying(quint16 width, quint16 height)
{
    QByteArray bytes =
        QByteArray::fromBase64("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");
    for (const int at : {6, 32}) { // of the whole, and of its one frame
        qToLittleEndian(width, bytes.data() + at);
        qToLittleEndian(height, bytes.data() + at + 2);
    }
    return bytes;
}

/// A camera's note that the picture is to be turned by a quarter, put into a JPEG.
QByteArray turnedJpeg(const QSize &size)
{
    const QByteArray note = QByteArray::fromHex("ffe10022457869660000"
                                                "49492a0008000000"
                                                "0100"
                                                "1201030001000000"
                                                "06000000"
                                                "00000000");
    QByteArray jpeg = encoded(size, "JPG");
    return jpeg.insert(2, note);
}

} // namespace

class TestPictureFile : public QObject
{
    Q_OBJECT

private slots:

    void aPictureIsAsLargeAsItsFileSays_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QSize>("pixels");
        QTest::addColumn<QSize>("natural");
        QTest::newRow("without a resolution, a pixel is a pixel")
            << encoded({200, 100}, "BMP") << QSize(200, 100) << QSize(200, 100);
        QTest::newRow("a PNG of 192 dpi is half as large")
            << encoded({200, 100}, "PNG", 7559) << QSize(200, 100) << QSize(100, 50);
        QTest::newRow("a JPEG of 48 dpi is twice as large")
            << encoded({200, 100}, "JPG", 1890) << QSize(200, 100) << QSize(400, 200);
        QTest::newRow("a resolution that cannot be meant is none")
            << encoded({200, 100}, "PNG", 3) << QSize(200, 100) << QSize(200, 100);
        QTest::newRow("a JPEG that a camera has turned")
            << turnedJpeg({200, 100}) << QSize(100, 200) << QSize(100, 200);
    }

    void aPictureIsAsLargeAsItsFileSays()
    {
        QFETCH(QByteArray, bytes);
        const auto info = pictureInfo(bytes);
        QVERIFY(info);
        QTEST(info->pixels, "pixels");
        QTEST(info->natural.toSize(), "natural");
        QCOMPARE(decodedPicture(bytes, {5000, 5000}).size(), info->pixels);
        const QSize half = info->pixels / 2;
        QCOMPARE(decodedPicture(bytes, half).size(), half);
    }

    void whatIsHostileIsNeitherHungOnNorDecoded_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("isKnown"); // by its beginning: that it is broken shows later
        const QByteArray whole = encoded({300, 300}, "PNG");
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("a text") << QByteArray("not a picture") << false;
        QTest::newRow("a signature alone") << whole.first(8) << false;
        QTest::newRow("a PNG of 2^31 pixels a side") << pngSaying(0x7fffffff, 0x7fffffff) << false;
        QTest::newRow("a PNG of 60000 x 60000") << pngSaying(60000, 60000) << false;
        QTest::newRow("a PNG of one very long row") << pngSaying(500'000, 1) << false;
        QTest::newRow("a PNG without pixels") << pngSaying(0, 0) << false;
        QTest::newRow("a PNG with less than it says") << pngSaying(5000, 5000) << true;
        QTest::newRow("a bitmap of 40000 x 40000") << bitmapSaying(40000, 40000) << false;
        QTest::newRow("a bitmap of negative width") << bitmapSaying(-5, 5) << false;
        QTest::newRow("a GIF of 65535 x 65535") << gifSaying(65535, 65535) << false;
        QTest::newRow("a drawing that may name other files")
            << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>")
            << false;
        QTest::newRow("a pixmap in C")
            << QByteArray("/* XPM */ static char*a[]={\"1 1 1 1\"};") << false;
    }

    void whatIsHostileIsNeitherHungOnNorDecoded()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, isKnown);
        QCOMPARE(pictureInfo(bytes).has_value(), isKnown);
        const QImage image = decodedPicture(bytes, {100, 100});
        QVERIFY(image.width() <= 100); // what is cut short may give what is left of it
        PictureCache cache(nullptr);
        QSignalSpy arrived(&cache, &PictureCache::arrived);
        auto found = cache.find({u"x"_s, bytes, {100, 100}, true});
        if (found.state == PictureCache::State::Coming) {
            QVERIFY(arrived.wait());
            found = cache.find({u"x"_s, bytes, {100, 100}, true});
        }
        QCOMPARE(found.state,
                 image.width() > 0 ? PictureCache::State::Shown : PictureCache::State::Broken);
    }

    void aLargePictureComesLaterAndInItsSize()
    {
        const QByteArray bytes = encoded({1600, 1200}, "JPG");
        PictureCache cache(nullptr);
        QSignalSpy arrived(&cache, &PictureCache::arrived);
        QCOMPARE(cache.find({u"x"_s, bytes, {400, 300}, true}).state, PictureCache::State::Coming);
        QVERIFY(arrived.wait());
        QCOMPARE(cache.find({u"x"_s, bytes, {400, 300}, true}).image->size(), QSize(400, 300));
        // In another size it need not be waited for.
        QCOMPARE(cache.find({u"x"_s, bytes, {200, 150}, true}).image->size(), QSize(200, 150));
    }

    void whatWasSeenIsThereAtOnceAndTakesLittle_data()
    {
        QTest::addColumn<QImage::Format>("format");
        QTest::addColumn<int>("alpha");
        QTest::newRow("a picture") << QImage::Format_RGB32 << 255;
        QTest::newRow("one that shines through") << QImage::Format_ARGB32 << 100;
        QTest::newRow("one that could, and does not") << QImage::Format_ARGB32 << 255;
    }

    void whatWasSeenIsThereAtOnceAndTakesLittle()
    {
        QFETCH(QImage::Format, format);
        QFETCH(int, alpha);
        constexpr int count = 12;
        constexpr QSize size(700, 500);
        const auto colour = [alpha](int number) {
            return QColor(20 * number, 250 - 20 * number, 100, alpha);
        };
        const auto request = [&](int number) {
            QImage image(size, format);
            image.fill(colour(number));
            return PictureCache::Request {QString::number(number), encoded(image, "PNG"), size,
                                          true};
        };
        PictureCache cache(nullptr);
        QSignalSpy arrived(&cache, &PictureCache::arrived);
        for (int number = 0; number < count; ++number) {
            QCOMPARE(cache.find(request(number)).state, PictureCache::State::Coming);
            QVERIFY(arrived.wait());
            QCOMPARE(cache.find(request(number)).image->size(), size);
        }
        QVERIFY(cache.keptBytes() < 6'000'000); // two pages of two of them, and copies
        const auto again = cache.find(request(0));
        QCOMPARE(again.state, PictureCache::State::Shown);
        const QColor shown = again.image->pixelColor(again.image->rect().center());
        QVERIFY(qAbs(shown.red() - colour(0).red()) < 6 && qAbs(shown.green() - 250) < 6);
        QVERIFY(qAbs(shown.alpha() - alpha) < 3);
        QVERIFY(again.image->width() < size.width());
        QVERIFY(arrived.wait()); // when nobody goes on
        cache.find(request(0));
        QVERIFY(arrived.wait());
        QCOMPARE(cache.find(request(0)).image->size(), size);
        cache.clear();
        QCOMPARE(cache.keptBytes(), 0);
        QCOMPARE(cache.find(request(0)).state, PictureCache::State::Coming);
        QVERIFY(arrived.wait());
    }

    void whatIsDecodedAfterTheLockIsDropped()
    {
        const QByteArray bytes = encoded({1600, 1200}, "JPG");
        PictureCache cache(nullptr);
        QSignalSpy arrived(&cache, &PictureCache::arrived);
        cache.find({u"x"_s, bytes, {400, 300}, true});
        cache.clear();
        cache.find({u"y"_s, bytes, {400, 300}, true});
        QVERIFY(arrived.wait());
        QCOMPARE(cache.find({u"y"_s, bytes, {400, 300}, true}).state, PictureCache::State::Shown);
        QCOMPARE(cache.find({u"x"_s, bytes, {400, 300}, true}).state, PictureCache::State::Coming);
        QVERIFY(arrived.wait());
    }

    void theNumberBeforeANameIsNotShown()
    {
        QCOMPARE(shownAttachmentName(u"12__#$!@%!#__a.png"_s), u"a.png"_s);
        QCOMPARE(shownAttachmentName(u"1__a.png"_s), u"1__a.png"_s);
        QCOMPARE(shownAttachmentName(u"1__#$!@%!#__"_s), u"1__#$!@%!#__"_s);
    }
};

QTEST_MAIN(TestPictureFile)
#include "tst_picturefile.moc"
