#include "editor/capslocknotice.h"
#include "editor/lockedpage.h"
#include "editor/passwordmeter.h"
#include "editor/passwordsheet.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>

using namespace Qt::StringLiterals;
using namespace quorvane;

namespace {

constexpr quint32 capsLock = 2;
constexpr quint32 numLock = 16;

QLineEdit *field(const QWidget &parent, const QString &name)
{
    for (QLineEdit *each : parent.findChildren<QLineEdit *>()) {
        if (each->accessibleName() == name) {
            return each;
        }
    }
    return nullptr;
}

void press(QWidget &widget, int key, quint32 state, const QString &text = QString())
{
    QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier, 0, 0, state, text);
    QCoreApplication::sendEvent(&widget, &event);
}

} // namespace

class TestPasswordSheet : public QObject
{
    Q_OBJECT

private slots:

    void theMeterJudgesWhatIsTypedAndTellsScreenReaders()
    {
        PasswordSheet sheet(PasswordSheet::Kind::Change, nullptr);
        sheet.beginSheet([](int) {});
        QLineEdit *inserted = field(sheet, u"New Password"_s);
        auto *meter = sheet.findChild<PasswordMeter *>();
        QCOMPARE(meter->text(), QString());
        const int height = sheet.height();
        QTest::keyClicks(inserted, u"password1"_s);
        QVERIFY(meter->text().startsWith(u"Very weak. "_s));
        QCOMPARE(inserted->accessibleDescription(), meter->text());
        QCOMPARE(field(sheet, u"Retype New Password"_s)->accessibleDescription(), QString());
        QCOMPARE(sheet.height(), height);
        sheet.setInserted(u"密码锁箱钥匙密码锁箱钥匙"_s);
        QVERIFY(meter->text().startsWith(u"Only the first 4 characters protect the document"_s));
        sheet.setInserted(u""_s);
        QCOMPARE(meter->text() + inserted->accessibleDescription(), QString());
    }

    void capsLockIsNoticedAtTheNextKey_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<quint32>("state");
        QTest::addColumn<bool>("on");
        QTest::newRow("a letter with it") << int(Qt::Key_A) << (capsLock | numLock) << true;
        QTest::newRow("a letter without") << int(Qt::Key_A) << numLock << false;
        QTest::newRow("the key itself puts it on") << int(Qt::Key_CapsLock) << quint32(0) << true;
        QTest::newRow("and takes it off") << int(Qt::Key_CapsLock) << capsLock << false;
    }

    void capsLockIsNoticedAtTheNextKey()
    {
        QFETCH(int, key);
        QFETCH(quint32, state);
        QFETCH(bool, on);
        PasswordSheet sheet(PasswordSheet::Kind::Mandatory, nullptr);
        LockedPage page(nullptr);
        sheet.show();
        page.show();
        const std::initializer_list<std::pair<QWidget *, QString>> places {
            {&sheet, u"Retype Password"_s}, {&page, u"Master Password"_s}};
        for (const auto &[place, name] : places) {
            QLineEdit *typed = field(*place, name);
            auto *notice = place->findChild<CapsLockNotice *>();
            press(*typed, Qt::Key_Shift, on ? 0 : capsLock); // the other way round at first
            QCOMPARE(notice->isVisible(), !on);
            press(*typed, key, state);
            QCOMPARE(notice->isVisible(), on);
            QCOMPARE(typed->accessibleDescription(), on ? u"Caps Lock is on."_s : QString());
        }
    }

    void aPastedPasswordLosesOnlyTheEndOfItsLine()
    {
        PasswordSheet sheet(PasswordSheet::Kind::Insert, nullptr);
        sheet.show();
        QSignalSpy edited(&sheet, &PasswordSheet::insertedEdited);
        QGuiApplication::clipboard()->setText(u" from a manager \r\n"_s);
        QLineEdit *inserted = field(sheet, u"New Password"_s);
        inserted->paste();
        QCOMPARE(inserted->text(), u" from a manager "_s);
        QCOMPARE(edited.last().first().toString(), u" from a manager "_s);
    }

    void whatWasShownIsHiddenAgainNextTimeButNotAtARetry()
    {
        PasswordSheet sheet(PasswordSheet::Kind::Mandatory, nullptr);
        auto *toggle = sheet.findChild<QCheckBox *>();
        QLineEdit *inserted = field(sheet, u"Password"_s);
        const auto isShownNextTime = [&] {
            sheet.endSheet(0);
            sheet.beginSheet([](int) {});
            return toggle->isChecked() && inserted->echoMode() == QLineEdit::Normal;
        };
        sheet.beginSheet([](int) {});
        QTRY_VERIFY(inserted->hasFocus());
        toggle->click();
        QTest::keyClicks(inserted, u"abc"_s);
        QVERIFY(isShownNextTime());
        sheet.setInserted(u""_s);
        QVERIFY(!isShownNextTime());
        QCOMPARE(inserted->echoMode(), QLineEdit::Password);
    }
};

QTEST_MAIN(TestPasswordSheet)
#include "tst_passwordsheet.moc"
