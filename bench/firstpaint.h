#pragma once

#include <QApplication>
#include <QMainWindow>
#include <QPaintEvent>

#include <unistd.h>

/// Ends the process once a main window has been painted, without the work of an orderly end.
class EndAfterFirstPaint final : public QObject
{
public:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *widget =
            event->type() == QEvent::Paint ? qobject_cast<QWidget *>(watched) : nullptr;
        if (widget && qobject_cast<QMainWindow *>(widget->window()) && !m_isEnding) {
            m_isEnding = true;
            // The other widgets of the window are painted on this same turn.
            QMetaObject::invokeMethod(
                this, [] { _exit(0); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    bool m_isEnding = false;
};
