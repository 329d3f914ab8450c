#include "app/readableplaceholders.h"

#include <QApplication>
#include <QEvent>
#include <QPalette>

namespace quorvane {

namespace {

constexpr float paleness = 0.65F;

} // namespace

ReadablePlaceholders::ReadablePlaceholders()
{
    apply();
    qApp->installEventFilter(this);
}

bool ReadablePlaceholders::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange) {
        apply();
    }
    return QObject::eventFilter(watched, event);
}

// That one colour alone: all others follow the desktop.
void ReadablePlaceholders::apply()
{
    QColor pale = QApplication::palette().color(QPalette::Text);
    pale.setAlphaF(paleness);
    if (QApplication::palette().color(QPalette::PlaceholderText) != pale) {
        QPalette palette;
        palette.setResolveMask(0);
        palette.setColor(QPalette::PlaceholderText, pale);
        QApplication::setPalette(palette);
    }
}

} // namespace quorvane
