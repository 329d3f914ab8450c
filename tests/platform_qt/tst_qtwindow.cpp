#include "platform_qt/framecoordinates.h"
#include "platform_qt/qtmodalalerts.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qtwindow.h"
#include "support/manualqueue.h"
#include "support/scriptedsheet.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

#include <cmath>
#include <limits>
#include <memory>

Q_DECLARE_METATYPE(quorvane::NSRect)

using namespace quorvane;
using namespace Qt::StringLiterals;

class QtWindowTest final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void framesAreCountedFromTheBottomLeft_data();
    void framesAreCountedFromTheBottomLeft();
    void framesFromAFileAreMadePossible_data();
    void framesFromAFileAreMadePossible();
    void theTitleBarStaysOnAScreen_data();
    void theTitleBarStaysOnAScreen();
    void theFrameThatWasSetIsAnsweredAtOnceAndReached_data();
    void theFrameThatWasSetIsAnsweredAtOnceAndReached();
    void aZeroFrameIsLimitedToTheMinimumSize();
    void theWindowShrinksStaysSmallAndGrowsBack();
    void aMaximisedWindowAnswersTheFrameItGoesBackTo();
    void aStarInTheTitleIsNotTheEditedMark();
    void alertsAnswerOneAfterTheOther();
    void closingEndsTheSheetFirstAndForgetsTheOthers();
    void theUsersCloseIsPassedOn();
    void anAlertOfTheProgramBlocksAllWindows();

private:
    static QDialog *alertOnScreen();
};

namespace {
constexpr double noMaximum = std::numeric_limits<float>::max();
}

QDialog *QtWindowTest::alertOnScreen()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == "alert"_L1 && widget->isVisible()) {
            return qobject_cast<QDialog *>(widget);
        }
    }
    return nullptr;
}

void QtWindowTest::framesAreCountedFromTheBottomLeft_data()
{
    QTest::addColumn<QRect>("primary");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<NSRect>("frame");
    const QRect screen(0, 0, 1280, 800);
    QTest::newRow("the whole screen") << screen << screen << NSRect {0, 0, 1280, 800};
    QTest::newRow("the top left") << screen << QRect(0, 0, 100, 50) << NSRect {0, 750, 100, 50};
    QTest::newRow("the bottom left") << screen << QRect(0, 750, 100, 50) << NSRect {0, 0, 100, 50};
    QTest::newRow("a screen above") << screen << QRect(5, -600, 10, 20) << NSRect {5, 1380, 10, 20};
    QTest::newRow("a main screen that is not at the origin")
        << QRect(1920, 100, 1280, 800) << QRect(1930, 110, 300, 200) << NSRect {10, 590, 300, 200};
}

void QtWindowTest::framesAreCountedFromTheBottomLeft()
{
    QFETCH(QRect, primary);
    QFETCH(QRect, rect);
    QFETCH(NSRect, frame);
    QVERIFY(frameOf(rect, primary) == frame);
    QCOMPARE(screenRectOf(frame, primary), rect);
}

void QtWindowTest::framesFromAFileAreMadePossible_data()
{
    QTest::addColumn<NSRect>("frame");
    QTest::addColumn<QRect>("rect");
    const double infinite = std::numeric_limits<double>::infinity();
    QTest::newRow("fractions are rounded")
        << NSRect {0.4, 10.6, 99.5, 50} << QRect(0, 739, 100, 50);
    QTest::newRow("no numbers") << NSRect {std::nan(""), std::nan(""), std::nan(""), std::nan("")}
                                << QRect(0, 800, 0, 0);
    QTest::newRow("negative sizes") << NSRect {0, 0, -5, -5} << QRect(0, 800, 0, 0);
    QTest::newRow("no end") << NSRect {-infinite, infinite, infinite, infinite}
                            << QRect(-1000000, 800 - 2000000, 1000000, 1000000);
}

void QtWindowTest::framesFromAFileAreMadePossible()
{
    QFETCH(NSRect, frame);
    QTEST(screenRectOf(frame, QRect(0, 0, 1280, 800)), "rect");
}

void QtWindowTest::theTitleBarStaysOnAScreen_data()
{
    QTest::addColumn<QRect>("frame");
    QTest::addColumn<QRect>("kept");
    QTest::newRow("inside: as it is") << QRect(10, 40, 300, 200) << QRect(10, 40, 300, 200);
    QTest::newRow("across two screens: as it is")
        << QRect(1200, 50, 300, 200) << QRect(1200, 50, 300, 200);
    QTest::newRow("the lower part outside: as it is")
        << QRect(10, 700, 300, 200) << QRect(10, 700, 300, 200);
    QTest::newRow("under the panel") << QRect(10, 0, 300, 200) << QRect(10, 30, 300, 200);
    QTest::newRow("title bar below") << QRect(10, 790, 300, 200) << QRect(10, 600, 300, 200);
    QTest::newRow("a screen that is gone")
        << QRect(5000, 5000, 300, 200) << QRect(980, 600, 300, 200);
    QTest::newRow("half off the left") << QRect(-100, 50, 300, 200) << QRect(0, 50, 300, 200);
    QTest::newRow("too large") << QRect(-50, -50, 5000, 4000) << QRect(0, 30, 1280, 770);
    QTest::newRow("too high only") << QRect(10, 30, 300, 4000) << QRect(10, 30, 300, 770);
}

void QtWindowTest::theTitleBarStaysOnAScreen()
{
    QFETCH(QRect, frame);
    const QList<QRect> screens {QRect(0, 30, 1280, 770), QRect(1280, 0, 800, 600)};
    QTEST(keptOnScreens(frame, screens), "kept");
    QCOMPARE(keptOnScreens(frame, {}), frame);
}

void QtWindowTest::theFrameThatWasSetIsAnsweredAtOnceAndReached_data()
{
    QTest::addColumn<bool>("animate");
    QTest::addColumn<bool>("shown");
    QTest::newRow("at once") << false << true;
    QTest::newRow("animated") << true << true;
    QTest::newRow("before the window is shown") << true << false;
}

void QtWindowTest::theFrameThatWasSetIsAnsweredAtOnceAndReached()
{
    QFETCH(bool, animate);
    QFETCH(bool, shown);
    QtOperationQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    if (shown) {
        widget.show();
        QVERIFY(QTest::qWaitForWindowExposed(&widget));
    }
    const NSRect wanted {100, 150, 420, 310};
    window.setFrame({20, 20, 200, 200}, animate);
    window.setFrame(wanted, animate);
    QVERIFY(window.frame() == wanted);
    widget.show();
    const QRect primary = QGuiApplication::primaryScreen()->geometry();
    QTRY_VERIFY(frameOf(widget.frameGeometry(), primary) == wanted);
    QVERIFY(window.frame() == wanted);
}

void QtWindowTest::aZeroFrameIsLimitedToTheMinimumSize()
{
    QtOperationQueue queue;
    QWidget widget;
    widget.setMinimumSize(300, 180);
    QtWindow window(widget, queue);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    window.setFrame({}, false);
    QVERIFY(window.frame().width == window.minSize().width);
    QVERIFY(window.frame().height == window.minSize().height);
    QCOMPARE(widget.size(), QSize(300, 180));
}

void QtWindowTest::theWindowShrinksStaysSmallAndGrowsBack()
{
    QtOperationQueue queue;
    QWidget widget;
    widget.setMinimumSize(300, 180);
    QtWindow window(widget, queue);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    const NSRect large {50, 60, 600, 500};
    window.setFrame(large, false);
    const NSSize least = window.minSize();
    // All in one turn, as a document locks.
    window.setFrame({50, 60 + 500 - least.height, least.width, least.height}, true);
    window.setMaxSize(least);
    window.setShowsResizeIndicator(false);
    window.center();
    const QRect area = widget.screen()->availableGeometry();
    QTRY_COMPARE(widget.size(), QSize(300, 180));
    QTRY_COMPARE(widget.maximumSize(), QSize(300, 180));
    const QRect centred = centredIn(widget.frameGeometry().size(), area);
    QTRY_COMPARE(widget.frameGeometry(), centred);
    widget.resize(700, 700);
    QCOMPARE(widget.size(), QSize(300, 180));

    window.setMaxSize({noMaximum, noMaximum});
    window.setFrame(large, true);
    QTRY_VERIFY(widget.frameGeometry().height() == 500 && widget.frameGeometry().width() == 600);
    QVERIFY(window.frame() == large);
    QCOMPARE(widget.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
}

void QtWindowTest::aMaximisedWindowAnswersTheFrameItGoesBackTo()
{
    QtOperationQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    widget.setGeometry(50, 60, 400, 300);
    widget.showMaximized();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QCOMPARE(window.frame().width, 400 + widget.frameGeometry().width() - widget.width());
    const NSRect wanted {30, 40, 500, 350};
    window.setFrame(wanted, true);
    QVERIFY(window.frame() == wanted);
    const QRect primary = QGuiApplication::primaryScreen()->geometry();
    QTRY_VERIFY(!widget.isMaximized() && frameOf(widget.frameGeometry(), primary) == wanted);
}

void QtWindowTest::aStarInTheTitleIsNotTheEditedMark()
{
    ManualQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    window.setTitle(u"a[*]b"_s);
    window.setDocumentEdited(true);
    QCOMPARE(widget.windowTitle(), u"a[*][*]b[*]"_s);
    QVERIFY(widget.isWindowModified());
    widget.show();
    QTRY_COMPARE(widget.windowHandle()->title().left(6), u"a[*]b*"_s);
}

void QtWindowTest::alertsAnswerOneAfterTheOther()
{
    ManualQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    window.makeKeyAndOrderFront();
    QList<AlertAnswer> answers;
    const auto keep = [&answers](AlertAnswer answer) {
        answers.append(answer);
    };
    window.beginAlert({u"first"_s, {}, {u"OK"_s, u"Cancel"_s}}, keep);
    window.beginAlert({u"second"_s, {}, {u"OK"_s}}, keep);
    QDialog *first = alertOnScreen();
    QCOMPARE(first->accessibleName(), u"first"_s);
    QCOMPARE(first->windowModality(), Qt::WindowModal);
    QTest::keyClick(first, Qt::Key_Escape);
    QCOMPARE(answers, QList<AlertAnswer> {AlertAnswer::Second});
    QVERIFY(window.attachedSheet() == nullptr && alertOnScreen() == nullptr);
    queue.runAll();
    QCOMPARE(alertOnScreen()->accessibleName(), u"second"_s);
    window.endSheet(*window.attachedSheet(), modalResponseStop);
    QCOMPARE(answers.last(), AlertAnswer::First);
    QTRY_VERIFY(widget.findChildren<QDialog *>().isEmpty());
}

void QtWindowTest::closingEndsTheSheetFirstAndForgetsTheOthers()
{
    ManualQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    window.makeKeyAndOrderFront();
    QList<AlertAnswer> answers;
    const auto keep = [&answers](AlertAnswer answer) {
        answers.append(answer);
    };
    window.beginAlert({u"first"_s, {}, {u"OK"_s}}, keep);
    window.beginAlert({u"second"_s, {}, {u"OK"_s}}, keep);
    bool asked = false;
    window.setCloseRequested([&asked] { asked = true; });
    window.close();
    QCOMPARE(answers, QList<AlertAnswer> {AlertAnswer::First});
    queue.runAll();
    QVERIFY(!widget.isVisible() && alertOnScreen() == nullptr);
    QVERIFY(!asked);
}

void QtWindowTest::theUsersCloseIsPassedOn()
{
    ManualQueue queue;
    QWidget widget;
    QtWindow window(widget, queue);
    widget.show();
    int asked = 0;
    window.setCloseRequested([&asked] { ++asked; });
    QVERIFY(!widget.close());
    QCOMPARE(asked, 1);
    QVERIFY(widget.isVisible());
}

void QtWindowTest::anAlertOfTheProgramBlocksAllWindows()
{
    ManualQueue queue;
    QList<AlertAnswer> answers;
    QtModalAlerts alerts(queue);
    alerts.runModal({u"first"_s, {}, {u"OK"_s}},
                    [&answers](AlertAnswer answer) { answers.append(answer); });
    alerts.runModal({u"never up"_s, {}, {u"OK"_s}}, nullptr);
    QVERIFY(answers.isEmpty());
    QCOMPARE(alertOnScreen()->windowModality(), Qt::ApplicationModal);
    QTest::keyClick(alertOnScreen(), Qt::Key_Return);
    QCOMPARE(answers, QList<AlertAnswer> {AlertAnswer::First});
}

QTEST_MAIN(QtWindowTest)
#include "tst_qtwindow.moc"
