#pragma once

#include "platform/nsvalues.h"

#include <QObject>
#include <QPropertyAnimation>
#include <QRect>
#include <QTimer>
#include <QWidget>

#include <optional>

namespace quorvane {

/// Where a window is and how large it may be, as the platform counts it, over a window system that
/// answers later and in its own way.
///
/// What is asked for is reached step by step: the window leaves its maximised state first, then
/// moves in an animation, then takes its greatest size; for a while afterwards what the window
/// manager makes of it is corrected. All the while \a frame answers the frame that was asked for.
/// A maximised or full-screen window answers the frame that it goes back to. On Wayland only sizes
/// have an effect.
class WindowPlacement final : public QObject
{
    Q_OBJECT

public:
    /// The window outlives the placement.
    explicit WindowPlacement(QWidget &window);

    NSRect frame() const;
    NSSize minSize() const;
    void setFrame(const NSRect &frame, bool animate);
    void setMaxSize(const NSSize &size);
    void center();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QMargins margins() const;
    bool isNormal() const;
    bool isMoving() const;
    QRect wantedClient() const;
    void reach(bool animate);
    void leaveMaximised();
    void becameNormal();
    void animationFinished();
    void applyMaxSize();
    void settleLater();
    void settle();

    QWidget &m_window;
    QPropertyAnimation m_animation;
    QTimer m_settling; // runs while the window manager's answers are corrected
    QTimer m_waitForNormal; // runs while the window leaves its maximised state
    std::optional<QRect> m_wanted; // with decorations
    bool m_centred = false;
    QSize m_maxClientSize;
    int m_corrections = 0;
    bool m_settlePending = false;
};

} // namespace quorvane
