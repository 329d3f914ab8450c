#include "editor/capslocknotice.h"

#include <QAccessible>
#include <QKeyEvent>

using namespace Qt::StringLiterals;

namespace quorvane {

namespace {
// The bit of the Lock modifier in the state of X11 and of xkbcommon, which Wayland uses too.
constexpr quint32 lockMask = 2;
} // namespace

CapsLockNotice::CapsLockNotice(QWidget *parent)
    : QLabel(u"Caps Lock is on."_s, parent)
{
    QFont bold = font();
    bold.setBold(true);
    setFont(bold);
    QSizePolicy kept = sizePolicy();
    kept.setRetainSizeWhenHidden(true); // nothing jumps when it shows
    setSizePolicy(kept);
    hide();
}

bool CapsLockNotice::eventFilter(QObject *field, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto &key = static_cast<const QKeyEvent &>(*event);
        const bool wasOn = (key.nativeModifiers() & lockMask) != 0; // before this very key
        const bool turns = key.key() == Qt::Key_CapsLock && !key.isAutoRepeat();
        setOn(wasOn != turns);
    }
    return QLabel::eventFilter(field, event);
}

void CapsLockNotice::setOn(bool on)
{
    if (on == m_isOn) {
        return;
    }
    m_isOn = on;
    setVisible(on);
    if (on) {
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    emit changed(on);
}

} // namespace quorvane
