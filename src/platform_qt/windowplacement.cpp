#include "platform_qt/windowplacement.h"

#include "platform_qt/framecoordinates.h"

#include <QEvent>
#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>
#include <QStyle>

#include <algorithm>

namespace quorvane {

using namespace Qt::StringLiterals;

namespace {

constexpr int animationMilliseconds = 220;
// Window managers answer within milliseconds; what comes later than this is the user's doing.
constexpr int settlingMilliseconds = 1000;
// A compositor that answers with no change of size tells nothing.
constexpr int normalMilliseconds = 300;
constexpr int mostCorrections = 3;

bool canPlaceWindows()
{
    return !QGuiApplication::platformName().startsWith("wayland"_L1);
}

QRect primaryScreen()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen != nullptr ? screen->geometry() : QRect();
}

QList<QRect> usableScreens()
{
    QList<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens()) { // the primary one is the first
        areas.append(screen->availableGeometry());
    }
    return areas;
}

QRect usableScreenOf(const QRect &frame, const QWidget &window)
{
    const QScreen *screen = QGuiApplication::screenAt(frame.center());
    return (screen != nullptr ? screen : window.screen())->availableGeometry();
}

int clientLength(double frameLength, int margin)
{
    return frameLength < QWIDGETSIZE_MAX ? static_cast<int>(frameLength) - margin : QWIDGETSIZE_MAX;
}

} // namespace

WindowPlacement::WindowPlacement(QWidget &window)
    : m_window(window)
    , m_animation(&window, "geometry")
    , m_maxClientSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)
{
    m_animation.setDuration(animationMilliseconds);
    m_animation.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_animation, &QPropertyAnimation::finished, this, &WindowPlacement::animationFinished);
    m_settling.setSingleShot(true);
    connect(&m_settling, &QTimer::timeout, this, [this] {
        m_wanted.reset();
        m_centred = false;
    });
    m_waitForNormal.setSingleShot(true);
    connect(&m_waitForNormal, &QTimer::timeout, this, &WindowPlacement::becameNormal);
    window.installEventFilter(this);
}

NSRect WindowPlacement::frame() const
{
    if (m_wanted) {
        return frameOf(*m_wanted, primaryScreen());
    }
    const QRect rect =
        isNormal() ? m_window.frameGeometry() : m_window.normalGeometry().marginsAdded(margins());
    return frameOf(rect, primaryScreen());
}

NSSize WindowPlacement::minSize() const
{
    const QSize size = m_window.minimumSize().grownBy(margins());
    return {double(size.width()), double(size.height())};
}

void WindowPlacement::setFrame(const NSRect &frame, bool animate)
{
    const NSSize least = minSize();
    const QSize most = m_maxClientSize.grownBy(margins());
    const auto bounded = [](double value, double low, int high) {
        return value > low ? std::min(value, double(high)) : low; // the low one for no number
    };
    NSRect possible = frame;
    possible.width = bounded(frame.width, least.width, most.width());
    possible.height = bounded(frame.height, least.height, most.height());
    const QRect rect = screenRectOf(possible, primaryScreen());
    m_wanted = canPlaceWindows() ? keptOnScreens(rect, usableScreens()) : rect;
    m_centred = false;
    reach(animate);
}

void WindowPlacement::setMaxSize(const NSSize &size)
{
    const QMargins around = margins();
    const QSize client(clientLength(size.width, around.left() + around.right()),
                       clientLength(size.height, around.top() + around.bottom()));
    m_maxClientSize = client.expandedTo(m_window.minimumSize());
    if (!isNormal() && m_maxClientSize != QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX)) {
        leaveMaximised();
    }
    applyMaxSize();
}

void WindowPlacement::center()
{
    const QRect now = screenRectOf(frame(), primaryScreen());
    m_wanted = centredIn(now.size(), usableScreenOf(now, m_window));
    m_centred = true;
    if (m_animation.state() == QAbstractAnimation::Running) {
        m_animation.setEndValue(wantedClient());
        return;
    }
    reach(false);
}

bool WindowPlacement::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Resize:
        if (m_waitForNormal.isActive()) {
            // Never on this very turn: Wayland ends a program that changes the size of a window
            // before the compositor has taken it out of its maximised state.
            m_waitForNormal.start(0);
        }
        settleLater();
        break;
    case QEvent::Show:
    case QEvent::Move:
    case QEvent::UpdateRequest:
        settleLater();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

QMargins WindowPlacement::margins() const
{
    const QRect outer = m_window.frameGeometry();
    const QRect inner = m_window.geometry();
    return QMargins(inner.left() - outer.left(), inner.top() - outer.top(),
                    outer.right() - inner.right(), outer.bottom() - inner.bottom());
}

bool WindowPlacement::isNormal() const
{
    return !(m_window.windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen));
}

bool WindowPlacement::isMoving() const
{
    return m_waitForNormal.isActive() || m_animation.state() == QAbstractAnimation::Running;
}

QRect WindowPlacement::wantedClient() const
{
    QRect client = m_wanted->marginsRemoved(margins());
    client.setSize(client.size().boundedTo(m_maxClientSize).expandedTo(m_window.minimumSize()));
    if (!canPlaceWindows()) {
        client.moveTopLeft(m_window.geometry().topLeft());
    }
    return client;
}

void WindowPlacement::reach(bool animate)
{
    m_animation.stop(); // what was asked for last is what counts
    m_corrections = mostCorrections;
    m_settling.start(settlingMilliseconds);
    if (!isNormal()) {
        leaveMaximised();
    }
    if (m_waitForNormal.isActive()) {
        return;
    }
    const bool moves = animate && m_window.isVisible()
        && m_window.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &m_window)
            > 0;
    if (!moves) {
        m_window.setGeometry(wantedClient());
        applyMaxSize();
        settleLater();
        return;
    }
    m_animation.setStartValue(m_window.geometry());
    m_animation.setEndValue(wantedClient());
    m_animation.start();
}

void WindowPlacement::leaveMaximised()
{
    if (!m_wanted) {
        m_wanted = screenRectOf(frame(), primaryScreen());
    }
    m_window.setWindowState(m_window.windowState() & ~(Qt::WindowMaximized | Qt::WindowFullScreen));
    if (m_window.isVisible()) {
        m_waitForNormal.start(normalMilliseconds);
    }
}

void WindowPlacement::becameNormal()
{
    applyMaxSize();
    if (m_wanted) {
        reach(false);
    }
}

void WindowPlacement::animationFinished()
{
    m_settling.start(settlingMilliseconds);
    applyMaxSize();
    settleLater();
}

// A limit set earlier would cut the way to it short.
void WindowPlacement::applyMaxSize()
{
    if (!isMoving() && m_window.maximumSize() != m_maxClientSize) {
        m_window.setMaximumSize(m_maxClientSize);
    }
}

void WindowPlacement::settleLater()
{
    if (m_settlePending || !m_wanted || !m_settling.isActive()) {
        return;
    }
    m_settlePending = true;
    QMetaObject::invokeMethod(this, &WindowPlacement::settle, Qt::QueuedConnection);
}

void WindowPlacement::settle()
{
    m_settlePending = false;
    if (isMoving() || !m_wanted || !isNormal() || !m_window.isVisible()) {
        return;
    }
    if (m_centred) {
        const QSize size = wantedClient().size().grownBy(margins());
        m_wanted = centredIn(size, usableScreenOf(*m_wanted, m_window));
    }
    const QRect client = wantedClient();
    if (m_window.geometry() != client && m_corrections > 0) {
        --m_corrections;
        m_window.setGeometry(client);
    }
}

} // namespace quorvane
