#pragma once

#include <QLabel>

namespace quorvane {

/// Says that Caps Lock is on, beside the fields of a password that it watches. It learns so from
/// the keys that they get: before the first one it cannot tell.
class CapsLockNotice final : public QLabel
{
    Q_OBJECT

public:
    explicit CapsLockNotice(QWidget *parent);

    void watch(QObject &field) { field.installEventFilter(this); }

    bool isOn() const { return m_isOn; }

    bool eventFilter(QObject *field, QEvent *event) override;

signals:
    void changed(bool on);

private:
    void setOn(bool on);

    bool m_isOn = false;
};

} // namespace quorvane
