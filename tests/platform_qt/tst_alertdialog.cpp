#include "platform_qt/alertdialog.h"
#include "platform_qt/dialogsheet.h"

#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>

#include <algorithm>

using namespace quorvane;
using namespace Qt::StringLiterals;

class AlertDialogTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void buttonsAnswerInTheOrderInWhichTheyWereAdded_data();
    void buttonsAnswerInTheOrderInWhichTheyWereAdded();
    void textsAreShownAsTheyAre();
    void aLongTextKeepsTheDialogNarrow();
    void anEndedSheetTakesItsOwnQuestionsAlong();
    void aSheetThatDiesWhileItIsUpAnswers();
};

namespace {

constexpr int nothing = -1;

int resultOf(QDialog &dialog, const std::function<void()> &act)
{
    int result = nothing;
    QObject::connect(&dialog, &QDialog::finished, [&result](int code) { result = code; });
    dialog.open();
    act();
    return result;
}

QList<QPushButton *> buttonsOf(const QDialog &dialog)
{
    QList<QPushButton *> buttons = dialog.findChildren<QPushButton *>();
    std::sort(buttons.begin(), buttons.end(),
              [](const QPushButton *a, const QPushButton *b) { return a->x() < b->x(); });
    return buttons;
}

} // namespace

void AlertDialogTest::buttonsAnswerInTheOrderInWhichTheyWereAdded_data()
{
    QTest::addColumn<QStringList>("titles");
    QTest::addColumn<int>("escape");
    QTest::newRow("an only button takes Escape") << QStringList {u"Retry"_s} << 1000;
    QTest::newRow("Cancel first") << QStringList {u"Cancel"_s, u"Export"_s} << 1000;
    QTest::newRow("Cancel last") << QStringList {u"OK"_s, u"Cancel"_s} << 1001;
    QTest::newRow("Cancel third") << QStringList {u"Save"_s, u"Delete"_s, u"Cancel"_s} << 1002;
    QTest::newRow("no Cancel: Escape does nothing") << QStringList {u"Yes"_s, u"No"_s} << nothing;
    QTest::newRow("an ampersand is one") << QStringList {u"Lock & Close"_s, u"Cancel"_s} << 1001;
}

void AlertDialogTest::buttonsAnswerInTheOrderInWhichTheyWereAdded()
{
    QFETCH(QStringList, titles);
    QFETCH(int, escape);
    const NSAlert alert {u"Message"_s, u"More"_s, titles, NSAlertStyle::Critical};
    for (int index = 0; index < titles.size(); ++index) {
        AlertDialog dialog(alert);
        const int result = resultOf(dialog, [&] {
            QCoreApplication::processEvents(); // the layout
            const QList<QPushButton *> buttons = buttonsOf(dialog);
            QCOMPARE(buttons.size(), titles.size());
            QCOMPARE(buttons[index]->text().replace(u"&&"_s, u"&"_s), titles[index]);
            QCOMPARE(buttons[index]->isDefault(), index == 0);
            buttons[index]->click();
        });
        QCOMPARE(result, 1000 + index);
    }
    AlertDialog keys(alert);
    QCOMPARE(resultOf(keys, [&] { QTest::keyClick(&keys, Qt::Key_Return); }), 1000);
    AlertDialog escaped(alert);
    QCOMPARE(resultOf(escaped, [&] { QTest::keyClick(&escaped, Qt::Key_Escape); }), escape);
    QCOMPARE(escaped.isVisible(), escape == nothing);
    AlertDialog closed(alert);
    QCOMPARE(resultOf(closed, [&] { closed.close(); }), escape);
    QCOMPARE(closed.isVisible(), escape == nothing);
}

void AlertDialogTest::textsAreShownAsTheyAre()
{
    const AlertDialog dialog(
        {u"<b>notes</b>"_s, u"a & b\nsecond line"_s, {u"OK"_s}, NSAlertStyle::Informational});
    const auto *message = dialog.findChild<QLabel *>(u"messageText"_s);
    const auto *informative = dialog.findChild<QLabel *>(u"informativeText"_s);
    QCOMPARE(message->text(), u"<b>notes</b>"_s);
    QCOMPARE(message->textFormat(), Qt::PlainText);
    QVERIFY(message->font().bold());
    QCOMPARE(informative->text(), u"a & b\nsecond line"_s);
    QVERIFY(informative->textInteractionFlags().testFlag(Qt::TextSelectableByMouse));
    QCOMPARE(dialog.accessibleName(), u"<b>notes</b>"_s);
    QCOMPARE(dialog.accessibleDescription(), u"a & b\nsecond line"_s);
    const AlertDialog terse({u"Message"_s, {}, {u"OK"_s}});
    QVERIFY(terse.findChild<QLabel *>(u"informativeText"_s) == nullptr);
}

void AlertDialogTest::aLongTextKeepsTheDialogNarrow()
{
    const QString path = u"/home/user/"_s + QString(200, u'x');
    AlertDialog dialog({path, u"word "_s.repeated(100), {u"OK"_s}});
    dialog.open();
    QVERIFY2(dialog.width() < 640, qPrintable(QString::number(dialog.width())));
    for (const QLabel *label : dialog.findChildren<QLabel *>()) {
        QVERIFY(label->height() >= label->heightForWidth(label->width()));
    }
    QCOMPARE(dialog.findChild<QLabel *>(u"messageText"_s)->accessibleName(), path);
    const QString folders = u"/folder-name"_s.repeated(20);
    const AlertDialog copied({folders, {}, {u"OK"_s}});
    QCOMPARE(copied.findChild<QLabel *>(u"messageText"_s)->text(), folders);
}

void AlertDialogTest::anEndedSheetTakesItsOwnQuestionsAlong()
{
    QWidget host;
    host.show();
    auto *dialog = new QDialog(&host);
    auto *sheet = new DialogSheet(*dialog);
    QList<int> codes;
    sheet->beginSheet([&codes](int code) { codes.append(code); });
    AlertDialog question({u"Replace?"_s, {}, {u"Cancel"_s, u"Replace"_s}}, dialog);
    QSignalSpy answered(&question, &QDialog::finished);
    question.open();
    QVERIFY(question.isVisible());
    sheet->endSheet(modalResponseStop);
    QCOMPARE(codes, QList<int> {modalResponseStop});
    QCOMPARE(answered.first().first().toInt(), int(QDialog::Rejected));
    QVERIFY(!question.isVisible() && !dialog->isVisible());
    sheet->endSheet(5);
    QCOMPARE(codes.size(), 1);
    question.setParent(nullptr);
}

void AlertDialogTest::aSheetThatDiesWhileItIsUpAnswers()
{
    QWidget host;
    host.show();
    auto *dialog = new QDialog(&host);
    auto *sheet = new DialogSheet(*dialog);
    QList<int> codes;
    sheet->beginSheet([&codes](int code) { codes.append(code); });
    delete dialog;
    QCOMPARE(codes, QList<int> {modalResponseStop});
}

QTEST_MAIN(AlertDialogTest)
#include "tst_alertdialog.moc"
