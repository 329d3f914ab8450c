#include "document/passwordstrength.h"

#include <QTest>

using namespace quorvane;
using namespace Qt::StringLiterals;
using Level = PasswordStrength::Level;

class TestPasswordStrength : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatReachesTheKeyIsJudged_data();
    void whatReachesTheKeyIsJudged();
    void whatDoesNotReachTheKeyChangesNothing();
    void theWordsSayHowLongAndWhatIsLost_data();
    void theWordsSayHowLongAndWhatIsLost();
};

void TestPasswordStrength::whatReachesTheKeyIsJudged_data()
{
    QTest::addColumn<QString>("password");
    QTest::addColumn<Level>("level");
    QTest::addColumn<int>("characters");
    QTest::addColumn<int>("protecting");
    const auto row = [](const char *name, const QString &password, Level level, int characters,
                        int protecting) {
        QTest::newRow(name) << password << level << characters << protecting;
    };
    row("nothing", u""_s, Level::TooShort, 0, 0);
    row("five are too few however they are", u"9!Kq#"_s, Level::TooShort, 5, 5);
    row("a word of every list", u"password1"_s, Level::VeryWeak, 9, 9);
    row("six at random", u"zx9!Kq"_s, Level::Weak, 6, 6);
    row("eight at random", u"zx9!Kq7#"_s, Level::Fair, 8, 8);
    row("twelve at random", u"zx9!Kq2#pL0w"_s, Level::Strong, 12, 12);
    row("five words", u"correct horse battery staple cloud"_s, Level::VeryStrong, 34, 34);
    row("six Cyrillic letters are three", u"жщюфыэ"_s, Level::VeryWeak, 6, 3);
    row("six Chinese ones are two", u"密码锁箱钥匙"_s, Level::VeryWeak, 6, 2);
    row("three pictures are one", u"\U0001F511\U0001F512\U0001F513"_s, Level::VeryWeak, 3, 1);
    row("a letter that is cut counts for nothing", u"größer"_s, Level::VeryWeak, 6, 4);
    row("an accent of its own stays with its letter", u"e\u0301e\u0301e\u0301"_s, Level::VeryWeak,
        3, 2);
    row("a password as long as a book", QString(30000, u'a') + u"zx9!"_s, Level::VeryWeak, 30004,
        30004);
    row("a zero does not end it", u"\0zx9!Kq2#pL0w"_s, Level::VeryStrong, 13, 13);
    row("half a pair is no letter of one byte", QString(8, QChar(0xd800)), Level::VeryWeak, 8, 2);
}

void TestPasswordStrength::whatReachesTheKeyIsJudged()
{
    QFETCH(QString, password);
    const PasswordStrength strength = PasswordStrength::of(password);
    QTEST(int(strength.characters), "characters");
    QTEST(int(strength.protectingCharacters), "protecting");
    QTEST(strength.level, "level");
}

void TestPasswordStrength::whatDoesNotReachTheKeyChangesNothing()
{
    const auto seconds = [](const QString &password) {
        return PasswordStrength::of(password).secondsToGuess;
    };
    QCOMPARE(seconds(u"пароль"_s), seconds(u"парqzя"_s)); // of the last three, none does
    QVERIFY(seconds(u"пароль"_s) < seconds(u"парольпароль"_s));
}

void TestPasswordStrength::theWordsSayHowLongAndWhatIsLost_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("words");
    QTest::newRow("an instant") << 0.2 << u"less than a second."_s;
    QTest::newRow("one") << 1.2 << u"about 1 second."_s;
    QTest::newRow("not 60 seconds") << 59.9 << u"about 1 minute."_s;
    QTest::newRow("hours") << 3.2 * 3600 << u"about 3 hours."_s;
    QTest::newRow("months") << 86400.0 * 92 << u"about 3 months."_s;
    QTest::newRow("a thousand years") << 86400 * 365.25 * 1001 << u"about 1 thousand years."_s;
    QTest::newRow("for ever") << 1e300 << u"more than a million years."_s;
}

void TestPasswordStrength::theWordsSayHowLongAndWhatIsLost()
{
    QFETCH(double, seconds);
    QFETCH(QString, words);
    PasswordStrength strength {Level::Fair, seconds, 6, 6};
    QCOMPARE(strength.text(),
             u"Fair. Someone who has the file and tries a million passwords a second needs "_s
                 + words);
    strength.protectingCharacters = 3;
    QVERIFY(strength.text().startsWith(u"Only the first 3 characters protect the document: "_s));
    QVERIFY(strength.text().endsWith(words));
}

QTEST_APPLESS_MAIN(TestPasswordStrength)
#include "tst_passwordstrength.moc"
