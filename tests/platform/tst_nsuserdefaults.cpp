#include "support/inmemorydefaults.h"

#include <QSignalSpy>
#include <QTest>

#include <limits>

using namespace quorvane;
using namespace Qt::StringLiterals;

class NSUserDefaultsTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aValueReadsAsEachType_data();
    void aValueReadsAsEachType();
    void whatIsStoredHidesWhatIsRegistered();
    void changedIsToldOnlyWhereTheAnswerDiffers_data();
    void changedIsToldOnlyWhereTheAnswerDiffers();
};

namespace {
constexpr auto key = "key"_L1;
constexpr qint64 least = std::numeric_limits<qint64>::min();
constexpr qint64 greatest = std::numeric_limits<qint64>::max();
} // namespace

void NSUserDefaultsTest::aValueReadsAsEachType_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("asBool");
    QTest::addColumn<qint64>("asInteger");
    QTest::addColumn<double>("asDouble");
    QTest::addColumn<QString>("asString");
    const auto row = [](const char *name, const QVariant &value, bool boolean, qint64 integer,
                        double real, const QString &text) {
        QTest::newRow(name) << value << boolean << integer << real << text;
    };
    row("nothing", QVariant(), false, 0, 0.0, u""_s);
    row("a true boolean", true, true, 1, 1.0, u"1"_s);
    row("a false boolean", false, false, 0, 0.0, u"0"_s);
    row("an integer", 120, true, 120, 120.0, u"120"_s);
    row("a fraction is cut towards zero", -2.75, true, -2, -2.75, u"-2.75"_s);
    row("a fraction below one is still true", 0.5, true, 0, 0.5, u"0.5"_s);
    row("a double above the integers", 1e30, true, greatest, 1e30, u"1e+30"_s);
    row("a double below the integers", -1e30, true, least, -1e30, u"-1e+30"_s);
    row("not a number", std::numeric_limits<double>::quiet_NaN(), true, 0,
        std::numeric_limits<double>::quiet_NaN(), u"nan"_s);
    row("an unsigned above the integers", std::numeric_limits<quint64>::max(), true, greatest,
        18446744073709551615.0, u"18446744073709551615"_s);
    row("the text true", u"true"_s, true, 0, 0.0, u"true"_s);
    row("the text YES", u"YES"_s, true, 0, 0.0, u"YES"_s);
    row("the text false", u"false"_s, false, 0, 0.0, u"false"_s);
    row("the text NO", u"NO"_s, false, 0, 0.0, u"NO"_s);
    row("the text 1", u"1"_s, true, 1, 1.0, u"1"_s);
    row("the text 0", u"0"_s, false, 0, 0.0, u"0"_s);
    row("a text with a number and a unit", u" 12 minutes"_s, true, 12, 12.0, u" 12 minutes"_s);
    row("a text with a fraction", u"-1.5e1x"_s, true, -1, -15.0, u"-1.5e1x"_s);
    row("a text with a broken exponent", u"3e"_s, true, 3, 3.0, u"3e"_s);
    row("a text with a number too great", u"99999999999999999999"_s, true, greatest, 1e20,
        u"99999999999999999999"_s);
    row("a text with a number too small", u"-99999999999999999999"_s, true, least, -1e20,
        u"-99999999999999999999"_s);
    row("a text that is no number", u"never"_s, false, 0, 0.0, u"never"_s);
    row("a lone sign", u"-"_s, false, 0, 0.0, u"-"_s);
    row("an empty text", u""_s, false, 0, 0.0, u""_s);
    row("bytes are no number and no text", QByteArray("12"), false, 0, 0.0, u""_s);
    row("a list is no number and no text", QStringList {u"1"_s}, false, 0, 0.0, u""_s);
}

void NSUserDefaultsTest::aValueReadsAsEachType()
{
    QFETCH(QVariant, value);
    QFETCH(double, asDouble);
    InMemoryDefaults defaults;
    defaults.setObject(key, value);
    QTEST(defaults.boolForKey(key), "asBool");
    QTEST(defaults.integerForKey(key), "asInteger");
    QTEST(defaults.stringForKey(key), "asString");
    QVERIFY(qIsNaN(asDouble) ? qIsNaN(defaults.doubleForKey(key))
                             : qFuzzyCompare(1.0 + asDouble, 1.0 + defaults.doubleForKey(key)));
}

void NSUserDefaultsTest::whatIsStoredHidesWhatIsRegistered()
{
    static constexpr Key<qint64> interval {"interval"_L1, 120};
    InMemoryDefaults defaults;
    defaults.registerDefaults({{interval.name, interval.registered}});
    defaults.registerDefaults({{u"other"_s, u"kept"_s}});
    QCOMPARE(defaults.value(interval), 120);
    defaults.setObject(interval.name, 30);
    QCOMPARE(defaults.value(interval), 30);
    defaults.setObject(interval.name, QVariant());
    QCOMPARE(defaults.value(interval), 120);
    QVERIFY(defaults.values.isEmpty());
    QCOMPARE(defaults.stringForKey("other"_L1), u"kept"_s);
    QVERIFY(!defaults.objectForKey("absent"_L1).isValid());
}

void NSUserDefaultsTest::changedIsToldOnlyWhereTheAnswerDiffers_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");
    QTest::addColumn<bool>("told");
    QTest::newRow("another number") << QVariant(1) << QVariant(2) << true;
    QTest::newRow("the same number") << QVariant(1) << QVariant(1) << false;
    QTest::newRow("the same number as text") << QVariant(u"1"_s) << QVariant(1) << false;
    QTest::newRow("the same boolean as text") << QVariant(u"true"_s) << QVariant(true) << false;
    QTest::newRow("a first value") << QVariant() << QVariant(2) << true;
    QTest::newRow("the registered value for the first time") << QVariant() << QVariant(7) << false;
    QTest::newRow("taken away") << QVariant(1) << QVariant() << true;
    QTest::newRow("taken away, as registered") << QVariant(7) << QVariant() << false;
    QTest::newRow("other bytes") << QVariant(QByteArray("a")) << QVariant(QByteArray("b")) << true;
    QTest::newRow("text in place of the same bytes")
        << QVariant(QByteArray("a")) << QVariant(u"a"_s) << true;
}

void NSUserDefaultsTest::changedIsToldOnlyWhereTheAnswerDiffers()
{
    QFETCH(QVariant, before);
    QFETCH(QVariant, after);
    QFETCH(bool, told);
    InMemoryDefaults defaults;
    defaults.registerDefaults({{key, 7}});
    defaults.setObject(key, before);
    QSignalSpy spy(&defaults, &NSUserDefaults::changed);
    defaults.setObject(key, after);
    QCOMPARE(spy.count(), told ? 1 : 0);
    if (told) {
        QCOMPARE(spy.first().first().toString(), QString(key));
    }
}

QTEST_GUILESS_MAIN(NSUserDefaultsTest)
#include "tst_nsuserdefaults.moc"
