#include "platform_qt/framecoordinates.h"
#include "platform_qt/qtmodalalerts.h"
#include "platform_qt/qtoperationqueue.h"
#include "platform_qt/qtwindow.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>

#include <limits>
#include <memory>

using namespace quorvane;
using namespace Qt::StringLiterals;

/// What only a real window system with a window manager shows; input comes from outside.
class WindowsX11Test final : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void aBlockedWindowTakesNoInputAndPutsItsSheetForward();
    void anAlertOfTheProgramComesForwardAgain();
    void aWindowThatBecomesKeySaysSoOnlyWithoutASheet();
    void lockingAndUnlockingReachesTheExactFrames_data();
    void lockingAndUnlockingReachesTheExactFrames();
    void aFrameSetBeforeTheWindowIsShownIsReached();

private:
    void showWindow();
    bool isAt(const NSRect &frame) const;
    static QDialog *alertOnScreen();
    static void clickAt(const QPoint &place);
    static void key(const QString &name);
    static bool pressed(const QString &name);
    static void xdotool(const QStringList &arguments);

    QtOperationQueue m_queue;
    std::unique_ptr<QMainWindow> m_widget;
    std::unique_ptr<QtWindow> m_window;
    QLineEdit *m_field = nullptr;
};

namespace {
constexpr double noMaximum = std::numeric_limits<float>::max();
constexpr QSize leastSize(380, 200);
} // namespace

void WindowsX11Test::init()
{
    m_widget = std::make_unique<QMainWindow>();
    m_field = new QLineEdit;
    m_widget->setCentralWidget(m_field);
    m_widget->setMinimumSize(leastSize);
    m_window = std::make_unique<QtWindow>(*m_widget, m_queue);
}

void WindowsX11Test::cleanup()
{
    m_window.reset();
    m_widget.reset();
}

void WindowsX11Test::showWindow()
{
    const NSRect frame {100, 100, 900, 600};
    m_window->makeKeyAndOrderFront();
    QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));
    m_window->setFrame(frame, false);
    QTRY_VERIFY(isAt(frame));
}

bool WindowsX11Test::isAt(const NSRect &frame) const
{
    return frameOf(m_widget->frameGeometry(), m_widget->screen()->geometry()) == frame;
}

QDialog *WindowsX11Test::alertOnScreen()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == "alert"_L1 && widget->isVisible()) {
            return qobject_cast<QDialog *>(widget);
        }
    }
    return nullptr;
}

void WindowsX11Test::xdotool(const QStringList &arguments)
{
    QProcess process;
    QSignalSpy finished(&process, &QProcess::finished);
    process.start(u"xdotool"_s, arguments);
    QVERIFY(finished.wait());
    QCOMPARE(process.exitCode(), 0);
}

void WindowsX11Test::clickAt(const QPoint &place)
{
    xdotool({u"mousemove"_s, QString::number(place.x()), QString::number(place.y()), u"click"_s,
             u"1"_s});
}

void WindowsX11Test::key(const QString &name)
{
    xdotool({u"key"_s, name});
}

bool WindowsX11Test::pressed(const QString &name)
{
    key(name);
    return true;
}

void WindowsX11Test::aBlockedWindowTakesNoInputAndPutsItsSheetForward()
{
    showWindow();
    std::optional<AlertAnswer> answer;
    m_window->beginAlert({u"Message"_s, u"More"_s, {u"OK"_s, u"Cancel"_s}},
                         [&answer](AlertAnswer given) { answer = given; });
    QVERIFY(QTest::qWaitForWindowActive(alertOnScreen()));

    // Whoever gives the window the keyboard, the sheet takes it back.
    clickAt(m_field->mapToGlobal(QPoint(10, m_field->height() - 10)));
    xdotool({u"windowfocus"_s, QString::number(m_widget->winId())});
    key(u"a"_s);
    // What is pressed in between is lost.
    QTRY_VERIFY(pressed(u"Escape"_s) && answer == AlertAnswer::Second);
    QCOMPARE(m_field->text(), QString());

    // Free again, it takes both.
    QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));
    clickAt(m_field->mapToGlobal(m_field->rect().center()));
    key(u"b"_s);
    QTRY_COMPARE(m_field->text(), u"b"_s);
}

void WindowsX11Test::anAlertOfTheProgramComesForwardAgain()
{
    showWindow();
    QtModalAlerts alerts(m_queue);
    std::optional<AlertAnswer> answer;
    alerts.runModal({u"Message"_s, {}, {u"OK"_s}}, [&answer](AlertAnswer a) { answer = a; });
    QVERIFY(QTest::qWaitForWindowActive(alertOnScreen()));
    clickAt(m_field->mapToGlobal(QPoint(10, m_field->height() - 10)));
    xdotool({u"windowfocus"_s, QString::number(m_widget->winId())});
    key(u"a"_s);
    QTRY_VERIFY(pressed(u"Return"_s) && answer == AlertAnswer::First);
    QCOMPARE(m_field->text(), QString());
}

void WindowsX11Test::aWindowThatBecomesKeySaysSoOnlyWithoutASheet()
{
    QSignalSpy becameKey(m_window.get(), &QtWindow::becameKey);
    m_window->makeKeyAndOrderFront();
    QTRY_COMPARE(becameKey.size(), 1);
    m_window->beginAlert({u"Message"_s, {}, {u"OK"_s}}, nullptr);
    QVERIFY(QTest::qWaitForWindowActive(alertOnScreen()));
    QTRY_VERIFY(pressed(u"Return"_s) && !alertOnScreen()); // the first may come before the focus
    QVERIFY(QTest::qWaitForWindowActive(m_widget.get()));
    QTRY_COMPARE(becameKey.size(), 2);
}

void WindowsX11Test::lockingAndUnlockingReachesTheExactFrames_data()
{
    QTest::addColumn<bool>("animate");
    QTest::addColumn<bool>("maximised");
    QTest::newRow("at once") << false << false;
    QTest::newRow("animated") << true << false;
    QTest::newRow("from a maximised window") << true << true;
}

void WindowsX11Test::lockingAndUnlockingReachesTheExactFrames()
{
    QFETCH(bool, animate);
    QFETCH(bool, maximised);
    showWindow();
    const QRect area = m_widget->screen()->availableGeometry();
    const NSRect large {90, 80, 820, 610};
    m_window->setFrame(large, false);
    QTRY_VERIFY(isAt(large));
    for (int round = 0; round < 3; ++round) {
        if (maximised) {
            m_widget->showMaximized();
            QTRY_COMPARE(m_widget->width(), area.width());
        }
        QVERIFY(m_window->frame() == large);
        const NSSize least = m_window->minSize();
        m_window->setFrame(
            {large.x, large.y + large.height - least.height, least.width, least.height}, animate);
        m_window->setMaxSize(least);
        m_window->center();
        QTRY_COMPARE(m_widget->maximumSize(), leastSize);
        QTRY_COMPARE(m_widget->size(), leastSize);
        QTRY_COMPARE(m_widget->frameGeometry(), centredIn(m_widget->frameGeometry().size(), area));

        m_window->setMaxSize({noMaximum, noMaximum});
        m_window->setFrame(large, animate);
        QVERIFY(m_window->frame() == large);
        QTRY_VERIFY(isAt(large));
    }
}

void WindowsX11Test::aFrameSetBeforeTheWindowIsShownIsReached()
{
    const NSRect wanted {140, 120, 700, 500};
    m_window->setFrame(wanted, true);
    m_window->makeKeyAndOrderFront();
    QTRY_VERIFY(m_widget->frameGeometry() != m_widget->geometry()); // the decorations are there
    QTRY_VERIFY(isAt(wanted));
}

QTEST_MAIN(WindowsX11Test)
#include "tst_windows_x11.moc"
